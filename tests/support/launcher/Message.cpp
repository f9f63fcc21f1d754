#include "support/launcher/Message.h"

#include <charconv>

namespace testsupport {

namespace {

std::size_t sizeIn(const std::string& text) {
    const long number = numberIn(text);
    if (number < 0) throw std::runtime_error("a negative size: " + text);
    return static_cast<std::size_t>(number);
}

} // namespace

long numberIn(std::string_view text) {
    long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::runtime_error("not a number: " + std::string(text));
    return number;
}

std::string encodeMessage(const Message& message) {
    std::string bytes = std::to_string(message.size()) + "\n";
    for (const std::string& text : message) bytes += std::to_string(text.size()) + "\n" + text;
    return bytes;
}

Message decodeMessage(const std::function<std::string()>& readLine,
                      const std::function<std::string(std::size_t)>& readBytes) {
    Message message;
    for (std::size_t left = sizeIn(readLine()); left > 0; --left)
        message.push_back(readBytes(sizeIn(readLine())));
    return message;
}

void appendProgram(Message& message, const std::vector<std::string>& arguments,
                   const std::string& workingDirectory, const Environment& environment) {
    message.push_back(workingDirectory);
    message.push_back(std::to_string(arguments.size()));
    message.insert(message.end(), arguments.begin(), arguments.end());
    for (const auto& [name, value] : environment) message.push_back(value ? name + "=" + *value : name);
}

ProgramToLaunch programIn(const Message& message, std::size_t begin) {
    ProgramToLaunch program;
    program.workingDirectory = message.at(begin);
    const std::size_t firstArgument = begin + 2;
    const std::size_t firstVariable = firstArgument + sizeIn(message.at(begin + 1));
    for (std::size_t index = firstArgument; index < firstVariable; ++index)
        program.arguments.push_back(message.at(index));
    for (std::size_t index = firstVariable; index < message.size(); ++index) {
        const std::string& change = message[index];
        const std::size_t sign = change.find('=');
        program.environment[change.substr(0, sign)] =
            sign == std::string::npos ? std::nullopt : std::optional(change.substr(sign + 1));
    }
    return program;
}

} // namespace testsupport
