#include "MessageReader.h"

#include "support/ServerStart.h"

MessageReader::MessageReader() {
    testsupport::StartedServer started =
        testsupport::startServer(1, [](const std::vector<std::uint16_t>& ports) {
            return std::make_unique<testsupport::ChildProcess>(std::vector<std::string>{
                "/usr/bin/python3", "-I", MESSAGE_READER, std::to_string(ports.at(0))});
        });
    process_ = std::move(started.process);
    connection_ = std::make_unique<testsupport::TcpClient>(started.ports.at(0));
}

std::string MessageReader::describe(std::string_view message) {
    connection_->send(std::to_string(message.size()) + "\n");
    connection_->send(message);
    return connection_->readBytes(std::stoul(connection_->readUntil("\n")));
}

std::string MessageReader::plain(std::string_view utf8) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : utf8) {
        if (c >= ' ' && c <= '~' && c != '%') {
            text += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            text += '%';
            text += digits[byte >> 4U];
            text += digits[byte & 0xFU];
        }
    }
    return text;
}
