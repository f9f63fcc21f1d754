#include "ProxyCommand.h"

#include "arguments/HiddenPassword.h"
#include "display/TerminalText.h"
#include "files/Output.h"

#include <CLI/CLI.hpp>

#include <vantra/ProxySettings.h>

namespace vantra::tool {

using kel::P;
using kel::String;
using kel::TArray;

namespace {

constexpr const char* nothing = "none"; // as --proxy understands it

std::string toLine(const String& text) { return toTerminalLine(hidePasswords(text)) + "\n"; }

std::string describeAll(const CProxySettings& settings) {
    TArray<String> schemes;
    settings.getProxyURLSchemes(schemes);
    if (schemes.empty()) return toLine(nothing);
    std::string lines;
    for (const String& scheme : schemes)
        lines += toLine(scheme + "=" + settings.getProxyForURLScheme(scheme));
    TArray<String> hosts;
    settings.getDirectConnectHosts(hosts);
    for (const String& host : hosts) lines += toLine("direct=" + host);
    return lines;
}

std::string describeFor(const CProxySettings& settings, const CURLArgument& url) {
    const String proxy = settings.getProxyForURL(url.getText());
    return toLine(proxy.isEmpty() ? String(nothing) : proxy);
}

void addAll(CJSONObject& result, const CProxySettings& settings) {
    TArray<String> schemes;
    settings.getProxyURLSchemes(schemes);
    CJSONObject proxies;
    for (const String& scheme : schemes)
        proxies.setText(scheme.toUTF8().c_str(), hidePasswords(settings.getProxyForURLScheme(scheme)));
    TArray<String> hosts;
    settings.getDirectConnectHosts(hosts);
    result.setObject("proxies", proxies);
    result.setTexts("direct", hosts);
}

void addFor(CJSONObject& result, const CProxySettings& settings, const CURLArgument& url) {
    const String proxy = settings.getProxyForURL(url.getText());
    result.setText("url", url.getText());
    if (proxy.isEmpty())
        result.setNull("proxy");
    else
        result.setText("proxy", hidePasswords(proxy));
}

} // namespace

CProxyCommand::CProxyCommand(CLI::App& program)
    : CVerb(program, "proxy", "Tell which proxy the system settings name",
            {"vantra proxy", "vantra proxy https://www.example.com/"}) {
    getParser()
        .add_option_function<std::string>(
            "URL", [this](const std::string& argument) { url_.emplace("URL", argument); },
            "Address to tell the proxy for, or none if there is\nnone. Default: a line SCHEME=PROXY for each "
            "scheme that\nhas one and direct=HOST for each host reached without")
        ->type_name("");
}

void CProxyCommand::run() {
    const P<CProxySettings> settings = CProxySettings::getUserSettings();
    if (wantsJSON()) {
        if (url_)
            addFor(getResult(), *settings, *url_);
        else
            addAll(getResult(), *settings);
        return;
    }
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    output->write(url_ ? describeFor(*settings, *url_) : describeAll(*settings));
    output->commit();
}

} // namespace vantra::tool
