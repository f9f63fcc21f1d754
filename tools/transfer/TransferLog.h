/// @file TransferLog.h
/// A file with the record of transfers.
#pragma once

#include "files/Output.h"

#include <vantra/NetRequest.h>

#include <kel/P.h>
#include <kel/String.h>
#include <kel/XMLElement.h>

#include <functional>
#include <memory>

namespace vantra::tool {

/// Collects what requests recorded and writes it as one XML document: the element "NetRequest" of a single
/// transfer (see CNetRequest::getVerboseOutput), or "NetRequests" around any number of them. Of each message
/// up to 16384 bytes are shown, of the bodies of a PUT and an upload to FTP only the size, and no passwords.
///
/// Thread safety: one thread at a time.
class CTransferLog {
public:
    enum class Kind { OneTransfer, ManyTransfers };

    /// Creates the file; it gets its name when it is written.
    /// @throws kel::CError if that fails.
    CTransferLog(const kel::String& file, Kind kind);
    CTransferLog(const CTransferLog&) = delete;
    CTransferLog& operator=(const CTransferLog&) = delete;
    /// Leaves nothing of a log that was not written.
    ~CTransferLog();

    /// Has a request record its transfers. Holds after its reset() too.
    static void record(CNetRequest& request);

    /// Takes the record of the request's latest transfer, which is over. Of OneTransfer the last one counts.
    void add(const CNetRequest& request);

    /// Writes the file; to be called once, at the end. @throws kel::CError
    void write();

private:
    std::unique_ptr<IOutput> output_;
    Kind kind_;
    kel::P<kel::CXMLElement> root_;
};

/// Runs an action that performs the request, and writes the log whether or not it succeeds. When both fail,
/// the log's failure goes to standard error and the action's is thrown.
/// @param log null for none, which leaves nothing but the action.
void runLogged(CTransferLog* log, CNetRequest& request, const std::function<void()>& action);

} // namespace vantra::tool
