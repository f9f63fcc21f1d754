#include "request/LogCredentials.h"
#include "request/OptionSetter.h"
#include "vantra/NetRequest.h"

#include <kel/Log.h>
#include <kel/URI.h>

#include <algorithm>

namespace vantra {

using kel::CTimeFields;
using kel::CURI;
using kel::CXMLElement;
using kel::P;
using kel::String;

namespace {

/// How a kind of message appears in the log.
struct MessageAppearance {
    const char* element;
    const char* type; // null for none
    bool showsContent;
    bool isData;
};

bool hasContentBit(CNetRequest::VerboseLogData setting) {
    return (static_cast<unsigned int>(setting) & 1U) != 0;
}

MessageAppearance getAppearance(curl_infotype type, CNetRequest::VerboseLogData data,
                                CNetRequest::VerboseLogData sslData) {
    switch (type) {
    case CURLINFO_TEXT:
        return {"info", nullptr, true, false};
    case CURLINFO_HEADER_IN:
        return {"receive", "header", true, false};
    case CURLINFO_HEADER_OUT:
        return {"send", "header", true, false};
    case CURLINFO_DATA_IN:
        return {"receive", "data", hasContentBit(data), true};
    case CURLINFO_DATA_OUT:
        return {"send", "data", hasContentBit(data), true};
    case CURLINFO_SSL_DATA_IN:
        return {"receive", "ssl_data", hasContentBit(sslData), true};
    case CURLINFO_SSL_DATA_OUT:
        return {"send", "ssl_data", hasContentBit(sslData), true};
    default:
        return {"unknown", nullptr, true, true};
    }
}

} // namespace

CNetRequest::CVerboseLogMessage::~CVerboseLogMessage() = default;

void CNetRequest::setVerbose(bool on) {
    verbose_ = on;
    setOption(CURLOPT_VERBOSE, on ? 1L : 0L);
}

void CNetRequest::setVerboseSettings(VerboseLogData data, VerboseLogData sslData) {
    verboseData_ = data;
    verboseSSLData_ = sslData;
    settleVerboseData();
}

void CNetRequest::settleVerboseData() {
    verboseDataInEffect_ = verboseData_;
    if (verboseData_ == VerboseLogDataByMethod)
        verboseDataInEffect_ = method_ == "PUT" || upload_ ? VerboseLogDataSize : VerboseLogDataContent;
}

int CNetRequest::_curlDebugFunctionCallback(CURL* handle, curl_infotype type, char* data, std::size_t size,
                                            void* request) {
    try {
        if (request) static_cast<CNetRequest*>(request)->onLogDebugMessage(handle, type, data, size);
    } catch (const std::exception& error) {
        // A transfer does not fail for want of its record.
        kel::logWarning(&error, "Exception during CNetRequest transfer recording (ignored).");
    } catch (...) {
        kel::logWarning("Exception during CNetRequest transfer recording (ignored).");
    }
    return 0;
}

void CNetRequest::onLogDebugMessage(void* handle, curl_infotype type, char* data, std::size_t size) {
    if (handle != handle_.get() || !verbose_) return;
    verboseMessages_.push_back(CVerboseLogMessage(type, data, size));
}

P<CXMLElement> CNetRequest::getVerboseOutput(unsigned int maxDataLength) const {
    if (!verbose_) return nullptr;
    P<CXMLElement> root = new CXMLElement("NetRequest");
    root->addAttribute("httpMethod", method_);
    root->addAttribute("url", url_);
    CLogCredentials credentials(isHTTP_);
    for (const CVerboseLogMessage& message : verboseMessages_)
        root->addChild(renderLogMessage(message, maxDataLength, credentials));
    return root;
}

P<CXMLElement> CNetRequest::createVerboseXmlElement(const CVerboseLogMessage& message,
                                                    unsigned int maxDataLength) const {
    CLogCredentials credentials(isHTTP_);
    return renderLogMessage(message, maxDataLength, credentials);
}

P<CXMLElement> CNetRequest::renderLogMessage(const CVerboseLogMessage& message, unsigned int maxDataLength,
                                             CLogCredentials& credentials) const {
    const MessageAppearance appearance = getAppearance(message.type, verboseDataInEffect_, verboseSSLData_);
    P<CXMLElement> element = new CXMLElement(appearance.element);
    if (appearance.type) element->addAttribute("type", appearance.type);
    element->addAttribute("logTime", CTimeFields(message.time).toISODateTime(3));

    const std::string_view bytes(reinterpret_cast<const char*>(message.data.getData()), message.size);
    credentials.begin(message.type, bytes);
    const std::size_t shown = std::min<std::size_t>(message.size, maxDataLength);
    String text(strippedLogText);
    if (appearance.showsContent) {
        text = String::fromLatin1(bytes.substr(0, shown));
        if (appearance.isData) text = CURI::escape(credentials.strip(message.type, text));
    }
    if (appearance.isData) element->addAttribute("bytes", String::fromUInt(message.size));
    if (shown < message.size) text += "...";
    text = text.trimRight();
    if (!appearance.isData) text = credentials.strip(message.type, text);
    element->setText(text);
    return element;
}

} // namespace vantra
