/// @file CurlRecorder.h
/// Stands between the library and libcurl, in programs linked with --wrap for the functions of the easy
/// interface.
///
///     CurlRecorder curl;
///     P<CNetRequest> request = new CNetRequest();
///     curl.takeCalls();
///     request->setFollowRedirects(false);
///     EXPECT_THAT(curl.takeCalls(), ElementsAre("FOLLOWLOCATION = 0"));
#pragma once

#include <curl/curl.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vantra::test {

/// The value of an option in the type in which it was passed.
struct OptionValue {
    using Function = void (*)();

    enum class Kind { Number, Object, Function, Offset } kind = Kind::Number;
    long number = 0;
    curl_off_t offset = 0;
    void* object = nullptr;
    Function function = nullptr;
};

/// Plays libcurl's part towards one request: calls what the request has registered.
///
/// Thread safety: one thread at a time.
class LibcurlSide {
public:
    /// Remembers what an option tells about callbacks.
    void learn(CURLoption option, const OptionValue& value);

    std::size_t write(std::string_view block) const { return write(block, 1, block.size()); }
    std::size_t write(std::string_view bytes, std::size_t size, std::size_t count) const;
    std::size_t writeNull() const { return write_(nullptr, 1, 0, writeData_); }
    std::size_t header(std::string_view line) const;
    /// Hands over several header lines, each of which must be accepted.
    void headers(const std::vector<std::string>& lines) const;
    std::size_t read(char* buffer, std::size_t size, std::size_t count) const;
    int seek(curl_off_t offset, int origin) const { return seek_(seekData_, offset, origin); }
    int debug(CURL* handle, curl_infotype type, std::string_view message) const;
    /// Leaves a text in the request's error buffer.
    void setErrorText(std::string_view text) const;
    std::string getErrorText() const { return errorBuffer_; }

private:
    curl_write_callback write_ = nullptr;
    void* writeData_ = nullptr;
    curl_read_callback read_ = nullptr;
    void* readData_ = nullptr;
    curl_seek_callback seek_ = nullptr;
    void* seekData_ = nullptr;
    curl_write_callback header_ = nullptr;
    void* headerData_ = nullptr;
    curl_debug_callback debug_ = nullptr;
    void* debugData_ = nullptr;
    char* errorBuffer_ = nullptr;
};

/// Records, from its construction to its destruction, what libcurl is told, and answers in libcurl's place
/// where a test asks for it; everything else goes on to libcurl. Only one may exist at a time, and a request
/// it shall know the callbacks of must be made while it exists.
///
/// Thread safety: one thread at a time.
class CurlRecorder {
public:
    using Transfer = std::function<CURLcode(const LibcurlSide&)>;

    CurlRecorder();
    CurlRecorder(const CurlRecorder&) = delete;
    CurlRecorder& operator=(const CurlRecorder&) = delete;
    ~CurlRecorder();

    /// The calls since the last time, in order: "OPTION = value" with numbers as they are, texts in quotation
    /// marks, lists as ["a", "b"], objects by the name given to them and functions as "function"; and "init",
    /// "reset", "perform", "cleanup".
    std::vector<std::string> takeCalls();
    /// Gives an object or the debug function a name for takeCalls().
    void nameObject(const void* object, const std::string& name) { objectNames_[object] = name; }

    /// Lets libcurl refuse an option, with a text in the error buffer.
    void failOption(CURLoption option, CURLcode code, const std::string& errorText = "");
    /// Lets libcurl answer a question for a number, integer or not.
    void answerInfo(CURLINFO info, double value) { infoAnswers_[info] = value; }
    void failInfo(CURLINFO info, CURLcode code) { infoFailures_[info] = code; }
    /// Lets libcurl have no handle to give.
    void failInit() { failsInit_ = true; }
    /// Plays a transfer in place of every curl_easy_perform.
    void playTransfer(Transfer transfer) { transfer_ = std::move(transfer); }

    /// What libcurl knows of a handle.
    const LibcurlSide& sideOf(CURL* handle) const { return sides_.at(handle); }

    // Called by the functions that stand in for libcurl's.
    static CurlRecorder* getActive();
    bool onInit();
    void onCleanup(CURL* handle);
    CURLcode onOption(CURL* handle, CURLoption option, const OptionValue& value);
    /// @return whether the question was answered here.
    bool onInfo(CURLINFO info, void* answer, CURLcode& result);
    bool onPerform(CURL* handle, CURLcode& result);
    void onReset(CURL* handle);
    void onPause(int action);

private:
    struct Call {
        std::string text;
        const void* object = nullptr;
    };
    struct OptionFailure {
        CURLcode code;
        std::string errorText;
    };

    std::vector<Call> calls_;
    std::map<const void*, std::string> objectNames_;
    std::map<CURLoption, OptionFailure> optionFailures_;
    std::map<CURLINFO, double> infoAnswers_;
    std::map<CURLINFO, CURLcode> infoFailures_;
    std::map<CURL*, LibcurlSide> sides_;
    Transfer transfer_;
    bool failsInit_ = false;
};

} // namespace vantra::test
