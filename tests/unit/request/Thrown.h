/// @file Thrown.h
/// Errors as values to compare.
///
///     EXPECT_EQ(thrownBy([&] { request->perform(); }), curlError(CURLE_COULDNT_CONNECT, "refused", {{"url",
///     url}}));
#pragma once

#include <curl/curl.h>

#include <kel/Int64.h>

#include <exception>
#include <functional>
#include <map>
#include <ostream>
#include <string>

namespace kel {
class CError;
}

namespace vantra::test {

/// All that can be seen of an exception.
struct Thrown {
    std::string type = "nothing";
    std::string message;
    std::string codeDomain;
    kel::int64 code = -1;
    std::map<std::string, std::string> params;
    std::string details; ///< what the type has beyond a CError

    friend bool operator==(const Thrown&, const Thrown&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Thrown& thrown);
};

/// Nothing was thrown.
inline const Thrown nothingThrown;

/// What a function throws.
Thrown thrownBy(const std::function<void()>& function);

/// The same for an error that was caught already.
Thrown describe(const kel::CError& error);

/// The CCURLError that a libcurl code is reported with.
/// @param detail the text behind libcurl's own for the code; may be empty.
/// @param params the parameters, from which the response code in the message and all other members follow.
Thrown curlError(CURLcode code, const std::string& detail,
                 const std::map<std::string, std::string>& params = {});

/// A plain CError without a code.
Thrown plainError(const std::string& message);

Thrown invalidArgError(const std::string& function, const std::string& message);

} // namespace vantra::test
