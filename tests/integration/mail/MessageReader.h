/// @file MessageReader.h
/// A parser of messages that was written elsewhere: Python's email package.
#pragma once

#include "support/ChildProcess.h"
#include "support/TcpClient.h"

#include <memory>
#include <string>
#include <string_view>

/// One Python process that reads any number of messages.
///
/// Thread safety: one thread at a time.
class MessageReader {
public:
    MessageReader();

    /// What the parser finds in a message, in the form that message_reader.py describes.
    std::string describe(std::string_view message);

    /// A text in the form in which it appears in a description.
    static std::string plain(std::string_view utf8);

private:
    std::unique_ptr<testsupport::ChildProcess> process_;
    std::unique_ptr<testsupport::TcpClient> connection_;
};
