#include "Console.h"
#include "Tool.h"

#include "support/MatchesPattern.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

using namespace testsupport;
using namespace tooltest;
using testing::IsEmpty;

namespace {

constexpr const char* half = "HTTP/1.1 200 OK\r\nContent-Length: 8\r\n\r\nhalf";
// Nothing of the shell's follows what the program leaves on the screen.
constexpr const char* getScript = R"("$TOOL" get -o "$1" "$2"; echo "status $?"; exec sleep 1000)";

std::string progressOf(const std::string& url) { return " 50%        4 B /        8 B +[0-9]+ B/s  " + url; }

} // namespace

TEST(ToolConsole, ShowsTheProgressOfATransferUntilItsEnd) {
    ScriptedServer server;
    const auto latch = std::make_shared<Latch>();
    server.play(Script().expectRequest().send(half).waitFor(latch).send("done").close());
    TempDir folder;
    const Console console(getScript, {folder.file("out"), server.url()});
    EXPECT_THAT(console.waitForScreen(progressOf(server.url())), MatchesPattern(progressOf(server.url())));
    latch->release();
    EXPECT_EQ(console.waitForScreen("status [0-9]+"), "status 0");
    EXPECT_EQ(folder.readFile("out"), "halfdone");
}

TEST(ToolConsole, EndsATransferAtControlCAndLeavesNothing) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(half).stall());
    TempDir folder;
    const Console console(getScript, {folder.file("out"), server.url()});
    ASSERT_THAT(console.waitForScreen(progressOf(server.url())), MatchesPattern(progressOf(server.url())));
    ASSERT_EQ(filesIn(folder.path()).size(), 1U);
    console.press("C-c");
    EXPECT_EQ(console.waitForScreen("status [0-9]+"), "status 130");
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
    EXPECT_THAT(server.finish(), IsEmpty());
}

TEST(ToolConsole, ShowsAllCharacters) {
    TempDir folder;
    const std::string missing = folder.file("Größe-€.txt");
    const Console console(R"("$TOOL" post -f "$1" "$2"; exec sleep 1000)", {missing, "http://127.0.0.1:9/"});
    const std::string message =
        "vantra: Error opening file '" + nativeName(missing) + "': No such file or directory.";
    EXPECT_EQ(console.waitForScreen("vantra: .+"), message);
}

TEST(ToolConsole, TakesAllCharactersAsInput) {
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("")).close());
    // As Wine sets the terminal underneath, but not before somebody reads; and that one would keep Ctrl-Z.
    const Console console(
        R"(stty -icanon -icrnl -echo susp undef; "$TOOL" post -f - "$1"; echo "status $?"; exec sleep 1000)",
        {server.url()});
    ASSERT_TRUE(server.waitForConnections(1));
    console.type("Größe-€-𝄞");
    console.press("Enter");
    console.press("C-z");
    console.press("Enter");
    EXPECT_THAT(console.waitForScreen("[\\s\\S]+status [0-9]+"), MatchesPattern("[\\s\\S]+status 0"));
    EXPECT_THAT(server.finish(), IsEmpty());
    EXPECT_EQ(server.requests().at(0).body, "Größe-€-𝄞\r\n");
}

TEST(ToolConsole, EndsTheWaitForInputAtControlC) {
    ScriptedServer server;
    server.play(Script().expectHead().stall());
    const Console console(R"("$TOOL" post -f - "$1"; echo "status $?"; exec sleep 1000)", {server.url()});
    ASSERT_TRUE(server.waitForConnections(1));
    console.press("C-c");
    EXPECT_THAT(console.waitForScreen("[\\s\\S]*status [0-9]+"), MatchesPattern("[\\s\\S]*status 130"));
}
