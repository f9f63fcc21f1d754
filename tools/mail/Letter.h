/// @file mail/Letter.h
/// A mail as the user describes it.
#pragma once

#include <vantra/MimeMessage.h>

#include <kel/Array.h>
#include <kel/P.h>
#include <kel/String.h>
#include <kel/Time.h>

#include <optional>

namespace vantra::tool {

/// What the user gave of a mail.
struct Letter {
    kel::String from;
    kel::TArray<kel::String> recipients;
    kel::String subject;
    std::optional<kel::String> textFile; ///< "-" for standard input
    std::optional<kel::String> htmlFile; ///< "-" for standard input
    kel::TArray<kel::String> attachedFiles;
};

/// Reads the files and makes the message, with From, To, Subject, Date and a new Message-ID. Text and HTML
/// are alternatives when both are given; line ends become CR LF.
/// @throws kel::CError if a file cannot be read, or if one with text or HTML is not valid UTF-8.
[[nodiscard]] kel::P<CMimeMessage> makeMessage(const Letter& letter, const kel::CTimeFields& date);

} // namespace vantra::tool
