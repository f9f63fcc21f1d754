#include "http/UploadCommand.h"

#include "arguments/ArgumentText.h"
#include "arguments/FileArgument.h"
#include "Errors.h"
#include "files/Input.h"
#include "Interrupt.h"
#include "transfer/Transfer.h"

#include <CLI/CLI.hpp>

namespace vantra::tool {

using kel::IInStream;
using kel::P;
using kel::String;

namespace {

constexpr const char* defaultContentType = "application/octet-stream";

std::vector<std::string> getExamples(CUploadCommand::Kind kind) {
    if (kind == CUploadCommand::Kind::Put)
        return {"vantra put https://www.example.com/notes.txt -f notes.txt --content-type text/plain",
                "tar c notes | vantra put ftp://ftp.example.com/notes.tar -f -"};
    return {"vantra post https://api.example.com/orders -f order.json --content-type application/json",
            "vantra post --json -o reply.xml https://api.example.com/orders -f order.json"};
}

} // namespace

CUploadCommand::CUploadCommand(CLI::App& program, Kind kind)
    : CVerb(program, kind == Kind::Put ? "put" : "post",
            kind == Kind::Put ? "Store a file under a URL" : "Send a file to what a URL names",
            getExamples(kind)),
      kind_(kind) {
    addURL();
    addBodyOptions();
    responseOptions_.addTo(getParser());
    requestOptions_.addTo(getParser());
    logOption_.addTo(getParser());
}

void CUploadCommand::addURL() {
    getParser()
        .add_option_function<std::string>(
            "URL", [this](const std::string& argument) { url_.emplace("URL", argument); },
            kind_ == Kind::Put ? "Address to store it under: http, https, ftp or ftps"
                               : "Address to send it to: http or https")
        ->type_name("")
        ->required();
}

void CUploadCommand::addBodyOptions() {
    getParser()
        .add_option_function<std::string>(
            "-f,--file",
            [this](const std::string& argument) { file_ = parseFileArgument("--file", argument); },
            "File to send, - for standard input")
        ->type_name("FILE")
        ->required();
    getParser()
        .add_option_function<std::string>(
            "--content-type",
            [this](const std::string& argument) {
                contentType_ = toArgumentText("--content-type", argument);
                refuseControlCharacters("--content-type", *contentType_);
                if (contentType_->trim().isEmpty()) throw CUsageError("--content-type: must not be empty");
            },
            "What it is, such as text/plain. HTTP only. Default:\napplication/octet-stream")
        ->type_name("TYPE");
}

void CUploadCommand::check() {
    requestOptions_.checkFor(*url_);
    responseOptions_.checkFor(*url_);
    logOption_.checkFor(responseOptions_.getOutputName());
    getResult().setText("url", url_->getText());
    getResult().setText("file", file_);
    setOutput(responseOptions_.getOutputName());
    if (kind_ == Kind::Post && !url_->isHTTP()) throw CUsageError("URL: post needs an http or https URL");
    if (file_ == "-" && requestOptions_.getLogin().readsStandardInput())
        throw CUsageError("--file: standard input holds the password already");
    if (!contentType_) return;
    if (!url_->isHTTP()) throw CUsageError("--content-type: needs an http or https URL");
    if (requestOptions_.getHeaders().hasHeader("Content-Type"))
        throw CUsageError("--content-type: a --header holds a Content-Type already");
}

void CUploadCommand::run() {
    check();
    const CInterruptGuard interruptGuard; // ahead of the input, for which one may have to wait
    const P<CNetRequest> request = new CNetRequest();
    configure(*request);
    const P<IInStream> input = openInput(file_);
    request->setSendDataStream(input);
    request->setSendDataSize(input->getSize());
    const std::unique_ptr<CTransferLog> log = logOption_.open();
    const std::unique_ptr<IOutput> output = responseOptions_.open();
    TransferSettings settings{getResult(), showsProgress()};
    settings.includeHeaders = responseOptions_.getIncludeHeaders();
    settings.log = log.get();
    runTransfer(*request, *url_, *output, settings);
}

void CUploadCommand::configure(CNetRequest& request) const {
    setMethod(request);
    if (url_->isHTTP()) setContentType(request);
    requestOptions_.applyTo(request, *url_);
}

void CUploadCommand::setMethod(CNetRequest& request) const {
    if (url_->isHTTP())
        request.setHTTPMethod(kind_ == Kind::Put ? "PUT" : "POST");
    else
        request.setUpload(true);
}

void CUploadCommand::setContentType(CNetRequest& request) const {
    if (requestOptions_.getHeaders().hasHeader("Content-Type")) return;
    const P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Content-Type", contentType_.value_or(defaultContentType));
    request.setCustomHTTPHeaders(headers);
}

} // namespace vantra::tool
