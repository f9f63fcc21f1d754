#include "mail/MailServerOptions.h"

#include "arguments/ArgumentText.h"
#include "arguments/TimeoutArgument.h"
#include "Errors.h"

#include <CLI/CLI.hpp>

#include <kel/Number.h>

#include <algorithm>

namespace vantra::tool {

using kel::CError;
using kel::String;

namespace {

/// A name, an IPv4 address, or an IPv6 address in brackets. Everything that would mean something else in a
/// URL is left out.
bool isHost(const String& text) {
    const bool isBracketed = text.startsWith(L"[") && text.endsWith(L"]");
    const String inside = isBracketed ? text.substr(1, text.length() - 2) : text;
    const std::wstring_view view = inside.view();
    return !view.empty() && std::all_of(view.begin(), view.end(), [isBracketed](wchar_t c) {
        const bool isDigit = c >= L'0' && c <= L'9';
        const bool isLetter = (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
        return isDigit || isLetter || c == L'.' || (isBracketed ? c == L':' : c == L'-' || c == L'_');
    });
}

/// 0 for a text that is no port.
int toPort(const String& text) {
    constexpr int lastPort = 65535;
    const std::wstring_view view = text.view();
    const bool isDecimal =
        std::all_of(view.begin(), view.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
    if (view.empty() || view.size() > 5 || !isDecimal) return 0;
    const kel::int64 port = kel::parseInt64(view);
    return port <= lastPort ? static_cast<int>(port) : 0;
}

} // namespace

void CMailServerOptions::addTo(CLI::App& verb) {
    verb.add_option_function<std::string>(
            "--server", [this](const std::string& argument) { parseServer(argument); },
            "Mail server to connect to, such as mail.example:587")
        ->type_name("HOST:PORT")
        ->required();
    verb.add_option_function<std::string>(
            "--tls", [this](const std::string& argument) { parseTLS(argument); },
            "none: nothing is encrypted; ssl: TLS from the start\n(usually port 465); starttls: TLS before "
            "anything else\nis said (usually port 587). The certificate must name\nthe host, but who signed "
            "it is not verified")
        ->type_name("none|ssl|starttls")
        ->required();
    login_.addTo(verb);
    verb.add_option_function<std::string>(
            "--timeout",
            [this](const std::string& argument) { timeout_ = parseTimeoutArgument("--timeout", argument); },
            "Longest time for it all, such as 2.5. Default: no\nlimit. In any case 30 seconds without a "
            "connection or\n60 without data end it")
        ->type_name("SECONDS");
}

void CMailServerOptions::parseServer(const std::string& argument) {
    const String text = toArgumentText("--server", argument);
    const std::size_t colon = text.findLast(L':');
    host_ = text.substr(0, colon);
    port_ = colon == String::npos ? 0 : toPort(text.substr(colon + 1));
    if (!isHost(host_) || port_ == 0)
        throw CUsageError("--server: '" + text + "' is not HOST:PORT, such as mail.example:587");
}

void CMailServerOptions::parseTLS(const std::string& argument) {
    const String text = toArgumentText("--tls", argument);
    if (text != "none" && text != "ssl" && text != "starttls")
        throw CUsageError("--tls: '" + text + "' is none of none, ssl and starttls");
    connectType_ = CSMTPParams::connectTypeToInt(text == "none" ? String("unencrypted") : text);
}

CSMTPParams CMailServerOptions::getParams() const {
    const Login login = login_.getLogin().value_or(Login{});
    return {host_, port_, connectType_, login.user, login.password};
}

void CMailServerOptions::applyTo(CNetRequest& request) const {
    if (timeout_) request.setFullRequestTimeout(*timeout_);
}

} // namespace vantra::tool
