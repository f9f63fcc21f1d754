#include "CurlRecorder.h"
#include "Doubles.h"

#include "vantra/NetRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace vantra::test {

namespace {

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::ElementsAreArray;

/// What libcurl is told for each method, in order, when the send data size is 10.
const std::map<std::string, std::vector<std::string>> optionsByMethod = {
    {"GET",
     {"CUSTOMREQUEST = null", "NOBODY = 0", "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "HTTPGET = 1"}},
    {"HEAD",
     {"CUSTOMREQUEST = null", "HTTPGET = 0", "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "NOBODY = 1"}},
    {"PUT",
     {"CUSTOMREQUEST = null", "HTTPGET = 0", "NOBODY = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "UPLOAD = 1"}},
    {"POST",
     {"CUSTOMREQUEST = null", "HTTPGET = 0", "NOBODY = 0", "UPLOAD = 0", "POST = 1",
      "POSTFIELDSIZE_LARGE = 10"}},
    {"",
     {"CUSTOMREQUEST = null", "HTTPGET = 0", "NOBODY = 0", "UPLOAD = 0", "POST = 0",
      "POSTFIELDSIZE_LARGE = 0"}},
    {"DELETE",
     {"HTTPGET = 0", "NOBODY = 0", "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "CUSTOMREQUEST = \"DELETE\""}},
    {"post",
     {"HTTPGET = 0", "NOBODY = 0", "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "CUSTOMREQUEST = \"post\""}},
    {"MKÄ",
     {"HTTPGET = 0", "NOBODY = 0", "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0",
      "CUSTOMREQUEST = \"MKÄ\""}},
};

std::vector<std::string> getMethods() {
    std::vector<std::string> methods;
    for (const auto& entry : optionsByMethod) methods.push_back(entry.first);
    return methods;
}

class MethodChange : public testing::TestWithParam<std::tuple<std::string, std::string>> {};

TEST_P(MethodChange, TellsLibcurlTheSameWhateverTheMethodWasBefore) {
    const auto& [from, to] = GetParam();
    CurlRecorder curl;
    const P<CNetRequest> request = new CNetRequest();
    request->setSendDataSize(10);
    request->setHTTPMethod(String(from));
    curl.takeCalls();
    request->setHTTPMethod(String(to));
    EXPECT_THAT(curl.takeCalls(), ElementsAreArray(optionsByMethod.at(to))) << from << " to " << to;
    EXPECT_EQ(request->getHTTPMethod(), String(to));
}

INSTANTIATE_TEST_SUITE_P(AllPairs, MethodChange,
                         testing::Combine(testing::ValuesIn(getMethods()), testing::ValuesIn(getMethods())));

class Method : public testing::Test {
protected:
    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(Method, PostAfterTheSizeTellsTheSize) {
    request_->setSendDataSize(10);
    curl_.takeCalls();
    request_->setHTTPMethod("POST");
    EXPECT_EQ(curl_.takeCalls().back(), "POSTFIELDSIZE_LARGE = 10");
}

TEST_F(Method, PostBeforeTheSizeTellsTheSizeToo) {
    request_->setHTTPMethod("POST");
    curl_.takeCalls();
    request_->setSendDataSize(10);
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("INFILESIZE_LARGE = 10", "POSTFIELDSIZE_LARGE = 10"));
}

TEST_F(Method, PostWithoutASizeTellsThatItIsUnknown) {
    curl_.takeCalls();
    request_->setHTTPMethod("POST");
    EXPECT_EQ(curl_.takeCalls().back(), "POSTFIELDSIZE_LARGE = -1");
}

TEST_F(Method, PutBeforeTheSizeTellsNoPostSize) {
    request_->setHTTPMethod("PUT");
    curl_.takeCalls();
    request_->setSendDataSize(10);
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("INFILESIZE_LARGE = 10"));
}

TEST_F(Method, PostAgainRemembersTheSizeAcrossAnotherMethod) {
    request_->setSendDataSize(10);
    request_->setHTTPMethod("POST");
    request_->setHTTPMethod("GET");
    curl_.takeCalls();
    request_->setHTTPMethod("POST");
    EXPECT_EQ(curl_.takeCalls().back(), "POSTFIELDSIZE_LARGE = 10");
}

TEST_F(Method, EmptySwitchesOffGetHeadPutPostAndAnyCustomMethod) {
    curl_.takeCalls();
    request_->setHTTPMethod("");
    EXPECT_THAT(curl_.takeCalls(), ElementsAre("CUSTOMREQUEST = null", "HTTPGET = 0", "NOBODY = 0",
                                               "UPLOAD = 0", "POST = 0", "POSTFIELDSIZE_LARGE = 0"));
}

TEST_F(Method, IsNotTakenWhenLibcurlRefusesIt) {
    request_->setHTTPMethod("GET");
    curl_.failOption(CURLOPT_CUSTOMREQUEST, CURLE_OUT_OF_MEMORY);
    EXPECT_EQ(thrownBy([&] { request_->setHTTPMethod("DELETE"); }), curlError(CURLE_OUT_OF_MEMORY, ""));
    EXPECT_EQ(request_->getHTTPMethod(), "GET");
}

/// The log tells sizes alone for an upload, which is how the upload flag shows.
class UploadFlag : public testing::Test {
protected:
    bool isSet() {
        curl_.playTransfer([&](const LibcurlSide& curl) {
            curl.debug(request_->getHandle(), CURLINFO_DATA_OUT, "body");
            return CURLE_OK;
        });
        request_->setVerbose(true);
        request_->perform();
        return request_->getVerboseOutput(100)->getChildren()[0]->getText() == "~stripped~";
    }

    CurlRecorder curl_;
    P<CNetRequest> request_ = new CNetRequest();
};

TEST_F(UploadFlag, IsOffAtTheStart) { EXPECT_FALSE(isSet()); }

TEST_F(UploadFlag, IsSetByPut) {
    request_->setHTTPMethod("PUT");
    EXPECT_TRUE(isSet());
}

TEST_F(UploadFlag, IsSetBySetUpload) {
    request_->setUpload(true);
    EXPECT_TRUE(isSet());
}

TEST_F(UploadFlag, IsClearedByEveryOtherMethod) {
    for (const std::string& method : getMethods()) {
        if (method == "PUT") continue;
        request_->setHTTPMethod("PUT");
        request_->setHTTPMethod(String(method));
        EXPECT_FALSE(isSet()) << method;
    }
}

} // namespace

} // namespace vantra::test
