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

TEST(ToolOutputFile, WithForbiddenCharactersInItsNameIsRefusedBeforeTheTransfer) {
    ScriptedServer server; // would note a connection as an error
    const TempDir folder;
    for (const char* name : {"a?b", "a*b", "a:b", "a|b", "a\"b", "<a>"}) {
        const std::string file = folder.file(name);
        EXPECT_EQ(runTool({"get", "-o", file, server.url()}),
                  failed("Error creating file '" + shown(file) + "': Invalid argument."));
        EXPECT_EQ(runTool({"get", "--log", file, server.url()}),
                  failed("Error creating file '" + shown(file) + "': Invalid argument."));
    }
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}
