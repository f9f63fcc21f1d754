#include "proxy/SystemProxy.h"

#include <windows.h>

#include <winhttp.h>

#include <memory>

namespace vantra {

using kel::String;

namespace {

struct FreeGlobal {
    void operator()(wchar_t* text) const noexcept { GlobalFree(text); }
};
/// A string of the system's, which the receiver has to free; may be null.
using SystemString = std::unique_ptr<wchar_t, FreeGlobal>;

void takeLists(const SystemString& proxyList, const SystemString& bypassList, CSystemProxy& proxy) {
    if (proxyList) proxy.proxyList = String(proxyList.get()).trim();
    if (bypassList) proxy.bypassList = String(bypassList.get()).trim();
}

void readUserConfiguration(CSystemProxy& proxy) {
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config{};
    const bool succeeded = WinHttpGetIEProxyConfigForCurrentUser(&config);
    const SystemString scriptAddress(config.lpszAutoConfigUrl);
    const SystemString proxyList(config.lpszProxy);
    const SystemString bypassList(config.lpszProxyBypass);
    if (succeeded) takeLists(proxyList, bypassList, proxy);
}

void readMachineConfiguration(CSystemProxy& proxy) {
    WINHTTP_PROXY_INFO info{};
    const bool succeeded = WinHttpGetDefaultProxyConfiguration(&info);
    const SystemString proxyList(info.lpszProxy);
    const SystemString bypassList(info.lpszProxyBypass);
    if (succeeded && info.dwAccessType != WINHTTP_ACCESS_TYPE_NO_PROXY)
        takeLists(proxyList, bypassList, proxy);
}

} // namespace

CSystemProxy getSystemProxy() {
    CSystemProxy proxy;
    readUserConfiguration(proxy);
    if (proxy.proxyList.isEmpty()) readMachineConfiguration(proxy);
    return proxy;
}

} // namespace vantra
