#include "kel/Error.h"

#include "kel/Log.h"

namespace kel {

CError::CError(const String& message, const String& codeDomain, int64 code, const CProps& params,
               const CError* cause)
    : message_(message),
      codeDomain_(codeDomain),
      code_(code),
      params_(params),
      cause_(cause),
      what_(message.toUTF8()) {}

CError::~CError() = default;

P<CError> CError::clone() const { return new CError(*this); }

void CError::throwClone() const { throw CError(*this); }

CInvalidArgError::CInvalidArgError(const String& function, const String& message, const CProps& params)
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): this makes the base, not an exception to throw
    : CError(message, String(), -1, params), function_(function) {}

P<CError> CInvalidArgError::clone() const { return new CInvalidArgError(*this); }

void CInvalidArgError::throwClone() const { throw CInvalidArgError(*this); }

CStdExceptionError::CStdExceptionError(const std::exception& source)
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): this makes the base, not an exception to throw
    : CError(String::fromUTF8Lax(source.what())) {}

P<CError> CStdExceptionError::clone() const { return new CStdExceptionError(*this); }

void CStdExceptionError::throwClone() const { throw CStdExceptionError(*this); }

P<CError> CStdExceptionError::exceptionToError(const std::exception& exception) {
    if (const auto* error = dynamic_cast<const CError*>(&exception)) return error->clone();
    return new CStdExceptionError(exception);
}

P<CError> CStdExceptionError::currentExceptionToError() {
    try {
        throw;
    } catch (const std::exception& exception) {
        return exceptionToError(exception);
    } catch (...) {
        return new CError("Unknown exception.");
    }
}

void onExceptionInDestructorIgnored(const char* className) noexcept {
    try {
        const String text =
            "Exception in destructor of " + String::fromUTF8Lax(className ? className : "?") + " (ignored).";
        logError(CStdExceptionError::currentExceptionToError().get(), text);
    } catch (...) {
        // Without the memory for the report nobody is left to tell.
    }
}

} // namespace kel
