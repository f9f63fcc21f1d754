// What the verbs write with --json; a parser that nobody here wrote reads it.
#include "MailTool.h"
#include "System.h"
#include "VerbTable.h"

#include "support/MatchesPattern.h"
#include "support/ScriptedFtpServer.h"
#include "support/ScriptedServer.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>

using namespace testsupport;
using namespace tooltest;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// The lines as Python's parser reads them, which are written again with sorted names and without "seconds",
/// whose value has to be a number, and without headers, whose names have to be in lower case.
std::string normalize(const std::string& lines) {
    static const std::string script =
        "import json, sys\n"
        "for line in sys.stdin.buffer.read().decode('utf-8', 'strict').splitlines():\n"
        "    value = json.loads(line)\n"
        "    if 'seconds' in value: assert 0 <= value.pop('seconds') < 60\n"
        "    headers = value.pop('headers', {})\n"
        "    assert all(n == n.lower() and type(h) is str for n, h in headers.items())\n"
        "    print(json.dumps(value, sort_keys=True, ensure_ascii=False))\n";
    const CommandResult result = runCommand({"python3", "-c", script}, lines);
    EXPECT_EQ(result.exitStatus, 0) << result.standardError << lines;
    return result.standardOutput;
}

Outcome runJSON(std::vector<std::string> arguments, std::string_view standardInput = {}) {
    arguments.emplace_back("--json");
    Outcome outcome = runTool(arguments, standardInput);
    outcome.output = normalize(outcome.output);
    return outcome;
}

/// A file's path as the program shows it, in a text of JSON.
std::string shownInJSON(const std::string& path) {
    return std::regex_replace(nativeName(path), std::regex("\\\\"), "\\\\");
}

std::string size(const std::string& text) { return std::to_string(text.size()); }

} // namespace

TEST(ToolJSON, TellsOfADownload) {
    TempDir folder;
    const std::string file = folder.file("out");
    const std::string url = webServer().url("/r302");
    EXPECT_EQ(runJSON({"get", "-o", file, url}),
              succeeded("{\"finalUrl\": \"" + webServer().url("/hello.txt") + "\", \"output\": \"" + file +
                        "\", \"received\": " + size(NginxServer::helloContent()) +
                        ", \"sent\": 0, \"status\": 200, \"url\": \"" + url + "\"}\n"));
    EXPECT_EQ(folder.readFile("out"), NginxServer::helloContent());
}

TEST(ToolJSON, TellsTheHeadersByTheirNames) {
    ScriptedServer server;
    server.play(Script().expectRequest().send("HTTP/1.1 200 OK\r\nX-Odd: \"a\\b\"\t\xC3\xBC\r\nx-odd: c\r\n"
                                              "Content-Length: 0\r\n\r\n"));
    const Outcome outcome = runTool({"get", "--json", "-o", nullDevice(), server.url()});
    EXPECT_THAT(
        outcome.output,
        HasSubstr("\"headers\":{\"content-length\":\"0\",\"x-odd\":\"\\\"a\\\\b\\\"\\t\xC3\xBC,c\"}"));
    EXPECT_EQ(outcome.error, "");
}

TEST(ToolJSON, HidesThePasswordOfARedirect) {
    ScriptedServer server;
    const std::string host = "127.0.0.1:" + std::to_string(server.port());
    server.play(Script()
                    .expectRequest()
                    .send("HTTP/1.1 302 Found\r\nLocation: http://jane:hunter2@" + host +
                          "/next\r\nContent-Length: 0\r\n\r\n")
                    .expectRequest()
                    .send(okResponse("")));
    const Outcome outcome = runTool({"get", "--json", "-o", nullDevice(), server.url()});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, HasSubstr(host + "/next\""));
    EXPECT_THAT(outcome.output, testing::Not(HasSubstr("hunter2")));
}

TEST(ToolJSON, TellsOfAFailureToo) {
    const std::string url = webServer().url("/s404");
    TempDir folder;
    const std::string file = folder.file("out");
    const Outcome outcome = runJSON({"get", "-o", file, url});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.error, testing::StartsWith("vantra: " + url + ": HTTP/1.1 404 Not Found"));
    const std::string message = outcome.error.substr(8, outcome.error.size() - 9);
    EXPECT_THAT(outcome.output,
                testing::StartsWith("{\"error\": \"" + message + "\", \"finalUrl\": \"" + url + "\""));
    EXPECT_THAT(outcome.output, HasSubstr(", \"status\": 404,"));
    EXPECT_THAT(filesIn(folder.path()), IsEmpty());
}

TEST(ToolJSON, TellsOfAnUpload) {
    TempDir folder;
    ScriptedServer server;
    server.play(Script().expectRequest().send(okResponse("thanks")));
    const std::string file = folder.writeFile("in", "content");
    EXPECT_EQ(runJSON({"post", "-o", folder.file("out"), "-f", file, server.url()}),
              succeeded("{\"file\": \"" + file + "\", \"finalUrl\": \"" + server.url() +
                        "\", \"output\": \"" + folder.file("out") +
                        "\", \"received\": 6, \"sent\": 7, \"status\": 200, \"url\": \"" + server.url() +
                        "\"}\n"));
}

TEST(ToolJSON, NeedsAFileForTheBody) {
    const Outcome expected =
        refused("--json: needs --output with a file, since both go to standard output otherwise");
    EXPECT_EQ(runTool({"get", "--json", "http://127.0.0.1:1/"}), expected);
    EXPECT_EQ(runTool({"put", "--json", "http://127.0.0.1:1/", "-f", "-", "-o", "-"}), expected);
    EXPECT_EQ(runTool({"ftp", "get", "--json", "ftp://127.0.0.1:1/a"}), expected);
}

TEST(ToolJSON, HasALineForEachOfManyDownloads) {
    TempDir folder;
    const std::string good = webServer().url("/hello.txt");
    const std::string bad = webServer().url("/s404");
    const Outcome outcome = runJSON({"get-all", "--parallel", "1", "-d", folder.path(), good, bad});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output,
                testing::StartsWith("{\"finalUrl\": \"" + good + "\", \"output\": \"" +
                                    shownInJSON(folder.file("hello.txt")) +
                                    "\", \"received\": " + size(NginxServer::helloContent()) +
                                    ", \"sent\": 0, \"status\": 200, \"url\": \"" + good +
                                    "\"}\n{\"error\": \"" + bad + ": HTTP/1.1 404 Not Found"));
    EXPECT_THAT(outcome.output, testing::EndsWith("{\"error\": \"1 of 2 transfers failed.\"}\n"));
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 3);
}

TEST(ToolJSON, EndsManyDownloadsQuietlyWhenNobodyReads) {
    TempDir folder;
    const Outcome expected{0, "", "tool 1\n"};
    EXPECT_EQ(
        runScript(
            "trap '' PIPE; { sleep 0.1; \"$TOOL\" get-all --json -d \"$1\" \"$2\"; echo \"tool $?\" >&2; } "
            "| true",
            {folder.path(), webServer().url("/hello.txt")}),
        expected);
}

TEST(ToolJSON, ListsADirectory) {
    ScriptedFtpServer server;
    server.sendAsData("type=dir;modify=20240102030405; a \"b\"\r\ntype=file;size=5; \x1B\xC3\xBC\r\n");
    EXPECT_EQ(
        runJSON({"ftp", "ls", "ftp://" + server.host() + "/"}),
        succeeded("{\"modified\": \"2024-01-02T03:04:05Z\", \"name\": \"a \\\"b\\\"\", \"type\": \"dir\"}\n"
                  "{\"name\": \"\\u001b\xC3\xBC\", \"size\": 5, \"type\": \"file\"}\n"));
}

TEST(ToolJSON, TellsOfFTPFailures) {
    ScriptedFtpServer server;
    server.answer("DELE /a", "550 no such file\r\n");
    const std::string url = "ftp://" + server.host() + "/a";
    const Outcome outcome = runJSON({"ftp", "rm", url});
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_THAT(outcome.output, testing::StartsWith("{\"error\": \"" + url + ": "));
    EXPECT_THAT(outcome.output, testing::EndsWith("\"url\": \"" + url + "\"}\n"));
    EXPECT_EQ(runJSON({"ftp", "mv", url, url + "b"}),
              succeeded("{\"newUrl\": \"" + url + "b\", \"url\": \"" + url + "\"}\n"));
}

TEST(ToolJSON, TellsOfAMailServer) {
    const SmtpPorts& ports = mailServer().ports();
    const Outcome outcome = runJSON({"mail", "test", "--server", serverAt(ports.plain), "--tls", "none"});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_THAT(outcome.output, MatchesPattern("\\{\"extensions\": \\[\".*\"\\], \"greeting\": \".+\", "
                                               "\"loggedInAs\": null, \"server\": \"smtp://" +
                                               serverAt(ports.plain) + "/?\"\\}\n"));
}

TEST(ToolJSON, TellsOfAMail) {
    TempDir folder;
    const Outcome outcome = sendMail({"--json", "--text", folder.writeFile("text", "hi\n")});
    EXPECT_EQ(outcome.exitStatus, 0);
    const std::string shown = normalize(outcome.output);
    EXPECT_THAT(shown, MatchesPattern("\\{\"from\": \"jane@example.org\", \"messageId\": "
                                      "\"<[0-9a-f]{32}@example.org>\", \"received\": 0, \"sent\": [0-9]+, "
                                      "\"server\": \"smtp://.*\", \"status\": 250, \"to\": "
                                      "\\[\"joe@example.org\"\\]\\}\n"));
    const std::string message = takeMail().bytes;
    const std::size_t start = shown.find('<');
    EXPECT_THAT(message, HasSubstr("Message-ID: " + shown.substr(start, shown.find('>') + 1 - start)));
}

/// Nothing of the examples' world is there, so all but one of them fail; what they write is still JSON.
TEST(ToolJSON, IsWhatEveryVerbWrites) {
    const ExampleFolder folder;
    std::string all;
    for (const Verb& verb : allVerbs()) {
        std::vector<std::string> arguments = exampleArguments(verb);
        const auto hasOutput = [](const Verb::Option& option) { return option.name == "--output"; };
        const auto output = std::find_if(verb.options.begin(), verb.options.end(), hasOutput);
        if (output != verb.options.end()) arguments = exampleArguments(verb, *output, "out");
        arguments.emplace_back("--json");
        const Outcome outcome = folder.run(arguments);
        EXPECT_EQ(outcome.exitStatus, verb.name() == "proxy" ? 0 : 1) << verb.name();
        const std::string lastLine =
            outcome.output.substr(outcome.output.rfind('\n', outcome.output.size() - 2) + 1);
        EXPECT_EQ(lastLine.find("\"error\":") != std::string::npos, verb.name() != "proxy") << lastLine;
        EXPECT_THAT(outcome.output, testing::EndsWith("}\n")) << verb.name();
        all += outcome.output;
    }
    EXPECT_GE(std::count(all.begin(), all.end(), '\n'), static_cast<std::ptrdiff_t>(allVerbs().size()));
    EXPECT_THAT(normalize(all), HasSubstr("{"));
}
