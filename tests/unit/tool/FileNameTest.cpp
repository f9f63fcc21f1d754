#include "getall/FileName.h"

#include <gtest/gtest.h>

#include <string>

using kel::String;
using namespace vantra::tool;

namespace {

std::string safe(const char* name) { return makeSafeFileName(name).toUTF8(); }

std::string fromURL(const char* url) { return getFileNameFromURL(CURLArgument("URL", url)).toUTF8(); }

std::string fromHeader(const char* value) {
    return getFileNameFromHeaders({{"content-disposition", value}}).toUTF8();
}

} // namespace

TEST(FileName, StaysWhenItIsHarmless) {
    for (const char* name : {"a", "report.pdf", "archive.tar.gz", "two words.txt", "\u00FCber.txt",
                             "a'b&c;d.txt", "console.log", "com0x", "comma", "COM10"})
        EXPECT_EQ(safe(name), name);
}

TEST(FileName, LosesItsFolders) {
    EXPECT_EQ(safe("/etc/passwd"), "passwd");
    EXPECT_EQ(safe("../../up"), "up");
    EXPECT_EQ(safe("..\\..\\up"), "up");
    EXPECT_EQ(safe("C:\\windows\\x.dll"), "x.dll");
    EXPECT_EQ(safe("folder/"), "index.html");
}

TEST(FileName, LosesWhatSystemsForbidOrHide) {
    EXPECT_EQ(safe("a<b>c:d\"e|f?g*h"), "a_b_c_d_e_f_g_h");
    EXPECT_EQ(safe("a\nb\x1b[2Jc\x7F\u009B"), "a_b_[2Jc__");
    EXPECT_EQ(safe(".bashrc"), "_bashrc");
    EXPECT_EQ(safe(" name. . "), "name");
    for (const char* name : {"", " ", ".", "..", "...", ". ."}) EXPECT_EQ(safe(name), "index.html");
    for (const char* name : {"NUL", "con", "aux.txt", "prn.tar.gz", "Com1", "lpt9.txt", "com0"})
        EXPECT_EQ(safe(name), "_" + std::string(name));
}

TEST(FileName, IsCutBetweenCharactersAheadOfItsExtension) {
    EXPECT_EQ(safe((std::string(300, 'x') + ".txt").c_str()), std::string(196, 'x') + ".txt");
    std::string umlauts;
    for (int i = 0; i < 150; ++i) umlauts += "\u00FC";
    EXPECT_EQ(safe(("x" + umlauts).c_str()), "x" + umlauts.substr(0, 198));
    EXPECT_EQ(safe(("a." + std::string(300, 'x')).c_str()), "a." + std::string(99, 'x'));
}

TEST(FileName, IsTheLastPartOfTheURLsPath) {
    EXPECT_EQ(fromURL("http://h/a/b.txt"), "b.txt");
    EXPECT_EQ(fromURL("http://h/a/b.txt?c=/d#/e"), "b.txt");
    EXPECT_EQ(fromURL("http://h/%C3%BC%20b+c"), "\u00FC b+c");
    EXPECT_EQ(fromURL("http://h/a%2Fb"), "b");
    EXPECT_EQ(fromURL("http://h/%00"), "_");
    for (const char* url : {"http://h", "http://h/", "http://h?x=/y", "http://h/a/", "http://h/%2e%2e"})
        EXPECT_EQ(fromURL(url), "index.html");
}

TEST(FileName, IsTheOneOfTheHeaderIfThereIsOne) {
    EXPECT_EQ(fromHeader("attachment; filename=\"a b.txt\""), "a b.txt");
    EXPECT_EQ(fromHeader("attachment; filename=\"/x/../a\""), "a");
    EXPECT_EQ(fromHeader("attachment"), "");
    EXPECT_EQ(fromHeader("attachment; filename=\" \""), "");
    EXPECT_EQ(getFileNameFromHeaders({}), "");
}

TEST(FileName, IsNumberedAheadOfItsExtension) {
    EXPECT_EQ(numberFileName("a.txt", 1), "a.txt");
    EXPECT_EQ(numberFileName("a.txt", 2), "a (2).txt");
    EXPECT_EQ(numberFileName("a", 10), "a (10)");
    EXPECT_EQ(numberFileName("a.tar.gz", 3), "a.tar (3).gz");
}
