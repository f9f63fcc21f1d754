/// @file Doubles.h
/// Sinks, sources, listeners and errors that do as they are told, and write down what was done to them.
#pragma once

#include "vantra/NetRequest.h"

#include "Thrown.h"

#include <kel/Base.h>
#include <kel/Error.h>
#include <kel/Log.h>
#include <kel/Map.h>
#include <kel/P.h>
#include <kel/Stream.h>
#include <kel/String.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantra::test {

/// Opens what a request keeps for its subclasses and for its manager.
class CTestRequest : public CNetRequest {
public:
    using CNetRequest::createVerboseXmlElement;
    using CNetRequest::onLogDebugMessage;
    using CNetRequest::setAsyncInfo;
};

/// An error type of the client's own, with something that only the type itself knows.
class COwnError : public kel::CError {
public:
    COwnError(const kel::String& message, std::string detail)
        : CError(message, "own", 7), detail_(std::move(detail)) {}

    [[nodiscard]] const std::string& getDetail() const { return detail_; }
    [[nodiscard]] kel::P<kel::CError> clone() const override { return new COwnError(*this); }
    [[noreturn]] void throwClone() const override { throw COwnError(*this); }

private:
    std::string detail_;
};

/// Something that a client's code may throw, and what becomes of it.
struct Fault {
    std::string name;
    std::function<void()> raise;
    Thrown asThrown;      ///< as it is thrown where nothing stands between
    Thrown asTransferred; ///< as it is thrown once it was carried past libcurl
};

/// A subclass of CError, a std::runtime_error and an int.
const std::vector<Fault>& getFaults();

/// Counts the calls of one operation and throws at one of them.
class FaultPoint {
public:
    /// @param call the number of the call, from 1.
    void failAt(int call, std::function<void()> raise) {
        failingCall_ = call;
        raise_ = std::move(raise);
    }
    void clear() { failingCall_ = 0; }
    void pass() {
        ++calls_;
        if (calls_ == failingCall_) raise_();
    }
    [[nodiscard]] int getCalls() const { return calls_; }

private:
    int calls_ = 0;
    int failingCall_ = 0;
    std::function<void()> raise_;
};

/// Counts the objects of a test that are alive.
class CCounted : public kel::CBase {
public:
    explicit CCounted(std::atomic<int>* alive = nullptr) : alive_(alive) {
        if (alive_) ++*alive_;
    }
    CCounted(const CCounted&) = delete;
    CCounted& operator=(const CCounted&) = delete;
    ~CCounted() override {
        if (alive_) --*alive_;
    }

private:
    std::atomic<int>* alive_;
};

using HeaderMap = kel::TMap<kel::String, kel::String>;

/// A header map as plain texts.
std::map<std::string, std::string> plain(const HeaderMap& headers);

class CRecordingSink : public CCounted, public CNetRequest::IDataSink {
public:
    struct Block {
        std::string bytes;
        int httpStatusCode;
        std::map<std::string, std::string> headers;
        friend bool operator==(const Block&, const Block&) = default;
        friend std::ostream& operator<<(std::ostream& stream, const Block& block);
    };

    using CCounted::CCounted;

    void write(const void* data, unsigned int length, int httpStatusCode, const HeaderMap& headers) override;
    [[nodiscard]] std::string getBytes() const;

    std::vector<Block> blocks;
    FaultPoint writes;
};

class CRecordingSource : public CCounted, public CNetRequest::IDataSource {
public:
    explicit CRecordingSource(std::string data, std::atomic<int>* alive = nullptr)
        : CCounted(alive), data_(std::move(data)) {}

    unsigned int read(void* buffer, unsigned int maxLength, const HeaderMap& headers) override;
    kel::int64 getSize() override;
    void seek(kel::int64 position) override;
    kel::int64 getPosition() override;

    /// "read 5 of 16372", "seek 0", "position" and "size", in order; cleared by taking.
    std::vector<std::string> takeCalls();

    unsigned int blockSize = 1U << 30U; ///< the most that a read gives
    kel::int64 position = 0;
    std::optional<kel::int64> claimedSize;          ///< in place of the size of the data
    std::map<std::string, std::string> lastHeaders; ///< as the last read got them
    std::function<void()> onPosition;               ///< called by getPosition()
    FaultPoint reads;
    FaultPoint sizes;
    FaultPoint seeks;
    FaultPoint positions;

private:
    std::string data_;
    std::vector<std::string> calls_;
};

class CRecordingListener : public CCounted, public CNetRequest::IDoneListener {
public:
    using CCounted::CCounted;

    void onRequestDone(CNetRequest* request, const kel::CError* error) override;

    std::vector<CNetRequest*> requests;
    std::vector<Thrown> outcomes; ///< nothingThrown for a success
    std::function<void()> onDone; ///< called last
};

/// Keeps the process's log entries while it lives.
class LogCapture {
public:
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// "LEVEL: TEXT", and " [MESSAGE]" where the entry speaks of an error.
    [[nodiscard]] std::vector<std::string> getEntries() const;

private:
    class CHandler;
    kel::P<CHandler> handler_;
    kel::P<kel::ILogHandler> previous_;
};

/// Headers that keep libcurl from sending "Expect: 100-continue" and waiting a second for an answer to it.
kel::P<CNetHeaders> makeHeadersWithoutExpect();

/// The bytes of the default receive buffer.
std::string getBody(const CNetRequest& request);

/// The lines of the response info list.
std::vector<std::string> getResponseInfo(const CNetRequest& request);

} // namespace vantra::test
