/// @file RandomMessage.h
/// Messages of every shape, the same in each run, and what a parser must find in them.
#pragma once

#include <vantra/vantra.h>

#include <cstddef>
#include <random>
#include <string>

/// A message and the description that MessageReader must give of it.
struct GeneratedMessage {
    kel::P<vantra::CMimeMessage> message;
    std::string expected;
};

/// Makes messages with random subjects and display names, up to three multiparts deep, with texts and
/// attachments of 0 bytes to 1 MiB.
class RandomMessages {
public:
    GeneratedMessage next();

private:
    std::size_t pick(std::size_t count);
    char32_t pickCharacter(bool onlyASCII);
    kel::String pickText(std::size_t maxLength, bool onlyASCII);
    std::string pickBytes();
    std::string pickTextBody();

    kel::P<vantra::CMimeMessage> makeEntity(int depth, bool isMultipart, std::string& description);
    kel::P<vantra::CMimeMessage> makeMultipart(int depth, std::string& description);
    kel::P<vantra::CMimeMessage> makeText(std::string& body);
    kel::P<vantra::CMimeMessage> makeFile(kel::String& name, std::string& body);

    std::mt19937 random_{20190401};
};
