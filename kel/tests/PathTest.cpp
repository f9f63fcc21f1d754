#include "kel/Path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <type_traits>

namespace {

using WindowsPath = kel::TPathImpl<kel::CWindowsPathTraits>;
using PosixPath = kel::TPathImpl<kel::CPosixPathTraits>;

/// The text in the form of the platform; the tests write the platform's separator as "/".
template <class Path>
std::string getText(const Path& path) {
    std::string text = path.getText().toUTF8();
    const bool isReplaced = std::is_same_v<Path, WindowsPath> && kel::nativePathSeparator() != L'/';
    if (isReplaced) std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

template <class Path>
std::string normalise(const char* text) {
    return getText(Path(text));
}

struct NormaliseCase {
    const char* text;
    const char* windows;
    const char* posix;
};

void PrintTo(const NormaliseCase& testCase, std::ostream* out) { *out << '"' << testCase.text << '"'; }

class PathNormalisation : public testing::TestWithParam<NormaliseCase> {};

TEST_P(PathNormalisation, FollowsTheRulesOfBothTraits) {
    EXPECT_EQ(normalise<WindowsPath>(GetParam().text), GetParam().windows);
    EXPECT_EQ(normalise<PosixPath>(GetParam().text), GetParam().posix);
}

TEST_P(PathNormalisation, ChangesNothingTheSecondTime) {
    EXPECT_EQ(normalise<WindowsPath>(GetParam().windows), GetParam().windows);
    EXPECT_EQ(normalise<PosixPath>(GetParam().posix), GetParam().posix);
}

const NormaliseCase plainNames[] = {
    {"", "", ""},
    {"a", "a", "a"},
    {"a/b", "a/b", "a/b"},
    {"a.b/c..d/...", "a.b/c..d/...", "a.b/c..d/..."},
    {" a / b ", " a / b ", " a / b "},
    {"Gr\xC3\xBC\xC3\x9F"
     "e/\xF0\x9F\x8E\xB5",
     "Gr\xC3\xBC\xC3\x9F"
     "e/\xF0\x9F\x8E\xB5",
     "Gr\xC3\xBC\xC3\x9F"
     "e/\xF0\x9F\x8E\xB5"},
};
INSTANTIATE_TEST_SUITE_P(PlainNames, PathNormalisation, testing::ValuesIn(plainNames));

const NormaliseCase separators[] = {
    {"a//b///c", "a/b/c", "a/b/c"}, {"a/b/", "a/b", "a/b"},          {"a///", "a", "a"},
    {"a\\b", "a/b", "a\\b"},        {"a/\\/b\\", "a/b", "a/\\/b\\"}, {"\\a", "/a", "\\a"},
};
INSTANTIATE_TEST_SUITE_P(Separators, PathNormalisation, testing::ValuesIn(separators));

const NormaliseCase dots[] = {
    {".", "", ""},
    {"./", "", ""},
    {"./.", "", ""},
    {"./a", "a", "a"},
    {".//a", "a", "a"},
    {"././/./a", "a", "a"},
    {"a/.", "a", "a"},
    {"a/./b/.//c", "a/b/c", "a/b/c"},
    {"/.", "/", "/"},
    {"/./a", "/a", "/a"},
    {"..", "..", ".."},
    {"../", "..", ".."},
    {"a/..", "a/..", "a/.."},
    {"./../a", "../a", "../a"},
    {"/../a", "/../a", "/../a"},
    {".a/b.", ".a/b.", ".a/b."},
};
INSTANTIATE_TEST_SUITE_P(Dots, PathNormalisation, testing::ValuesIn(dots));

const NormaliseCase roots[] = {
    {"/", "/", "/"},   {"/a", "/a", "/a"},   {"/a/", "/a", "/a"},
    {"///", "/", "/"}, {"///a", "/a", "/a"}, {"////a//b", "/a/b", "/a/b"},
};
INSTANTIATE_TEST_SUITE_P(Roots, PathNormalisation, testing::ValuesIn(roots));

const NormaliseCase shares[] = {
    {"//", "/", "/"},
    {"//server", "//server", "/server"},
    {"//server/", "//server", "/server"},
    {"//server//share/", "//server/share", "/server/share"},
    {"\\\\server\\share\\a", "//server/share/a", "\\\\server\\share\\a"},
    {"/\\server/./a", "//server/a", "/\\server/a"},
    {"\\\\.\\pipe\\x", "//./pipe/x", "\\\\.\\pipe\\x"},
    {"//./pipe", "//./pipe", "/pipe"},
    {"\\\\?\\C:\\a", "//?/C:/a", "\\\\?\\C:\\a"},
};
INSTANTIATE_TEST_SUITE_P(Shares, PathNormalisation, testing::ValuesIn(shares));

const NormaliseCase drives[] = {
    {"C:", "C:", "C:"},
    {"C:/", "C:/", "C:"},
    {"c:\\", "c:/", "c:\\"},
    {"C:\\\\a\\.\\b\\", "C:/a/b", "C:\\\\a\\.\\b\\"},
    {"C:a", "C:a", "C:a"},
    {"C:.", "C:", "C:."},
    {"C:./a", "C:a", "C:./a"},
    {"C:..", "C:..", "C:.."},
    {"C:.\\", "C:", "C:.\\"},
    {"1:/a/", "1:/a", "1:/a"},
    {"\xC3\xA4:/a/", "\xC3\xA4:/a", "\xC3\xA4:/a"},
    {"CD:/a/", "CD:/a", "CD:/a"},
    {"./C:", "./C:", "C:"},
    {"./C:/a", "./C:/a", "C:/a"},
    {"././/C:a", "./C:a", "C:a"},
    {"a/C:/b", "a/C:/b", "a/C:/b"},
    {"/C:/b", "/C:/b", "/C:/b"},
    {"C:/D:", "C:/D:", "C:/D:"},
};
INSTANTIATE_TEST_SUITE_P(Drives, PathNormalisation, testing::ValuesIn(drives));

TEST(Path, PublicPathTypeKnowsDrivesOnEveryPlatform) {
    EXPECT_TRUE((std::is_same_v<kel::CPath, WindowsPath>));
    EXPECT_TRUE(kel::CPath("C:\\a").isAbsolute());
}

TEST(Path, WritesThePlatformsSeparator) {
    const kel::String separator(std::wstring(1, kel::nativePathSeparator()).c_str());
    EXPECT_EQ(kel::CPath("a/b\\c").getText(), "a" + separator + "b" + separator + "c");
    EXPECT_EQ(kel::nativePathSeparator(), static_cast<wchar_t>(std::filesystem::path::preferred_separator));
}

TEST(Path, DefaultIsEmpty) {
    EXPECT_TRUE(WindowsPath().isEmpty());
    EXPECT_EQ(WindowsPath().getText(), "");
    EXPECT_TRUE(WindowsPath("./").isEmpty());
    EXPECT_FALSE(WindowsPath("/").isEmpty());
    EXPECT_EQ(WindowsPath(), WindowsPath("."));
}

TEST(Path, KeepsANulAsPartOfAName) {
    const kel::String text("a\0b/", 4);
    EXPECT_EQ(PosixPath(text).getText(), kel::String("a\0b", 3));
}

TEST(Path, ComparesNormalisedTexts) {
    EXPECT_EQ(WindowsPath("a//b/"), WindowsPath("./a\\b"));
    EXPECT_NE(WindowsPath("a/b"), WindowsPath("a/B"));
    EXPECT_NE(PosixPath("a/b"), PosixPath("a\\b"));
}

TEST(Path, KnowsWhatIsAbsolute) {
    for (const char* text : {"/", "/a", "\\a", "//server", "\\\\server\\share", "C:/", "C:\\a", "z:\\"})
        EXPECT_TRUE(WindowsPath(text).isAbsolute()) << text;
    for (const char* text : {"", "a", "a/b", "..", "C:", "C:a", "./C:/a", "1:/a", "CD:/a"})
        EXPECT_FALSE(WindowsPath(text).isAbsolute()) << text;
    for (const char* text : {"/", "/a", "//server"}) EXPECT_TRUE(PosixPath(text).isAbsolute()) << text;
    for (const char* text : {"", "a", "\\a", "\\\\server\\share", "C:/", "C:\\a"})
        EXPECT_FALSE(PosixPath(text).isAbsolute()) << text;
}

template <class Path>
std::string join(const char* folder, const char* other) {
    return getText(Path(folder) / Path(other));
}

TEST(Path, SeesARelativePathFromAFolder) {
    EXPECT_EQ(join<WindowsPath>("a/b", "c/d"), "a/b/c/d");
    EXPECT_EQ(join<WindowsPath>("a", ".."), "a/..");
    EXPECT_EQ(join<WindowsPath>("a/", "./b"), "a/b");
    EXPECT_EQ(join<WindowsPath>("/", "a"), "/a");
    EXPECT_EQ(join<WindowsPath>("C:\\", "a"), "C:/a");
    EXPECT_EQ(join<WindowsPath>("C:", "a"), "C:a") << "the drive's current folder, not its root";
    EXPECT_EQ(join<WindowsPath>("C:b", "a"), "C:b/a");
    EXPECT_EQ(join<WindowsPath>("//server", "share"), "//server/share");
    EXPECT_EQ(join<PosixPath>("/a", "b"), "/a/b");
    EXPECT_EQ(join<PosixPath>("/", "b"), "/b");
    EXPECT_EQ(join<PosixPath>("C:", "a"), "C:/a");
    EXPECT_EQ(join<PosixPath>("a", "\\b"), "a/\\b");
}

TEST(Path, LeavesAnAbsolutePathWhereItIs) {
    EXPECT_EQ(join<WindowsPath>("a", "/b"), "/b");
    EXPECT_EQ(join<WindowsPath>("a", "C:\\b"), "C:/b");
    EXPECT_EQ(join<WindowsPath>("a", "\\\\server\\b"), "//server/b");
    EXPECT_EQ(join<PosixPath>("/a", "/b"), "/b");
}

TEST(Path, JoinsWithTheEmptyPath) {
    EXPECT_EQ(join<WindowsPath>("", "a"), "a");
    EXPECT_EQ(join<WindowsPath>("a", ""), "a");
    EXPECT_EQ(join<WindowsPath>("a", "."), "a");
    EXPECT_EQ(join<WindowsPath>("/", ""), "/");
    EXPECT_EQ(join<WindowsPath>("", ""), "");
}

TEST(Path, JoinLeavesItsPartsAlone) {
    const WindowsPath folder("a");
    const WindowsPath other("b");
    EXPECT_EQ(folder / other, WindowsPath("a/b"));
    EXPECT_EQ(folder, WindowsPath("a"));
    EXPECT_EQ(other, WindowsPath("b"));
    EXPECT_EQ(folder / "b" / "c", WindowsPath("a/b/c"));
}

struct PartsCase {
    const char* text;
    const char* parent;
    const char* fileName;
};

void PrintTo(const PartsCase& testCase, std::ostream* out) { *out << '"' << testCase.text << '"'; }

template <class Path>
void expectParts(const PartsCase& testCase) {
    const Path path(testCase.text);
    EXPECT_EQ(getText(path.getParent()), testCase.parent);
    EXPECT_EQ(path.getFileName().toUTF8(), testCase.fileName);
    EXPECT_EQ(path.getParent().isEmpty() && path.getFileName().isEmpty()
                  ? path
                  : path.getParent() / path.getFileName(),
              path);
}

class PathParts : public testing::TestWithParam<PartsCase> {};
TEST_P(PathParts, AreParentAndFileName) {
    expectParts<WindowsPath>(GetParam());
    expectParts<PosixPath>(GetParam());
}
const PartsCase commonParts[] = {
    {"", "", ""},     {"a", "", "a"},      {"a/b", "a", "b"}, {"a/b/c.d", "a/b", "c.d"}, {"/", "", ""},
    {"/a", "/", "a"}, {"/a/b", "/a", "b"}, {"..", "", ".."},  {"a/..", "a", ".."},       {"a/b/", "a", "b"},
};
INSTANTIATE_TEST_SUITE_P(Common, PathParts, testing::ValuesIn(commonParts));

class WindowsPathParts : public testing::TestWithParam<PartsCase> {};
TEST_P(WindowsPathParts, AreParentAndFileName) { expectParts<WindowsPath>(GetParam()); }
const PartsCase windowsParts[] = {
    {"a\\b", "a", "b"},
    {"C:", "", ""},
    {"C:/", "", ""},
    {"C:/a", "C:/", "a"},
    {"C:\\a\\b", "C:/a", "b"},
    {"C:a", "C:", "a"},
    {"C:a/b", "C:a", "b"},
    {"//server", "", ""},
    {"//server/share", "//server", "share"},
    {"\\\\server\\share\\a", "//server/share", "a"},
};
INSTANTIATE_TEST_SUITE_P(Windows, WindowsPathParts, testing::ValuesIn(windowsParts));

class PosixPathParts : public testing::TestWithParam<PartsCase> {};
TEST_P(PosixPathParts, AreParentAndFileName) { expectParts<PosixPath>(GetParam()); }
const PartsCase posixParts[] = {
    {"a\\b", "", "a\\b"}, {"C:", "", "C:"}, {"C:/a", "C:", "a"}, {"//server", "/", "server"}};
INSTANTIATE_TEST_SUITE_P(Posix, PosixPathParts, testing::ValuesIn(posixParts));

TEST(Path, WalksUpToTheRoot) {
    std::string visited;
    for (kel::CPath path = "/a/b/c"; !path.isEmpty(); path = path.getParent()) visited += getText(path) + ";";
    EXPECT_EQ(visited, "/a/b/c;/a/b;/a;/;");
}

TEST(Path, BecomesAPathOfTheStandardLibrary) {
    EXPECT_TRUE(kel::CPath("/a\\b").toStdPath() == std::filesystem::path("/a/b"));
    EXPECT_TRUE(kel::CPath().toStdPath().empty());
    EXPECT_TRUE(kel::CPath("Gr\xC3\xBC\xC3\x9F").toStdPath().u8string() == u8"Gr\u00FC\u00DF");
    EXPECT_TRUE(PosixPath("\xF0\x9F\x8E\xB5/b").toStdPath().u8string() == u8"\U0001F3B5/b");
}

} // namespace
