/// @file kel/Error.h
/// The exceptions of the base library.
#pragma once

#include "kel/Base.h"
#include "kel/Export.h"
#include "kel/Int64.h"
#include "kel/P.h"
#include "kel/Props.h"
#include "kel/String.h"

#include <exception>
#include <string>

namespace kel {

/// The root of every exception thrown here: a message for people and, for programs, a code in a domain,
/// named parameters and the error that led to this one. Thrown by value, caught by reference.
///
/// Thread safety: an error is not changed after it was made; any thread may read it.
class KEL_API CError : public std::exception, public CBase {
public:
    /// @param codeDomain what `code` is counted in, such as "curl"; empty when the code means nothing.
    /// @param cause the error that led to this one, or null; a reference is kept, so it must be on the heap:
    /// of a caught error, its clone().
    explicit CError(const String& message, const String& codeDomain = String(), int64 code = -1,
                    const CProps& params = CProps(), const CError* cause = nullptr);
    CError(const CError& other) = default;
    CError& operator=(const CError& other) = default;
    ~CError() override;

    /// The message in UTF-8.
    [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }
    /// The message for people.
    [[nodiscard]] const String& getMessage() const noexcept { return message_; }
    /// What getCode() is counted in, such as "curl"; empty when the code means nothing.
    [[nodiscard]] const String& getCodeDomain() const noexcept { return codeDomain_; }
    /// A code of the domain; -1 when there is none.
    [[nodiscard]] int64 getCode() const noexcept { return code_; }
    /// Texts that belong to the error, by name.
    [[nodiscard]] const CProps& getParams() const noexcept { return params_; }
    /// Null when there is none.
    [[nodiscard]] const PC<CError>& getCause() const noexcept { return cause_; }

    /// A copy on the heap, of the same dynamic type.
    [[nodiscard]] virtual P<CError> clone() const;
    /// Throws a copy of the same dynamic type.
    [[noreturn]] virtual void throwClone() const;

private:
    String message_;
    String codeDomain_;
    int64 code_;
    CProps params_;
    PC<CError> cause_;
    std::string what_;
};

/// A function was called with an argument that it cannot take.
class KEL_API CInvalidArgError : public CError {
public:
    /// @param function the name of the function, such as "CNetHeaders::splitEntry"; it is the error's context
    /// and not part of its message.
    CInvalidArgError(const String& function, const String& message, const CProps& params = CProps());

    /// The name of the function that was called.
    [[nodiscard]] const String& getFunction() const noexcept { return function_; }
    [[nodiscard]] P<CError> clone() const override;
    [[noreturn]] void throwClone() const override;

private:
    String function_;
};

/// Carries an exception that is no CError.
class KEL_API CStdExceptionError : public CError {
public:
    /// The message is source.what() (ill-formed UTF-8 in it becomes U+FFFD).
    explicit CStdExceptionError(const std::exception& source);

    [[nodiscard]] P<CError> clone() const override;
    [[noreturn]] void throwClone() const override;

    /// A clone of `exception` if it is a CError, otherwise a CStdExceptionError made from it.
    [[nodiscard]] static P<CError> exceptionToError(const std::exception& exception);
    /// The same for the exception being handled, whatever its type; one that is not derived from
    /// std::exception gives a CError "Unknown exception.". Only to be called inside a catch block.
    [[nodiscard]] static P<CError> currentExceptionToError();
};

/// To be called in a destructor's catch block: reports the exception being handled to the log as an error,
/// "Exception in destructor of CLASS (ignored).", and swallows it. Never throws.
KEL_API void onExceptionInDestructorIgnored(const char* className) noexcept;

} // namespace kel
