/// @file VerboseLogFixture.h
/// A request that records its transfers, at a time that stands still.
#pragma once

#include "CurlRecorder.h"
#include "Doubles.h"

#include "vantra/NetRequest.h"

#include <kel/Time.h>
#include <kel/XMLElement.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vantra::test {

/// More than any message has.
constexpr unsigned int all = 1000000;

/// What the clock shows: at first 2019-04-01 09:05:07.250999 UTC.
inline kel::CTime currentTime;
inline kel::CTime getCurrentTime() { return currentTime; }

/// NAME [ATTRIBUTE=VALUE ...] TEXT
inline std::string textOf(const kel::CXMLElement& element) {
    std::string text = element.getName().toUTF8() + " [";
    for (const auto& [name, value] : element.getAttributes()) {
        if (text.back() != '[') text += ' ';
        text += name.toUTF8() + '=' + value.toUTF8();
    }
    return text + "] " + element.getText().toUTF8();
}

class VerboseLog : public testing::Test {
protected:
    VerboseLog() : systemClock_(kel::CTime::setNowFunction(&getCurrentTime)) {
        currentTime = kel::CTime::fromMicroseconds(1554109507250999);
        request_->setURL("http://example.org/?a=b&c");
        request_->setVerbose(true);
    }
    ~VerboseLog() override { kel::CTime::setNowFunction(systemClock_); }

    void debug(curl_infotype type, std::string_view message) {
        curl_.sideOf(request_->getHandle()).debug(request_->getHandle(), type, message);
    }

    /// The element of one message, without the time.
    std::string render(curl_infotype type, std::string_view message, unsigned int maxDataLength = all) {
        const CNetRequest::CVerboseLogMessage recorded(type, message.data(), message.size());
        std::string text = textOf(*request_->createVerboseXmlElement(recorded, maxDataLength));
        const std::string time = "logTime=2019-04-01T09:05:07.250";
        return text.replace(text.find(time), time.size(), "T");
    }

    std::vector<std::string> getLog(unsigned int maxDataLength = all) const {
        std::vector<std::string> texts;
        const kel::P<kel::CXMLElement> root = request_->getVerboseOutput(maxDataLength);
        for (const kel::P<kel::CXMLElement>& child : root->getChildren()) texts.push_back(textOf(*child));
        return texts;
    }

    /// The texts of all messages.
    std::vector<std::string> getTexts() const {
        std::vector<std::string> texts;
        const kel::P<kel::CXMLElement> root = request_->getVerboseOutput(all);
        for (const kel::P<kel::CXMLElement>& child : root->getChildren())
            texts.push_back(child->getText().toUTF8());
        return texts;
    }

    /// Performs a transfer that sends and receives ten bytes, and gives the texts of the two.
    std::vector<std::string> performAndLogBodies(const kel::String& method) {
        request_->setHTTPMethod(method);
        curl_.answerInfo(CURLINFO_RESPONSE_CODE, 200);
        curl_.playTransfer([this](const LibcurlSide&) {
            debug(CURLINFO_DATA_OUT, "0123456789");
            debug(CURLINFO_DATA_IN, "abcdefghij");
            return CURLE_OK;
        });
        request_->perform();
        return getTexts();
    }

    void setSettings(int data, int sslData) {
        request_->setVerboseSettings(static_cast<CNetRequest::VerboseLogData>(data),
                                     static_cast<CNetRequest::VerboseLogData>(sslData));
    }

    kel::CTime::NowFunction systemClock_;
    CurlRecorder curl_;
    kel::P<CTestRequest> request_ = new CTestRequest();
};

} // namespace vantra::test
