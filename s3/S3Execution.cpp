#include "vantra/S3Client.h"

#include <kel/Error.h>
#include <kel/Log.h>
#include <kel/Thread.h>
#include <kel/XMLElement.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace vantra {

using kel::CError;
using kel::CThread;
using kel::CXMLElement;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

constexpr int retryPauseMilliseconds = 100;

bool isPassingS3Code(const String& code) {
    static constexpr std::array<std::wstring_view, 6> codes = {L"InternalError",    L"SlowDown",
                                                               L"IncompleteBody",   L"InvalidDigest",
                                                               L"OperationAborted", L"RequestTimeTooSkewed"};
    return std::find(codes.begin(), codes.end(), code.view()) != codes.end();
}

bool isPassingHTTPCode(const String& code) {
    return code == "500" || code == "503" || code == "400" || code == "409";
}

bool isPassingTransferError(const std::exception& error) {
    const auto* transfer = dynamic_cast<const CCURLError*>(&error);
    if (!transfer || transfer->getCodeDomain() != "curl") return false;
    switch (transfer->getCode()) {
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return true;
    default:
        return false;
    }
}

String describeForLog(const CError& error, int attempt) {
    const auto* fromService = dynamic_cast<const CS3Error*>(&error);
    const String text = fromService ? "Received " + fromService->getS3Code() + " response from S3"
                                    : "Got error during S3 request: " + error.getMessage();
    return text + " (try " + String::fromInt(attempt) + ").";
}

/// The text of a response that is no error document.
String toText(const TBuffer<unsigned char>& responseData) {
    try {
        return {reinterpret_cast<const char*>(responseData.getData()), responseData.getUsed()};
    } catch (const std::exception& error) {
        kel::logError(&error, "Error converting S3 response data to string object.");
        return "";
    }
}

void logUnreadableResponse(const TBuffer<unsigned char>& responseData) {
    const P<CXMLElement> detail = new CXMLElement("S3ResponseData");
    detail->setText(toText(responseData));
    kel::logError(nullptr, "S3 returned an error, but the response data is not a valid S3 error response.",
                  detail);
}

CS3ErrorResponse parseErrorResponse(const TBuffer<unsigned char>& responseData) {
    // One too large for the interface is none, as is a negative size.
    const bool fits = responseData.getUsed() <= static_cast<std::size_t>(std::numeric_limits<int>::max());
    return {reinterpret_cast<const char*>(responseData.getData()),
            fits ? static_cast<int>(responseData.getUsed()) : -1};
}

} // namespace

int CS3Client::performRequest(CNetRequest& request) const {
    const auto performOnce = [&request] {
        try {
            request.perform();
        } catch (std::exception& error) {
            tryThrowBetterError(error, *request.getDefaultReceiveBuffer());
            throw;
        }
    };
    for (int attempt = 1;; ++attempt) {
        try {
            performOnce();
            return attempt;
        } catch (const CError& error) {
            if (!shouldRetryRequest(error)) throw;
            if (shouldSlowDown(error)) kel::logWarning(&error, "Received slowdown response from S3");
            const String text = describeForLog(error, attempt);
            if (attempt > maxRetries_) {
                kel::logError(&error, text + " Too many retries. Giving up!");
                throw;
            }
            kel::logInfo(text + " Waiting 100ms and retrying.");
        }
        CThread::sleep(retryPauseMilliseconds);
    }
}

bool CS3Client::shouldRetryRequest(const std::exception& error) {
    String s3Code;
    String httpCode;
    extractErrorCodes(error, s3Code, httpCode);
    if (!s3Code.isEmpty()) return isPassingS3Code(s3Code);
    if (!httpCode.isEmpty()) return isPassingHTTPCode(httpCode);
    return isPassingTransferError(error);
}

bool CS3Client::shouldSlowDown(const std::exception& error) {
    String s3Code;
    String httpCode;
    extractErrorCodes(error, s3Code, httpCode);
    return s3Code.isEmpty() ? httpCode == "503" : s3Code == "SlowDown";
}

bool CS3Client::isNotFoundError(const std::exception& error) {
    String s3Code;
    String httpCode;
    extractErrorCodes(error, s3Code, httpCode);
    return httpCode == "404" || s3Code == "NoSuchKey" || s3Code == "NoSuchBucket";
}

void CS3Client::extractErrorCodes(const std::exception& error, String& s3Code, String& httpCode) {
    const auto* fromService = dynamic_cast<const CS3Error*>(&error);
    const auto* any = dynamic_cast<const CError*>(&error);
    s3Code = fromService ? fromService->getS3Code() : String();
    httpCode = any ? any->getParams().lookup("responseCode") : String();
}

void CS3Client::tryThrowBetterError(std::exception& error, const TBuffer<unsigned char>& responseData) {
    const auto* transfer = dynamic_cast<const CCURLError*>(&error);
    if (!transfer || responseData.isEmpty()) return;
    P<CS3ErrorResponse> response;
    try {
        response = new CS3ErrorResponse(parseErrorResponse(responseData));
    } catch (const std::exception&) {
        logUnreadableResponse(responseData);
        return;
    }
    throw CS3Error(*response, transfer->getResponseCode());
}

} // namespace vantra
