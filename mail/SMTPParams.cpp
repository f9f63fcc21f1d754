#include "vantra/SMTPClient.h"

#include <kel/Error.h>

#include <array>

namespace vantra {

using kel::CInvalidArgError;
using kel::String;

namespace {

struct ConnectTypeName {
    CSMTPParams::ConnectType type;
    const char* text;
};

constexpr std::array<ConnectTypeName, 3> connectTypeNames{
    {{CSMTPParams::ConnectTypeUnencrypted, "unencrypted"},
     {CSMTPParams::ConnectTypeSSL, "ssl"},
     {CSMTPParams::ConnectTypeStartTLS, "starttls"}}};

} // namespace

CSMTPParams::CSMTPParams(const String& host, int port, ConnectType type, const String& loginName,
                         const String& loginPassword)
    : host_(host), port_(port), connectType_(type), loginName_(loginName), loginPassword_(loginPassword) {}

CSMTPParams::~CSMTPParams() = default;

String CSMTPParams::connectTypeToString(ConnectType type) {
    for (const ConnectTypeName& name : connectTypeNames)
        if (name.type == type) return name.text;
    throw CInvalidArgError("CSMTPParams::connectTypeToString",
                           "invalid connect type: " + String::fromInt(static_cast<int>(type)));
}

CSMTPParams::ConnectType CSMTPParams::connectTypeToInt(const String& text) {
    for (const ConnectTypeName& name : connectTypeNames)
        if (text == name.text) return name.type;
    throw CInvalidArgError("CSMTPParams::connectTypeToInt", "invalid connect type: " + text);
}

} // namespace vantra
