/// Writes what the desktop's settings say: "proxies: LIST", "bypass: LIST", and with a URL "proxy: PROXY" as
/// the user's settings give it. Called as
///
///     proxy_desktop_probe                    by the platform's door
///     proxy_desktop_probe --gio LIBRARY      with another library in the place of GLib's
///     proxy_desktop_probe --url URL

#include "proxy/posix/GSettings.h"
#include "vantra/ProxySettings.h"

#include <iostream>
#include <string_view>

int main(int argumentCount, char** arguments) {
    const std::string_view option = argumentCount == 3 ? arguments[1] : "";
    if (option == "--url") {
        std::cout << "proxy: " << vantra::CProxySettings::getUserSettings()->getProxyForURL(arguments[2])
                  << "\n";
        return 0;
    }
    const vantra::CSystemProxy proxy =
        option == "--gio" ? toSystemProxy(vantra::readDesktopProxy(arguments[2])) : vantra::getSystemProxy();
    std::cout << "proxies: " << proxy.proxyList << "\nbypass: " << proxy.bypassList << "\n";
    return 0;
}
