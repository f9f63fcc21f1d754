#include "Thrown.h"

#include "Doubles.h"

#include "vantra/CURLError.h"
#include "vantra/S3Error.h"

#include <kel/Error.h>

#include <typeinfo>

namespace vantra::test {

namespace {

using kel::CError;
using kel::CInvalidArgError;
using kel::CStdExceptionError;

std::string detailsOf(const CCURLError& error) {
    return "response code domain '" + error.getResponseCodeDomain().toUTF8() + "', response code " +
           std::to_string(error.getResponseCode()) + ", server message '" +
           error.getServerMessage().toUTF8() + "', status line '" + error.getHTTPStatusLine().toUTF8() +
           "', URL '" + error.getURL().toUTF8() + "', method '" + error.getHTTPMethod().toUTF8() + "'";
}

std::string lookUp(const std::map<std::string, std::string>& params, const std::string& key) {
    const auto found = params.find(key);
    return found == params.end() ? "" : found->second;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Thrown& thrown) {
    stream << thrown.type << " \"" << thrown.message << "\" " << thrown.codeDomain << ' ' << thrown.code
           << " {";
    for (const auto& [key, value] : thrown.params) stream << key << ": \"" << value << "\", ";
    return stream << "} " << thrown.details;
}

Thrown describe(const CError& error) {
    Thrown thrown{"?", error.getMessage().toUTF8(), error.getCodeDomain().toUTF8(), error.getCode(), {}, ""};
    for (const auto& [key, value] : error.getParams().getMap()) thrown.params[key.toUTF8()] = value.toUTF8();
    if (typeid(error) == typeid(CError)) {
        thrown.type = "CError";
    } else if (typeid(error) == typeid(CStdExceptionError)) {
        thrown.type = "CStdExceptionError";
    } else if (const auto* invalid = dynamic_cast<const CInvalidArgError*>(&error)) {
        thrown.type = "CInvalidArgError";
        thrown.details = invalid->getFunction().toUTF8();
    } else if (const auto* curlFailure = dynamic_cast<const CCURLError*>(&error)) {
        thrown.type = "CCURLError";
        thrown.details = detailsOf(*curlFailure);
    } else if (const auto* refusal = dynamic_cast<const CS3Error*>(&error)) {
        thrown.type = "CS3Error";
        thrown.details = refusal->getS3Code().toUTF8();
    } else if (const auto* own = dynamic_cast<const COwnError*>(&error)) {
        thrown.type = "COwnError";
        thrown.details = own->getDetail();
    }
    return thrown;
}

Thrown thrownBy(const std::function<void()>& function) {
    try {
        function();
        return nothingThrown;
    } catch (const CError& error) {
        return describe(error);
    } catch (const std::runtime_error& error) {
        return {"std::runtime_error", error.what(), "", -1, {}, ""};
    } catch (const std::exception& error) {
        return {"std::exception", error.what(), "", -1, {}, ""};
    } catch (int number) {
        return {"int", std::to_string(number), "", -1, {}, ""};
    }
}

Thrown curlError(CURLcode code, const std::string& detail, const std::map<std::string, std::string>& params) {
    const std::string domain = lookUp(params, "responseCodeDomain");
    const std::string responseCode = lookUp(params, "responseCode");
    Thrown thrown{"CCURLError", curl_easy_strerror(code), "curl", code, params, ""};
    if (!detail.empty()) thrown.message += ": " + detail;
    if (!responseCode.empty()) thrown.message += " (response code: " + domain + " " + responseCode + ")";
    // Without the parameter the code is 0 where there was no response, and -1 where none was asked for.
    const std::string number = !responseCode.empty() ? responseCode : domain.empty() ? "-1" : "0";
    thrown.details = "response code domain '" + domain + "', response code " + number + ", server message '" +
                     lookUp(params, "serverMessage") + "', status line '" + lookUp(params, "httpStatusLine") +
                     "', URL '" + lookUp(params, "url") + "', method '" + lookUp(params, "httpMethod") + "'";
    return thrown;
}

Thrown plainError(const std::string& message) { return {"CError", message, "", -1, {}, ""}; }

Thrown invalidArgError(const std::string& function, const std::string& message) {
    return {"CInvalidArgError", message, "", -1, {}, function};
}

} // namespace vantra::test
