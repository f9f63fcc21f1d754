/// @file vantra/ProxySettings.h
/// Which proxy, if any, a transfer uses.
///
///     P<CProxySettings> settings = new CProxySettings();
///     settings->addProxiesFromString("http=gate:3128;https=gate:3128");
///     settings->addDirectConnectHostsFromString("localhost;store");
///     request->setProxy(settings->getProxyForURL(url));
#pragma once

#include "vantra/Export.h"

#include <kel/Array.h>
#include <kel/Base.h>
#include <kel/Map.h>
#include <kel/Mutex.h>
#include <kel/P.h>
#include <kel/SafeGlobal.h>
#include <kel/String.h>

#include <string_view>

namespace vantra {

struct CSystemProxy;

/// A table from URL scheme to proxy, and the hosts that are always reached directly. A proxy is "host:port"
/// or a full proxy URL, as CURLOPT_PROXY takes it; it is kept as given, and nothing about it is checked.
/// Schemes and host names do not depend on the case of ASCII letters.
///
/// Thread safety: any thread may call any member. Each holds the object's mutex for its whole run, except
/// that getProxyForURL() takes it for each of its two lookups: a change may fall between them.
class VANTRA_API CProxySettings : public kel::CBase {
public:
    /// No proxies, no direct hosts.
    CProxySettings();
    CProxySettings(const CProxySettings&) = delete;
    CProxySettings& operator=(const CProxySettings&) = delete;
    ~CProxySettings() override;

    /// Replaces the scheme's proxy; an empty one removes it.
    void setProxyForURLScheme(const kel::String& scheme, const kel::String& proxy);
    /// Empty when the scheme has none.
    [[nodiscard]] kel::String getProxyForURLScheme(const kel::String& scheme) const;
    /// Appends the schemes that have a proxy, in lower case and ascending order.
    void getProxyURLSchemes(kel::TArray<kel::String>& schemes) const;
    /// Adds the proxies of a list whose pieces ";", ",", blanks or tabs separate, later ones over earlier
    /// ones: "scheme=proxy" for one scheme ("scheme=" removes its proxy); "host" and "host:port" for "http",
    /// "https" and "ftp"; and any other piece with a ":", such as "socks5://gate:1080", for the scheme it
    /// starts with.
    void addProxiesFromString(const kel::String& text);

    /// The host is kept as given, but for its case; nothing in it has a special meaning.
    void addDirectConnectHost(const kel::String& host);
    /// Takes a host out again; one that is not there does not matter.
    void removeDirectConnectHost(const kel::String& host);
    /// Adds the hosts of a list that is separated as in addProxiesFromString(). There are no wildcards:
    /// "*.lan" and "<local>" name hosts that nobody has.
    void addDirectConnectHostsFromString(const kel::String& text);
    /// Appends the hosts, in lower case and ascending order.
    void getDirectConnectHosts(kel::TArray<kel::String>& hosts) const;
    /// Compares whole names.
    [[nodiscard]] bool isDirectConnectHost(const kel::String& host) const;

    /// The proxy for the URL's scheme; empty when there is none, when the URL's host is a direct one, and
    /// when the URL holds no ":". The host is what stands between the slashes behind the first ":" and the
    /// next "/" (without one "?", without that "#"), up to its last ":". User names and brackets of IPv6
    /// addresses are thus part of it.
    [[nodiscard]] kel::String getProxyForURL(const kel::String& url) const;

    /// Forgets all proxies and hosts.
    void clear();

    /// Replaces everything by the settings that the operating system holds for the current user, or else for
    /// the machine; nothing is left when they name no proxy or cannot be had. Hosts to reach directly are
    /// taken only along with a proxy. Automatic detection and configuration scripts are ignored.
    void initFromUserSettings();

    /// The one instance of the process, on which initFromUserSettings() ran once: the first call makes it,
    /// and other threads wait for that. It is never refreshed. Once the process has let go of it, at its end,
    /// each caller gets an instance of its own.
    /// @throws what making it threw (memory ran out) from the call that made it; then kel::CError
    /// "Construction of static object has failed." from every other.
    [[nodiscard]] static kel::P<CProxySettings> getUserSettings();
    /// Decides which caller of getUserSettings() makes the instance; nobody else may begin with it.
    [[nodiscard]] static kel::CSafeGlobalGuard& userSettingsGuard();

protected:
    /// A new instance on which initFromUserSettings() has run.
    [[nodiscard]] static kel::P<CProxySettings> createAndInitFromUserSettings();
    /// Lets go of the process's instance, and does nothing where there is none. Run by the base library at
    /// the end of the process (kel::CSafeGlobalDisposer): before whatever was to be let go of when the
    /// instance was made, and before the destructors of static objects that were complete then.
    static void disposeUserSettings();
    /// initFromUserSettings() with what the operating system said.
    void initFromSystemProxy(const CSystemProxy& proxy);

private:
    struct UserSettings;

    void addProxy(std::wstring_view piece);
    void setProxyForUsualSchemes(const kel::String& proxy);

    mutable kel::CMutex mutex_;
    kel::TMap<kel::String, kel::String> proxies_;     // by lower-cased scheme; never an empty proxy
    kel::TMap<kel::String, bool> directConnectHosts_; // a set of lower-cased names: every value is true
};

} // namespace vantra
