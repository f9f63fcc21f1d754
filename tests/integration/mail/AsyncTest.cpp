#include "MailServer.h"

#include <gmock/gmock.h>

#include <algorithm>

using kel::CMemoryInStream;
using kel::P;
using kel::String;
using vantra::CAsyncNetRequestThread;
using vantra::CNetRequest;
using vantra::CSMTPClient;
using vantra::CSMTPParams;

namespace {

constexpr int patienceMs = 60000;
constexpr std::size_t mailCount = 10;

std::string recipientOf(std::size_t number) { return "joe" + std::to_string(number) + "@example.org"; }

std::string textOf(std::size_t number) {
    std::string text = "mail " + std::to_string(number) + "\r\n";
    while (text.size() < 20000 * (number + 1)) text += "." + text.substr(0, 60) + "\r\n";
    return text;
}

P<CNetRequest> makeRequest(std::size_t number, CSMTPParams::ConnectType type, const String& from) {
    P<CNetRequest> request = new CNetRequest();
    CSMTPClient::makeSendMailRequest(*request, makeParams(type, true), from, {String(recipientOf(number))},
                                     P<CMemoryInStream>(new CMemoryInStream(makeBuffer(textOf(number)))));
    return request;
}

/// The mails that arrive, by number of the recipient.
std::vector<testsupport::SmtpMail> takeSortedMails() {
    std::vector<testsupport::SmtpMail> mails = mailServer().takeMails();
    std::sort(mails.begin(), mails.end(),
              [](const auto& left, const auto& right) { return left.recipients < right.recipients; });
    return mails;
}

class MailsOnAThread : public Mail {
protected:
    MailsOnAThread() { thread_->start(); }
    ~MailsOnAThread() override { thread_->stop(true); }

    P<CAsyncNetRequestThread> thread_ = new CAsyncNetRequestThread(nullptr);
};

TEST_F(MailsOnAThread, ArriveWhenTenAreSentAtOnce) {
    for (const auto type : {CSMTPParams::ConnectTypeUnencrypted, CSMTPParams::ConnectTypeSSL,
                            CSMTPParams::ConnectTypeStartTLS}) {
        std::vector<P<CNetRequest>> requests;
        for (std::size_t number = 0; number < mailCount; ++number)
            requests.push_back(makeRequest(number, type, "jane@example.org"));
        for (const auto& request : requests) thread_->addRequest(request);
        for (const auto& request : requests) {
            ASSERT_TRUE(request->waitAsyncDone(patienceMs));
            EXPECT_NO_THROW(request->checkAsyncResult());
        }
        const auto mails = takeSortedMails();
        ASSERT_EQ(mails.size(), mailCount);
        for (std::size_t number = 0; number < mailCount; ++number) {
            EXPECT_THAT(mails[number].recipients, testing::ElementsAre(recipientOf(number)));
            EXPECT_TRUE(mails[number].bytes == textOf(number)) << number;
            EXPECT_EQ(mails[number].login, "user");
        }
    }
}

TEST_F(MailsOnAThread, FailOneByOne) {
    std::vector<P<CNetRequest>> requests;
    for (std::size_t number = 0; number < mailCount; ++number)
        requests.push_back(makeRequest(number, CSMTPParams::ConnectTypeUnencrypted,
                                       number % 2 ? "badsender@example.org" : "jane@example.org"));
    for (const auto& request : requests) thread_->addRequest(request);
    for (std::size_t number = 0; number < mailCount; ++number) {
        ASSERT_TRUE(requests[number]->waitAsyncDone(patienceMs));
        if (number % 2 == 0) {
            EXPECT_NO_THROW(requests[number]->checkAsyncResult());
            continue;
        }
        const auto error = errorOf([&] { requests[number]->checkAsyncResult(); });
        EXPECT_EQ(error.getCode(), CURLE_SEND_ERROR);
        EXPECT_EQ(error.getResponseCodeDomain(), "smtp");
        EXPECT_EQ(error.getResponseCode(), 553);
        EXPECT_EQ(error.getServerMessage(), "553 5.1.8 sender refused");
    }
    EXPECT_EQ(takeMails().size(), mailCount / 2);
}

} // namespace
