#include "s3/PutObjectCommand.h"

#include "ArgumentText.h"
#include "Errors.h"
#include "FileArgument.h"
#include "Input.h"
#include "Interrupt.h"
#include "Terminal.h"

#include <kel/Buffer.h>
#include <kel/Stream.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <limits>

namespace vantra::tool {

using kel::CError;
using kel::IInStream;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr std::size_t mostBytes = std::numeric_limits<int>::max();

/// All of the input: its digest goes ahead of it.
TBuffer<unsigned char> readInput(const String& file) {
    constexpr std::size_t blockSize = std::size_t{64} * 1024;
    const P<IInStream> input = openInput(file);
    TBuffer<unsigned char> content;
    if (input->getSize() > 0)
        content.reserve(std::min(static_cast<std::size_t>(input->getSize()), mostBytes));
    std::array<unsigned char, blockSize> block;
    while (const std::size_t count = input->read(block.data(), block.size())) {
        if (count > mostBytes - content.getUsed())
            throw CError("'" + file +
                         "' is larger than 2147483647 bytes, the most that one request uploads.");
        content.append(block.data(), count);
    }
    return content;
}

} // namespace

CPutObjectCommand::CPutObjectCommand(CLI::App& group) : CStoreCommand(group, "put", "Upload a file") {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed,
                      "The object to make or replace, as s3://BUCKET/KEY");
    addFile();
    addContentType();
    addStoreOptions();
}

void CPutObjectCommand::addFile() {
    getParser()
        .add_option_function<std::string>(
            "-f,--file",
            [this](const std::string& argument) { file_ = parseFileArgument("--file", argument); },
            "File to upload, - for standard input; of 2 GiB at\nmost")
        ->type_name("FILE")
        ->required();
}

void CPutObjectCommand::addContentType() {
    getParser()
        .add_option_function<std::string>(
            "--content-type",
            [this](const std::string& argument) {
                contentType_ = toArgumentText("--content-type", argument);
                refuseControlCharacters("--content-type", contentType_);
            },
            "What kind of content it is, such as text/plain.\nDefault: what the store takes it for")
        ->type_name("TYPE");
}

void CPutObjectCommand::run() {
    if (file_ == "-" && readsStandardInput())
        throw CUsageError("--file: standard input holds the secret key already");
    const CInterruptGuard interruptGuard; // ahead of the input, for which one may have to wait
    const P<CS3Client> client = makeClient();
    const TBuffer<unsigned char> content = readInput(file_);
    const P<CNetRequest> request = new CNetRequest();
    client->preparePutObjectRequest(*request, object_->getBucket(), object_->getKey(), content.getData(),
                                    static_cast<int>(content.getUsed()), contentType_);
    applyTo(*request);
    const std::unique_ptr<CTransferLog> log = openLog();
    CProgressDisplay display(isStandardErrorTerminal());
    CProgressLine line(display, file_);
    runLogged(log.get(), *request, [&] {
        runStoreTransfer(*request, object_->getText(), &line, [&] { client->performRequest(*request); });
    });
}

} // namespace vantra::tool
