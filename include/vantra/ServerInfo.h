/// @file vantra/ServerInfo.h
/// What one server announced about itself, remembered across requests and threads.
///
///     P<CServerInfo> info = new CServerInfo();
///     request->setServerInfoToUpdate(info);
///     request->perform();
///     if (!info->areGetRangesBroken()) request->setRange(offset, length);
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/Map.h>
#include <kel/Mutex.h>
#include <kel/String.h>

namespace vantra {

/// A record of one server's "Server" header and the quirks derived from it.
///
/// Thread safety: any thread may call any member; each holds the record's mutex for its whole run.
class VANTRA_API CServerInfo : public kel::CBase {
public:
    CServerInfo();
    CServerInfo(const CServerInfo&) = delete;
    CServerInfo& operator=(const CServerInfo&) = delete;
    ~CServerInfo() override;

    /// Fills the record from the first response that names its server; later calls change nothing.
    /// @param headers response headers by lower-cased name.
    void updateFromHeaders(const kel::TMap<kel::String, kel::String>& headers);

    /// The first "Server" header seen; empty until then.
    [[nodiscard]] kel::String getServerHeader() const;
    /// Whether GET is not to be relied on; no server is known for it.
    [[nodiscard]] bool isGetBroken() const;
    /// Whether PUT is not to be relied on; no server is known for it.
    [[nodiscard]] bool isPutBroken() const;
    /// Whether GET with a range is not to be relied on, as with servers that announce a version of both "DAV"
    /// and "Python". Ask before CNetRequest::setRange.
    [[nodiscard]] bool areGetRangesBroken() const;

private:
    mutable kel::CMutex mutex_;
    kel::String serverHeader_; // empty until a server announced itself
    bool getBroken_ = false;
    bool putBroken_ = false;
    bool getRangesBroken_ = false;
};

/// The products named in a "Server" header value (RFC 9110 §10.2.4), each with its version. The words of a
/// comment count as products too.
///
/// Thread safety: one thread at a time, or any number of readers.
class VANTRA_API CHTTPServerHeader : public kel::CBase {
public:
    /// Takes the value apart; any text will do.
    explicit CHTTPServerHeader(const kel::String& header);
    CHTTPServerHeader(const CHTTPServerHeader&);
    CHTTPServerHeader(CHTTPServerHeader&&) noexcept;
    CHTTPServerHeader& operator=(const CHTTPServerHeader&);
    CHTTPServerHeader& operator=(CHTTPServerHeader&&) noexcept;
    ~CHTTPServerHeader() override;

    /// Names are matched exactly, case included.
    [[nodiscard]] bool hasComponent(const kel::String& name) const;
    /// The version, or empty when the product has none or is not named at all.
    [[nodiscard]] kel::String getComponentVersion(const kel::String& name) const;
    /// Version by product name; the last mention of a product counts.
    [[nodiscard]] const kel::TMap<kel::String, kel::String>& getComponentVersionMap() const noexcept {
        return componentVersions_;
    }

private:
    kel::String header_;
    kel::TMap<kel::String, kel::String> componentVersions_;
};

} // namespace vantra
