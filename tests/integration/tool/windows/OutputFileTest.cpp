// Names that are no file's on Windows.
#include "Tool.h"

#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

TEST(ToolOutputFile, IsWrittenDirectlyWhenItIsADevice) {
    NginxServer& server = webServer();
    const TempDir folder;
    for (const std::string& name :
         {std::string("NUL"), std::string("nul"), std::string("\\\\.\\NUL"), folder.file("NUL")})
        EXPECT_EQ(runTool({"get", "-o", name, "--log", name, server.url("/big.bin")}), succeeded("")) << name;
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolLog, DoesNotTakeThePlaceOfABodyWhoseNameHasOtherCases) {
    const TempDir folder;
    folder.writeFile("old", "content");
    for (const auto& [body, log] :
         {std::pair("old", "OLD"), std::pair("new", "New"), std::pair("\u00fc", "\u00dc")})
        EXPECT_EQ(runTool({"get", "-o", folder.file(body), "--log", folder.file(log), "http://127.0.0.1:1/"}),
                  refused("--log: names the same file as --output"));
    EXPECT_EQ(folder.readFile("old"), "content");
}

TEST(ToolOutputFile, WithForbiddenCharactersInItsNameIsRefusedBeforeTheTransfer) {
    ScriptedServer server; // would note a connection as an error
    const TempDir folder;
    for (const char* name : {"a?b", "a*b", "a:b", "a|b", "a\"b", "<a>"}) {
        const std::string file = folder.file(name);
        EXPECT_EQ(runTool({"get", "-o", file, server.url()}),
                  failed("Error creating file '" + nativeName(file) + "': Invalid argument."));
        EXPECT_EQ(runTool({"get", "--log", file, server.url()}),
                  failed("Error creating file '" + nativeName(file) + "': Invalid argument."));
    }
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}
