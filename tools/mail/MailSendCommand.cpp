#include "mail/MailSendCommand.h"

#include "arguments/ArgumentText.h"
#include "arguments/FileArgument.h"
#include "Errors.h"
#include "mail/MailTransfer.h"
#include "transfer/TransferResult.h"

#include <CLI/CLI.hpp>

#include <vantra/HeaderValues.h>
#include <vantra/SMTPClient.h>

#include <kel/MemoryStream.h>

namespace vantra::tool {

using kel::CMemoryStream;
using kel::CTime;
using kel::CTimeFields;
using kel::P;
using kel::String;

namespace {

String parseAddress(const std::string& option, const std::string& argument) {
    String address = toArgumentText(option, argument);
    refuseControlCharacters(option, address);
    if (!isValidEmailAddress(address))
        throw CUsageError(String(option) + ": '" + address + "' is not an e-mail address");
    return address;
}

} // namespace

CMailSendCommand::CMailSendCommand(CLI::App& group)
    : CVerb(
          group, "send", "Send a mail with text, HTML and attached files",
          {"vantra mail send --server mail.example.com:587 --tls starttls --user jane --password-file pw.txt "
           "\\\n      --from jane@example.com --to joe@example.com --subject Notes --text notes.txt --attach "
           "notes.pdf"}) {
    server_.addTo(getParser());
    addEnvelopeOptions();
    addContentOptions();
    log_.addTo(getParser());
}

void CMailSendCommand::addEnvelopeOptions() {
    getParser()
        .add_option_function<std::string>(
            "--from",
            [this](const std::string& argument) { letter_.from = parseAddress("--from", argument); },
            "Address of the sender")
        ->type_name("ADDRESS")
        ->required();
    getParser()
        .add_option_function<std::vector<std::string>>(
            "--to",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments)
                    letter_.recipients.push_back(parseAddress("--to", argument));
            },
            "Addresses of the recipients, each of whom sees them\nall. If the server refuses one, nobody "
            "gets the mail")
        ->type_name("ADDRESS")
        ->required();
    getParser()
        .add_option_function<std::string>(
            "--subject",
            [this](const std::string& argument) {
                letter_.subject = toArgumentText("--subject", argument);
                refuseControlCharacters("--subject", letter_.subject);
            },
            "What the mail is about")
        ->type_name("TEXT")
        ->required();
}

void CMailSendCommand::addContentOptions() {
    const auto addFile = [this](const char* option, std::optional<String>& file, const char* description) {
        getParser()
            .add_option_function<std::string>(
                option,
                [option, &file](const std::string& argument) { file = parseFileArgument(option, argument); },
                description)
            ->type_name("FILE");
    };
    addFile("--text", letter_.textFile, "File with the text, in UTF-8; - for standard input");
    addFile("--html", letter_.htmlFile,
            "File with the text as HTML, in UTF-8; - for standard\ninput. With --text too, readers show what "
            "they can");
    getParser()
        .add_option_function<std::vector<std::string>>(
            "--attach",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments) {
                    letter_.attachedFiles.push_back(parseFileArgument("--attach", argument));
                    if (letter_.attachedFiles.back() == "-") throw CUsageError("--attach: must name a file");
                }
            },
            "Files to attach")
        ->type_name("FILE");
}

void CMailSendCommand::check() const {
    if (!letter_.textFile && !letter_.htmlFile)
        throw CUsageError("the mail has no body; give one with --text or --html");
    const int readers = (letter_.textFile == "-" ? 1 : 0) + (letter_.htmlFile == "-" ? 1 : 0) +
                        (server_.readPasswordFromStandardInput() ? 1 : 0);
    if (readers > 1)
        throw CUsageError("standard input can be only one of --text, --html and --password-file");
}

void CMailSendCommand::run() {
    check();
    const P<CMimeMessage> mail = makeMessage(letter_, CTimeFields(CTime::now()));
    const P<CMemoryStream> message = new CMemoryStream();
    mail->store(*message);
    const P<CNetRequest> request = new CNetRequest();
    CSMTPClient::makeSendMailRequest(*request, server_.getParams(), letter_.from, letter_.recipients,
                                     message);
    server_.applyTo(*request);
    getResult().setText("server", request->getURL());
    getResult().setText("from", letter_.from);
    getResult().setTexts("to", letter_.recipients);
    getResult().setText("messageId", mail->getHeaders()["Message-ID"]);
    const CTransferResult result(getResult(), *request);
    CProgressDisplay display(showsProgress());
    CProgressLine line(display, request->getURL());
    performMailTransfer(*request, log_, &line);
}

} // namespace vantra::tool
