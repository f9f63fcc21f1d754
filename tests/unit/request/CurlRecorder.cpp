#include "CurlRecorder.h"

#include <cstdarg>
#include <stdexcept>

namespace vantra::test {

namespace {

CurlRecorder* activeRecorder = nullptr;

std::string quote(const char* text) {
    if (!text) return "null";
    return '"' + std::string(text) + '"';
}

std::string listText(const curl_slist* list) {
    if (!list) return "null";
    std::string text;
    for (const curl_slist* node = list; node; node = node->next) {
        text += (text.empty() ? "[" : ", ") + quote(node->data);
    }
    return text + ']';
}

curl_easytype getType(CURLoption option) {
    const curl_easyoption* description = curl_easy_option_by_id(option);
    return description ? description->type : CURLOT_OBJECT;
}

std::string getName(CURLoption option) {
    const curl_easyoption* description = curl_easy_option_by_id(option);
    return description ? description->name : "option " + std::to_string(option);
}

const void* addressOf(OptionValue::Function function) { return reinterpret_cast<const void*>(function); }

} // namespace

void LibcurlSide::learn(CURLoption option, const OptionValue& value) {
    switch (option) {
    case CURLOPT_WRITEFUNCTION:
        write_ = reinterpret_cast<curl_write_callback>(value.function);
        break;
    case CURLOPT_WRITEDATA:
        writeData_ = value.object;
        break;
    case CURLOPT_READFUNCTION:
        read_ = reinterpret_cast<curl_read_callback>(value.function);
        break;
    case CURLOPT_READDATA:
        readData_ = value.object;
        break;
    case CURLOPT_SEEKFUNCTION:
        seek_ = reinterpret_cast<curl_seek_callback>(value.function);
        break;
    case CURLOPT_SEEKDATA:
        seekData_ = value.object;
        break;
    case CURLOPT_HEADERFUNCTION:
        header_ = reinterpret_cast<curl_write_callback>(value.function);
        break;
    case CURLOPT_HEADERDATA:
        headerData_ = value.object;
        break;
    case CURLOPT_DEBUGFUNCTION:
        debug_ = reinterpret_cast<curl_debug_callback>(value.function);
        break;
    case CURLOPT_DEBUGDATA:
        debugData_ = value.object;
        break;
    case CURLOPT_ERRORBUFFER:
        errorBuffer_ = static_cast<char*>(value.object);
        break;
    default:
        break;
    }
}

// libcurl's callbacks take pointers to mutable bytes; a copy keeps a callback that writes to them harmless.

std::size_t LibcurlSide::write(std::string_view bytes, std::size_t size, std::size_t count) const {
    std::string copy(bytes);
    return write_(copy.data(), size, count, writeData_);
}

std::size_t LibcurlSide::header(std::string_view line) const {
    // Without a NUL behind it, as libcurl promises none.
    std::vector<char> copy(line.begin(), line.end());
    return header_(copy.data(), 1, copy.size(), headerData_);
}

void LibcurlSide::headers(const std::vector<std::string>& lines) const {
    for (const std::string& line : lines) {
        if (header(line) != line.size()) throw std::logic_error("the header line was not accepted: " + line);
    }
}

std::size_t LibcurlSide::read(char* buffer, std::size_t size, std::size_t count) const {
    return read_(buffer, size, count, readData_);
}

int LibcurlSide::debug(CURL* handle, curl_infotype type, std::string_view message) const {
    std::string copy(message);
    return debug_(handle, type, copy.data(), copy.size(), debugData_);
}

void LibcurlSide::setErrorText(std::string_view text) const {
    if (text.size() >= CURL_ERROR_SIZE) throw std::logic_error("longer than libcurl's error texts");
    errorBuffer_[text.copy(errorBuffer_, text.size())] = 0;
}

CurlRecorder::CurlRecorder() {
    if (activeRecorder) throw std::logic_error("there is a recorder already");
    activeRecorder = this;
}

CurlRecorder::~CurlRecorder() { activeRecorder = nullptr; }

CurlRecorder* CurlRecorder::getActive() { return activeRecorder; }

std::vector<std::string> CurlRecorder::takeCalls() {
    std::vector<std::string> texts;
    for (const Call& call : calls_) {
        const auto name = objectNames_.find(call.object);
        texts.push_back(call.object && name != objectNames_.end()
                            ? call.text.substr(0, call.text.find(" = ")) + " = " + name->second
                            : call.text);
    }
    calls_.clear();
    return texts;
}

void CurlRecorder::failOption(CURLoption option, CURLcode code, const std::string& errorText) {
    optionFailures_[option] = {code, errorText};
}

bool CurlRecorder::onInit() {
    calls_.push_back({"init"});
    return !failsInit_;
}

void CurlRecorder::onCleanup(CURL* handle) {
    calls_.push_back({"cleanup"});
    sides_.erase(handle);
}

CURLcode CurlRecorder::onOption(CURL* handle, CURLoption option, const OptionValue& value) {
    LibcurlSide& side = sides_[handle];
    Call call{getName(option) + " = "};
    switch (value.kind) {
    case OptionValue::Kind::Number:
        call.text += std::to_string(value.number);
        break;
    case OptionValue::Kind::Offset:
        call.text += std::to_string(value.offset);
        break;
    case OptionValue::Kind::Function:
        call.text += value.function ? "function" : "null";
        call.object = addressOf(value.function);
        break;
    case OptionValue::Kind::Object:
        if (getType(option) == CURLOT_STRING) {
            call.text += quote(static_cast<const char*>(value.object));
        } else if (getType(option) == CURLOT_SLIST) {
            call.text += listText(static_cast<const curl_slist*>(value.object));
        } else {
            call.text += value.object ? "object" : "null";
            call.object = value.object;
        }
        break;
    }
    calls_.push_back(call);

    const auto failure = optionFailures_.find(option);
    if (failure == optionFailures_.end()) {
        side.learn(option, value);
        return CURLE_OK;
    }
    if (!failure->second.errorText.empty()) side.setErrorText(failure->second.errorText);
    return failure->second.code;
}

bool CurlRecorder::onInfo(CURLINFO info, void* answer, CURLcode& result) {
    if (const auto failure = infoFailures_.find(info); failure != infoFailures_.end()) {
        result = failure->second;
        return true;
    }
    const auto found = infoAnswers_.find(info);
    if (found == infoAnswers_.end()) return false;
    if ((static_cast<int>(info) & CURLINFO_TYPEMASK) == CURLINFO_LONG) {
        *static_cast<long*>(answer) = static_cast<long>(found->second);
    } else {
        *static_cast<double*>(answer) = found->second;
    }
    result = CURLE_OK;
    return true;
}

bool CurlRecorder::onPerform(CURL* handle, CURLcode& result) {
    calls_.push_back({"perform"});
    if (!transfer_) return false;
    result = transfer_(sides_.at(handle));
    return true;
}

void CurlRecorder::onReset(CURL* handle) {
    calls_.push_back({"reset"});
    sides_[handle] = {};
}

void CurlRecorder::onPause(int action) { calls_.push_back({"pause " + std::to_string(action)}); }

namespace {

OptionValue takeValue(CURLoption option, va_list arguments) {
    OptionValue value;
    switch (static_cast<int>(option) / 10000 * 10000) {
    case CURLOPTTYPE_LONG:
        value.kind = OptionValue::Kind::Number;
        value.number = va_arg(arguments, long);
        break;
    case CURLOPTTYPE_FUNCTIONPOINT:
        value.kind = OptionValue::Kind::Function;
        value.function = va_arg(arguments, OptionValue::Function);
        break;
    case CURLOPTTYPE_OFF_T:
        value.kind = OptionValue::Kind::Offset;
        value.offset = va_arg(arguments, curl_off_t);
        break;
    default:
        value.kind = OptionValue::Kind::Object;
        value.object = va_arg(arguments, void*);
        break;
    }
    return value;
}

} // namespace

} // namespace vantra::test

// The linker sends the library's calls to the functions with __wrap_; those with __real_ are libcurl's own.
extern "C" {

CURL* __real_curl_easy_init();
void __real_curl_easy_cleanup(CURL* handle);
CURLcode __real_curl_easy_setopt(CURL* handle, CURLoption option, ...);
CURLcode __real_curl_easy_getinfo(CURL* handle, CURLINFO info, ...);
CURLcode __real_curl_easy_perform(CURL* handle);
void __real_curl_easy_reset(CURL* handle);
CURLcode __real_curl_easy_pause(CURL* handle, int action);

CURL* __wrap_curl_easy_init() {
    auto* recorder = vantra::test::CurlRecorder::getActive();
    return !recorder || recorder->onInit() ? __real_curl_easy_init() : nullptr;
}

void __wrap_curl_easy_cleanup(CURL* handle) {
    if (auto* recorder = vantra::test::CurlRecorder::getActive()) recorder->onCleanup(handle);
    __real_curl_easy_cleanup(handle);
}

// A parameter before "..." must not be of a type that is promoted, as an enumeration is; int is passed alike.
CURLcode __wrap_curl_easy_setopt(CURL* handle, int optionNumber, ...) {
    using Kind = vantra::test::OptionValue::Kind;
    const auto option = static_cast<CURLoption>(optionNumber);
    va_list arguments;
    va_start(arguments, optionNumber);
    const vantra::test::OptionValue value = vantra::test::takeValue(option, arguments);
    va_end(arguments);
    if (auto* recorder = vantra::test::CurlRecorder::getActive()) {
        if (const CURLcode failure = recorder->onOption(handle, option, value)) return failure;
    }
    switch (value.kind) {
    case Kind::Number:
        return __real_curl_easy_setopt(handle, option, value.number);
    case Kind::Offset:
        return __real_curl_easy_setopt(handle, option, value.offset);
    case Kind::Function:
        return __real_curl_easy_setopt(handle, option, value.function);
    case Kind::Object:
        break;
    }
    return __real_curl_easy_setopt(handle, option, value.object);
}

CURLcode __wrap_curl_easy_getinfo(CURL* handle, int infoNumber, ...) {
    const auto info = static_cast<CURLINFO>(infoNumber);
    va_list arguments;
    va_start(arguments, infoNumber);
    void* answer = va_arg(arguments, void*);
    va_end(arguments);
    CURLcode result = CURLE_OK;
    auto* recorder = vantra::test::CurlRecorder::getActive();
    if (recorder && recorder->onInfo(info, answer, result)) return result;
    return __real_curl_easy_getinfo(handle, info, answer);
}

CURLcode __wrap_curl_easy_perform(CURL* handle) {
    CURLcode result = CURLE_OK;
    auto* recorder = vantra::test::CurlRecorder::getActive();
    if (recorder && recorder->onPerform(handle, result)) return result;
    return __real_curl_easy_perform(handle);
}

void __wrap_curl_easy_reset(CURL* handle) {
    if (auto* recorder = vantra::test::CurlRecorder::getActive()) recorder->onReset(handle);
    __real_curl_easy_reset(handle);
}

CURLcode __wrap_curl_easy_pause(CURL* handle, int action) {
    if (auto* recorder = vantra::test::CurlRecorder::getActive()) recorder->onPause(action);
    return __real_curl_easy_pause(handle, action);
}
}
