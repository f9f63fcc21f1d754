#include "s3/PutObjectCommand.h"

#include "arguments/ArgumentText.h"
#include "arguments/FileArgument.h"
#include "Errors.h"
#include "files/Input.h"
#include "Interrupt.h"
#include "transfer/TransferResult.h"

#include <kel/Buffer.h>

#include <CLI/CLI.hpp>

#include <limits>

namespace vantra::tool {

using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr std::size_t mostBytes = std::numeric_limits<int>::max();

} // namespace

CPutObjectCommand::CPutObjectCommand(CLI::App& group)
    : CStoreCommand(group, "put", "Upload a file",
                    {"vantra s3 put --access-key AKIAEXAMPLE --secret-key-file key.txt -f notes.txt "
                     "s3://my-bucket/notes.txt"}) {
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
    getResult().setText("object", object_->getText());
    getResult().setText("file", file_);
    const CInterruptGuard interruptGuard; // ahead of the input, for which one may have to wait
    const P<CS3Client> client = makeClient();
    const P<TBuffer<unsigned char>> content = readInput(file_, mostBytes); // its digest goes ahead of it
    const P<CNetRequest> request = new CNetRequest();
    client->preparePutObjectRequest(*request, object_->getBucket(), object_->getKey(), content->getData(),
                                    static_cast<int>(content->getUsed()), contentType_);
    applyTo(*request);
    const std::unique_ptr<CTransferLog> log = openLog();
    const CTransferResult result(getResult(), *request);
    CProgressDisplay display(showsProgress());
    CProgressLine line(display, file_);
    runLogged(log.get(), *request, [&] {
        runStoreTransfer(*request, object_->getText(), &line, [&] { client->performRequest(*request); });
    });
}

} // namespace vantra::tool
