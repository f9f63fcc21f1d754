#include "s3/ObjectCommands.h"

#include "display/TerminalText.h"
#include "Errors.h"
#include "files/Output.h"
#include "Interrupt.h"
#include "transfer/TransferResult.h"

#include <vantra/CURLError.h>

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

namespace {

constexpr const char* objectDescription = "The object, as s3://BUCKET/KEY";

/// One header a line, by name.
std::string describeHeaders(const CNetRequest& request) {
    std::string text;
    for (const auto& [name, value] : request.getResponseHeaderMap())
        text += toTerminalLine(name + ": " + value) + "\n";
    return text;
}

} // namespace

CHeadObjectCommand::CHeadObjectCommand(CLI::App& group)
    : CStoreCommand(
          group, "head", "Show an object's headers",
          {"vantra s3 head --access-key AKIAEXAMPLE --secret-key-file key.txt s3://my-bucket/notes.txt"}) {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed, objectDescription);
    addStoreOptions();
}

void CHeadObjectCommand::run() {
    getResult().setText("object", object_->getText());
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    client->prepareGetObjectHeadersRequest(*request, object_->getBucket(), object_->getKey());
    const CInterruptGuard interruptGuard;
    {
        const CTransferResult result(getResult(), *request);
        runRequest(*request, object_->getText(), [&] { client->performRequest(*request); });
    }
    if (wantsJSON()) return;
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    output->write(describeHeaders(*request));
    output->commit();
}

CCopyObjectCommand::CCopyObjectCommand(CLI::App& group)
    : CStoreCommand(group, "cp", "Copy an object within its bucket, on the store's side",
                    {"vantra s3 cp --access-key AKIAEXAMPLE --secret-key-file key.txt s3://my-bucket/a.txt "
                     "s3://my-bucket/b.txt"}) {
    addObjectArgument("SOURCE", source_, CObjectArgument::Key::Needed, objectDescription);
    addObjectArgument("TARGET", target_, CObjectArgument::Key::Needed,
                      "The object to make or replace, in the same bucket");
    addStoreOptions();
}

void CCopyObjectCommand::run() {
    if (source_->getBucket() != target_->getBucket())
        throw CUsageError("TARGET: must be in the bucket of SOURCE");
    getResult().setText("source", source_->getText());
    getResult().setText("target", target_->getText());
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    client->prepareCopyObjectRequest(*request, source_->getBucket(), source_->getKey(), target_->getKey());
    const CInterruptGuard interruptGuard;
    runRequest(*request, source_->getText(), [&] {
        client->performRequest(*request);
        CS3Client::checkCopyObjectResult(request->getDefaultReceiveBuffer());
    });
}

CRemoveObjectCommand::CRemoveObjectCommand(CLI::App& group)
    : CStoreCommand(
          group, "rm", "Delete an object",
          {"vantra s3 rm --access-key AKIAEXAMPLE --secret-key-file key.txt s3://my-bucket/notes.txt"}) {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed, objectDescription);
    addStoreOptions();
}

void CRemoveObjectCommand::run() {
    getResult().setText("object", object_->getText());
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    client->prepareDeleteObjectRequest(*request, object_->getBucket(), object_->getKey());
    const CInterruptGuard interruptGuard;
    runRequest(*request, object_->getText(), [&] { client->performRequest(*request); });
}

CObjectExistsCommand::CObjectExistsCommand(CLI::App& group)
    : CStoreCommand(
          group, "exists", "Succeed if there is an object of a name, fail if not",
          {"vantra s3 exists --access-key AKIAEXAMPLE --secret-key-file key.txt s3://my-bucket/notes.txt"}) {
    addObjectArgument("OBJECT", object_, CObjectArgument::Key::Needed, objectDescription);
    addStoreOptions();
}

void CObjectExistsCommand::run() {
    getResult().setText("object", object_->getText());
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    client->prepareGetObjectHeadersRequest(*request, object_->getBucket(), object_->getKey());
    const CInterruptGuard interruptGuard;
    runRequest(*request, object_->getText(), [&] {
        try {
            client->performRequest(*request);
        } catch (const CError& error) {
            if (!CS3Client::isNotFoundError(error)) throw;
            getResult().setBoolean("exists", false);
            throw CError(object_->getText() + ": there is no such object.");
        }
    });
    getResult().setBoolean("exists", true);
}

} // namespace vantra::tool
