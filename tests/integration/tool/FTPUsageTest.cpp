#include "Tool.h"

#include "support/ScriptedFtpServer.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::ElementsAre;

TEST(ToolFTPUsage, NeedsAnFTPURL) {
    EXPECT_EQ(runTool({"ftp", "ls", "http://h/"}), refused("URL: needs an ftp or ftps URL"));
    EXPECT_EQ(runTool({"ftp", "mv", "ftp://h/a", "https://h/b"}),
              refused("NEWURL: needs an ftp or ftps URL"));
    EXPECT_EQ(runTool({"ftp", "rm", "ftp://h/a?b"}),
              refused("URL: ? and # in a name are written %3F and %23"));
    EXPECT_EQ(runTool({"ftp", "rm", "ftp://h/a#b"}),
              refused("URL: ? and # in a name are written %3F and %23"));
    EXPECT_EQ(runTool({"ftp", "rm", "ftp://h/a%0D%0Ab"}),
              refused("URL: the path stands for control characters"));
}

TEST(ToolFTPUsage, RefusesOptionsThatDoNotFit) {
    EXPECT_EQ(runTool({"ftp", "ls", "--tls", "some", "ftp://h/"}),
              refused("--tls: must be one of explicit, implicit, none"));
    EXPECT_EQ(runTool({"ftp", "ls", "--cwd", "some", "ftp://h/"}),
              refused("--cwd: must be one of direct, none, steps"));
    for (const char* kind : {"none", "explicit"})
        EXPECT_EQ(runTool({"ftp", "ls", "--tls", kind, "ftps://h/"}),
                  refused("--tls: an ftps URL means implicit TLS"));
    EXPECT_EQ(runTool({"ftp", "ls", "--user", "u", "ftp://v@h/"}),
              refused("--user: the URL names a user already"));
    EXPECT_EQ(runTool({"ftp", "put", "ftp://h/a/", "file"}), refused("URL: must name a file"));
    for (const char* other : {"ftp://other/b", "ftp://h:21/b", "ftps://h/b"})
        EXPECT_EQ(runTool({"ftp", "mv", "ftp://h/a", other}), refused("NEWURL: must be on the same server"));
    EXPECT_EQ(runTool({"ftp", "mv", "ftp://h/a", "ftp://u@h/b"}), refused("NEWURL: must not hold a login"));
}

TEST(ToolFTPUsage, LogsInAsTheURLSaysOrAsAnonymous) {
    ScriptedFtpServer server;
    EXPECT_EQ(runTool({"ftp", "rm", "ftp://" + server.host() + "/a"}), succeeded(""));
    EXPECT_THAT(server.commands(0),
                ElementsAre("USER anonymous", "PASS ftp@example.com", "PWD", "DELE /a", "QUIT"));
    EXPECT_EQ(runTool({"ftp", "rm", "ftp://me%21@" + server.host() + "//b"}), succeeded(""));
    EXPECT_THAT(server.commands(1), ElementsAre("USER me!", "PASS ", "PWD", "DELE /b", "QUIT"));
}

TEST(ToolFTPUsage, ShowsNamesThatDoNothingToATerminalAsTheyAreInAPipe) {
    ScriptedFtpServer server;
    server.sendAsData("type=file;size=1; a\x1B[1m\r\ntype=os.unix=slink:/; link\r\n");
    EXPECT_EQ(runTool({"ftp", "ls", "ftp://" + server.host() + "/"}),
              succeeded("file             1  -                     a\x1B[1m\n"
                        "other            -  -                     link\n"));
}

TEST(ToolFTPUsage, EndsQuietlyWhenNobodyReadsTheListing) {
    for (const char* option : {"--quiet", "--json"}) {
        ScriptedFtpServer server;
        server.sendAsData("type=file;size=1; a\r\n");
        const Outcome expected{0, "", "tool 1\n"};
        EXPECT_EQ(
            runScript("trap '' PIPE; { sleep 0.1; \"$TOOL\" ftp ls \"$@\"; echo \"tool $?\" >&2; } | true",
                      {option, "ftp://" + server.host() + "/"}),
            expected);
    }
}

TEST(ToolFTPUsage, TellsOfAListingThatIsNone) {
    ScriptedFtpServer server;
    server.sendAsData("nospacehere\r\n");
    EXPECT_EQ(runTool({"ftp", "ls", "ftp://" + server.host() + "/"}),
              failed("Invalid FTP dir entry: 'nospacehere'"));
}
