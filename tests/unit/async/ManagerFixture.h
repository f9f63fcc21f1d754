/// @file ManagerFixture.h
/// What the tests of the manager and of its thread say about errors and requests.
#pragma once

#include "MultiDouble.h"
#include "Thrown.h"

#include <curl/curl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace vantra::test {

/// The CCURLError that a failure of the multi interface is reported with.
inline Thrown multiError(CURLMcode code) {
    Thrown thrown = curlError(CURLE_OK, "");
    thrown.message = curl_multi_strerror(code);
    thrown.codeDomain = "curlm";
    thrown.code = code;
    return thrown;
}

/// Counts the requests that are alive.
class CCountedRequest : public CTestRequest {
public:
    explicit CCountedRequest(std::atomic<int>& alive) : alive_(alive) { ++alive_; }
    CCountedRequest(const CCountedRequest&) = delete;
    CCountedRequest& operator=(const CCountedRequest&) = delete;
    ~CCountedRequest() override { --alive_; }

private:
    std::atomic<int>& alive_;
};

/// Notes its end among the calls.
class CNotingRequest : public CTestRequest {
public:
    explicit CNotingRequest(MultiDouble& multi) : multi_(multi) {}
    CNotingRequest(const CNotingRequest&) = delete;
    CNotingRequest& operator=(const CNotingRequest&) = delete;
    ~CNotingRequest() override { multi_.note("gone"); }

private:
    MultiDouble& multi_;
};

} // namespace vantra::test
