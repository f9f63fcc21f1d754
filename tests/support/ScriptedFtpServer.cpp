#include "support/ScriptedFtpServer.h"

#include <sstream>
#include <utility>

namespace testsupport {

namespace {

/// The replies of a willing server, by the command's verb.
const std::map<std::string, std::string, std::less<>> willingReplies = {
    {"USER", "331 password, please\r\n"},
    {"PASS", "230 come in\r\n"},
    {"PWD", "257 \"/\" is here\r\n"},
    {"TYPE", "200 as you like\r\n"},
    {"CWD", "250 moved\r\n"},
    {"MKD", "257 made\r\n"},
    {"RMD", "250 removed\r\n"},
    {"DELE", "250 deleted\r\n"},
    {"RNFR", "350 and to?\r\n"},
    {"RNTO", "250 renamed\r\n"},
    {"SIZE", "213 10\r\n"},
    {"REST", "350 from there\r\n"},
    {"MLST", "250-here it is\r\n type=file;size=3; x\r\n250 end\r\n"},
    {"MLSD", "150 here it comes\r\n226 done\r\n"},
    {"LIST", "150 here it comes\r\n226 done\r\n"},
    {"RETR", "150 here it comes\r\n226 done\r\n"},
    {"STOR", "150 give\r\n226 got it\r\n"},
    {"APPE", "150 give\r\n226 got it\r\n"},
    {"QUIT", "221 bye\r\n"},
};

} // namespace

ScriptedFtpServer::ScriptedFtpServer()
    : control_([this](ScriptedConnection& connection) { serve(connection); }) {}

std::string ScriptedFtpServer::host() const { return "127.0.0.1:" + std::to_string(port()); }

void ScriptedFtpServer::answer(std::string_view line, std::string_view reply) {
    const std::lock_guard lock(mutex_);
    answers_[std::string(line)].emplace_back(reply);
}

void ScriptedFtpServer::sendAsData(std::string bytes) { data_.play(Script().send(std::move(bytes)).close()); }

void ScriptedFtpServer::receiveAsData(std::size_t count) { data_.play(Script().expectBytes(count)); }

std::vector<std::string> ScriptedFtpServer::commands(std::size_t connection) const {
    std::istringstream bytes(received(connection));
    std::vector<std::string> lines;
    for (std::string line; std::getline(bytes, line);) {
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

std::string ScriptedFtpServer::dataReceived(std::size_t connection) {
    (void)data_.finish(); // a client may be done before the connection's end was noticed here
    return data_.received(connection);
}

std::string ScriptedFtpServer::replyTo(const std::string& line) {
    const std::lock_guard lock(mutex_);
    const auto answers = answers_.find(line);
    if (answers != answers_.end() && !answers->second.empty()) {
        std::string reply = answers->second.front();
        answers->second.pop_front();
        return reply;
    }
    const std::string_view verb = std::string_view(line).substr(0, line.find(' '));
    if (verb == "EPSV")
        return "229 Entering Extended Passive Mode (|||" + std::to_string(data_.port()) + "|)\r\n";
    const auto willing = willingReplies.find(verb);
    return willing == willingReplies.end() ? "500 what?\r\n" : willing->second;
}

void ScriptedFtpServer::serve(ScriptedConnection& connection) {
    connection.send("220 ready\r\n");
    try {
        while (true) {
            const std::string line = connection.readLine();
            const std::string reply = replyTo(line);
            if (reply.empty()) return;
            connection.send(reply);
        }
    } catch (const ClientGone&) {
        // A client may leave as it likes.
    }
}

} // namespace testsupport
