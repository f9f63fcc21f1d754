#include "vantra/SMTPClient.h"

#include "vantra/NetStringList.h"

#include <kel/Error.h>
#include <kel/MemoryStream.h>

#include <array>
#include <cstdio>

namespace vantra {

using kel::CInvalidArgError;
using kel::CMemoryInStream;
using kel::CMemoryStream;
using kel::CTimeFields;
using kel::IInStream;
using kel::P;
using kel::String;
using kel::TArray;
using kel::TBuffer;

namespace {

String makeURL(const CSMTPParams& params) {
    const char* const scheme = params.getConnectType() == CSMTPParams::ConnectTypeSSL ? "smtps" : "smtp";
    return scheme + ("://" + params.getHost() + ":" + String::fromInt(params.getPort()));
}

bool hasNUL(const String& text) { return text.find(L'\0') != String::npos; }

void checkEnvelope(const String& from, const TArray<String>& recipients, const char* function) {
    // libcurl would take such a text only up to the NUL, and so another address.
    if (hasNUL(from)) throw CInvalidArgError(function, "sender contains a NUL character");
    // Without any, libcurl sends another command in place of the mail, and reports success.
    if (recipients.empty()) throw CInvalidArgError(function, "no recipients given");
    for (const String& recipient : recipients)
        if (hasNUL(recipient)) throw CInvalidArgError(function, "recipient contains a NUL character");
}

} // namespace

CSMTPClient::CSMTPClient(const CSMTPParams& params) : params_(params), request_(new CNetRequest()) {
    doInitialRequestInit(*request_, params_);
}

CSMTPClient::~CSMTPClient() = default;

void CSMTPClient::sendMail(const String& from, const TArray<String>& recipients,
                           const TBuffer<unsigned char>& message) {
    checkEnvelope(from, recipients, "CSMTPClient::sendMail");
    // Not a reference to the buffer, which need not be on the heap; doPerform() lets go of the stream.
    const P<IInStream> data = new CMemoryInStream(message.getData(), message.getUsed());
    initRequestForSendMail(*request_, from, recipients, data);
    doPerform();
}

void CSMTPClient::testConnection() {
    resetOptions(*request_);
    request_->setOptionInt(CURLOPT_CONNECT_ONLY, 1);
    request_->setUpload(false);
    doPerform();
}

void CSMTPClient::makeSendMailRequest(CNetRequest& request, const CSMTPParams& params, const String& from,
                                      const TArray<String>& recipients, IInStream* data) {
    constexpr const char* function = "CSMTPClient::makeSendMailRequest";
    checkEnvelope(from, recipients, function);
    if (!data) throw CInvalidArgError(function, "data must not be null");
    const P<IInStream> kept = data; // the request may hold its last reference, which the reset gives back
    doInitialRequestInit(request, params);
    initRequestForSendMail(request, from, recipients, data);
}

String CSMTPClient::getDateHeaderString(const CTimeFields& time) {
    CTimeFields date; // without the day of the week that `time` may have been given
    date.setDate(time.getYear(), time.getMonth(), time.getDay());
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), ", %d %s %04lld %02d:%02d:%02d ", time.getDay(),
                  time.getEnglishMonthAbbr().toUTF8().c_str(), static_cast<long long>(time.getYear()),
                  time.getHour(), time.getMinute(), time.getSecond());
    return date.getEnglishWeekDayAbbr() + text.data() + time.getInternetZoneText();
}

void CSMTPClient::doInitialRequestInit(CNetRequest& request, const CSMTPParams& params) {
    request.reset();
    request.setURL(makeURL(params));
    if (!params.getLoginName().isEmpty()) {
        request.setUserName(params.getLoginName());
        request.setUserPassword(params.getLoginPassword());
    }
    if (params.getConnectType() == CSMTPParams::ConnectTypeStartTLS)
        request.setOptionInt(CURLOPT_USE_SSL, CURLUSESSL_ALL);
    // Many submission servers have a certificate that they signed themselves.
    request.setSSLVerifyPeer(false);
}

void CSMTPClient::initRequestForSendMail(CNetRequest& request, const String& from,
                                         const TArray<String>& recipients, IInStream* data) {
    resetOptions(request);
    request.setOptionInt(CURLOPT_CONNECT_ONLY, 0);
    request.setOptionString(CURLOPT_MAIL_FROM, from);
    request.setUpload(true);
    const P<CNetStringList> list = new CNetStringList();
    for (const String& recipient : recipients) list->add(recipient);
    request.setOptionPtr(CURLOPT_MAIL_RCPT, list->getSList());
    request.addDependencyObject(list);
    request.setSendDataStream(data);
}

void CSMTPClient::resetOptions(CNetRequest& request) {
    request.setOptionInt(CURLOPT_CONNECT_ONLY, 0);
    request.setUpload(false);
    request.setOptionString(CURLOPT_MAIL_FROM, "");
    request.setSendDataStream(P<IInStream>(new CMemoryStream()));
}

void CSMTPClient::doPerform() {
    try {
        request_->perform();
    } catch (...) {
        resetOptions(*request_);
        throw;
    }
    resetOptions(*request_);
}

} // namespace vantra
