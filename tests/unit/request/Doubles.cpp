#include "Doubles.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace vantra::test {

using kel::CLogEntry;
using kel::int64;

const std::vector<Fault>& getFaults() {
    static const std::vector<Fault> faults = {
        {"subclass of CError",
         [] { throw COwnError("the drawer is stuck", "left one"); },
         {"COwnError", "the drawer is stuck", "own", 7, {}, "left one"},
         {"COwnError", "the drawer is stuck", "own", 7, {}, "left one"}},
        {"std::runtime_error",
         [] { throw std::runtime_error("out of ink"); },
         {"std::runtime_error", "out of ink", "", -1, {}, ""},
         {"CStdExceptionError", "out of ink", "", -1, {}, ""}},
        {"int",
         [] { throw 17; },
         {"int", "17", "", -1, {}, ""},
         {"CError", "Unknown exception.", "", -1, {}, ""}},
    };
    return faults;
}

std::map<std::string, std::string> plain(const HeaderMap& headers) {
    std::map<std::string, std::string> texts;
    for (const auto& [name, value] : headers) texts[name.toUTF8()] = value.toUTF8();
    return texts;
}

std::ostream& operator<<(std::ostream& stream, const CRecordingSink::Block& block) {
    stream << '"' << block.bytes << "\" with status " << block.httpStatusCode << " and {";
    for (const auto& [name, value] : block.headers) stream << name << ": " << value << ", ";
    return stream << '}';
}

void CRecordingSink::write(const void* data, unsigned int length, int httpStatusCode,
                           const HeaderMap& headers) {
    writes.pass();
    std::string bytes;
    if (length != 0) bytes.assign(static_cast<const char*>(data), length);
    blocks.push_back({bytes, httpStatusCode, plain(headers)});
}

std::string CRecordingSink::getBytes() const {
    std::string bytes;
    for (const Block& block : blocks) bytes += block.bytes;
    return bytes;
}

unsigned int CRecordingSource::read(void* buffer, unsigned int maxLength, const HeaderMap& headers) {
    reads.pass();
    lastHeaders = plain(headers);
    const std::string_view rest = std::string_view(data_).substr(static_cast<std::size_t>(position));
    const std::size_t length = std::min<std::size_t>({rest.size(), maxLength, blockSize});
    std::memcpy(buffer, rest.data(), length);
    position += static_cast<int64>(length);
    calls_.push_back("read " + std::to_string(length) + " of " + std::to_string(maxLength));
    return static_cast<unsigned int>(length);
}

int64 CRecordingSource::getSize() {
    calls_.emplace_back("size");
    sizes.pass();
    return claimedSize.value_or(static_cast<int64>(data_.size()));
}

void CRecordingSource::seek(int64 newPosition) {
    calls_.push_back("seek " + std::to_string(newPosition));
    seeks.pass();
    position = newPosition;
}

int64 CRecordingSource::getPosition() {
    calls_.emplace_back("position");
    positions.pass();
    if (onPosition) onPosition();
    return position;
}

std::vector<std::string> CRecordingSource::takeCalls() { return std::exchange(calls_, {}); }

void CRecordingListener::onRequestDone(CNetRequest* request, const kel::CError* error) {
    requests.push_back(request);
    outcomes.push_back(error ? describe(*error) : nothingThrown);
    if (onDone) onDone();
}

class LogCapture::CHandler : public kel::CBase, public kel::ILogHandler {
public:
    void handleLogEntry(const CLogEntry& entry) override {
        std::string text = kel::logLevelToString(entry.level).toUTF8() + ": " + entry.text.toUTF8();
        if (entry.error) text += " [" + entry.error->getMessage().toUTF8() + "]";
        const std::lock_guard lock(mutex_);
        entries_.push_back(text);
    }

    [[nodiscard]] std::vector<std::string> getEntries() const {
        const std::lock_guard lock(mutex_);
        return entries_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> entries_;
};

LogCapture::LogCapture() : handler_(new CHandler()), previous_(kel::setLogHandler(handler_)) {}

LogCapture::~LogCapture() { kel::setLogHandler(previous_); }

std::vector<std::string> LogCapture::getEntries() const { return handler_->getEntries(); }

kel::P<CNetHeaders> makeHeadersWithoutExpect() {
    kel::P<CNetHeaders> headers = new CNetHeaders();
    headers->add("Expect", "");
    return headers;
}

std::string getBody(const CNetRequest& request) {
    const kel::PC<kel::TBuffer<unsigned char>> buffer = request.getDefaultReceiveBuffer();
    return {buffer->begin(), buffer->end()};
}

std::vector<std::string> getResponseInfo(const CNetRequest& request) {
    std::vector<std::string> lines;
    const kel::P<CNetStringList::CIterator> line = request.getResponseInfo().createIterator();
    while (line->next()) lines.push_back(line->getEntry().toUTF8());
    return lines;
}

} // namespace vantra::test
