#include "S3Doubles.h"

#include <kel/Thread.h>

#include <stdexcept>

namespace vantra::test {

using kel::CThread;
using kel::CTime;
using kel::String;

namespace {

std::vector<int> pauses;
CTime timeOfDay;

} // namespace

std::string errorDocument(const std::string& code, const std::string& message) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Error><Code>" + code + "</Code><Message>" + message +
           "</Message><Resource>/bucket/key</Resource><RequestId>4442587FB7D0A2F9</RequestId></Error>";
}

std::string listing(const std::vector<std::string>& keys, bool isTruncated) {
    std::string xml =
        "<ListBucketResult><IsTruncated>" + std::string(isTruncated ? "true" : "false") + "</IsTruncated>";
    for (const std::string& key : keys) xml += "<Contents><Key>" + key + "</Key><Size>1</Size></Contents>";
    return xml + "</ListBucketResult>";
}

std::vector<std::string> getHeaderLines(const CNetRequest& request) {
    std::vector<std::string> lines;
    const auto headers = request.getCustomHTTPHeaders();
    for (const curl_slist* line = headers ? headers->getSList() : nullptr; line; line = line->next)
        lines.emplace_back(line->data);
    return lines;
}

S3Test::S3Test() {
    setTime(CTime::fromCTime(784111777)); // Sun, 06 Nov 1994 08:49:37 GMT
    systemNow_ = CTime::setNowFunction([] { return timeOfDay; });
    pauses.clear();
    CThread::setSleepFunction([](int milliseconds) { pauses.push_back(milliseconds); });
    curl_.playTransfer([this](const LibcurlSide& curl) { return transfer(curl); });
}

S3Test::~S3Test() {
    CThread::setSleepFunction(nullptr);
    CTime::setNowFunction(systemNow_);
}

void S3Test::answer(std::vector<Answer> answers) {
    answers_ = std::move(answers);
    nextAnswer_ = 0;
}

std::vector<int> S3Test::getPauses() { return pauses; }

void S3Test::setTime(CTime time) { timeOfDay = time; }

CURLcode S3Test::transfer(const LibcurlSide& curl) {
    transfers_.push_back(request_->getHTTPMethod().toUTF8() + " " + request_->getURL().toUTF8());
    if (answers_.empty()) throw std::logic_error("a transfer without an answer");
    const Answer& answer = answers_[std::min(nextAnswer_++, answers_.size() - 1)];
    curl_.answerInfo(CURLINFO_RESPONSE_CODE, answer.status);
    if (answer.status > 0) curl.headers({"HTTP/1.1 " + std::to_string(answer.status) + " Reason\r\n"});
    for (const std::string& line : answer.headerLines) curl.headers({line + "\r\n"});
    if (answer.status > 0) curl.headers({"\r\n"});
    if (!answer.body.empty()) curl.write(answer.body);
    return answer.result;
}

class S3Log::CHandler : public kel::CBase, public kel::ILogHandler {
public:
    void handleLogEntry(const kel::CLogEntry& entry) override {
        String text = kel::logLevelToString(entry.level) + ": " + entry.text;
        if (entry.error) text += " [" + entry.error->getMessage() + "]";
        if (entry.detail) text += " " + entry.detail->toXML();
        entries.push_back(text.toUTF8());
    }

    std::vector<std::string> entries;
};

S3Log::S3Log() : handler_(new CHandler()), previous_(kel::setLogHandler(handler_)) {}

S3Log::~S3Log() { kel::setLogHandler(previous_); }

std::vector<std::string> S3Log::getEntries() const { return handler_->entries; }

} // namespace vantra::test
