#include "transfer/TransferLog.h"

#include "display/TerminalText.h"

namespace vantra::tool {

using kel::CError;
using kel::CXMLElement;
using kel::P;
using kel::String;

namespace {

constexpr unsigned int maxMessageLength = 16384; // the most that libcurl reports in one piece

} // namespace

CTransferLog::CTransferLog(const String& file, Kind kind) : output_(openOutput(file)), kind_(kind) {
    root_ = new CXMLElement(kind_ == Kind::ManyTransfers ? "NetRequests" : "NetRequest");
}

CTransferLog::~CTransferLog() = default;

void CTransferLog::record(CNetRequest& request) {
    request.setVerboseSettings(CNetRequest::VerboseLogDataByMethod, CNetRequest::VerboseLogDataSize);
    request.setVerbose(true);
}

void CTransferLog::add(const CNetRequest& request) {
    const P<CXMLElement> transfer = request.getVerboseOutput(maxMessageLength);
    if (!transfer) return;
    if (kind_ == Kind::ManyTransfers)
        root_->addChild(transfer);
    else
        root_ = transfer;
}

void CTransferLog::write() {
    output_->write(root_->toDocumentUTF8());
    output_->commit();
}

void runLogged(CTransferLog* log, CNetRequest& request, const std::function<void()>& action) {
    if (!log) {
        action();
        return;
    }
    CTransferLog::record(request);
    try {
        action();
    } catch (...) {
        try {
            log->add(request);
            log->write();
        } catch (const CError& error) {
            writeMessage(error.getMessage());
        }
        throw;
    }
    log->add(request);
    log->write();
}

} // namespace vantra::tool
