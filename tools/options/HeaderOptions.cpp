#include "options/HeaderOptions.h"

#include "arguments/FileArgument.h"
#include "Errors.h"
#include "files/Input.h"

#include <CLI/CLI.hpp>

#include <kel/Path.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace vantra::tool {

using kel::CError;
using kel::CPath;
using kel::P;
using kel::String;
using kel::TBuffer;

namespace {

/// With an empty value nothing is sent, which is no secret.
void refuseSecret(const HeaderArgument& header) {
    const String name = header.name.toLower();
    if (!header.value.isEmpty() && (name.endsWith(L"authorization") || name == "cookie"))
        throw CUsageError("--header: others can read the command line; put '" + header.name +
                          "' into a file and name that with --header-file");
}

void appendFromFile(std::vector<HeaderArgument>& headers, const String& file) {
    constexpr std::size_t mostBytes = std::size_t{256} * 1024;
    const P<TBuffer<unsigned char>> content = readInput(file, mostBytes);
    std::istringstream lines(
        std::string(reinterpret_cast<const char*>(content->getData()), content->getUsed()));
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty()) continue;
        try {
            headers.push_back(parseHeaderArgument("--header-file", line));
        } catch (const CUsageError&) { // which may show the line
            throw CError("Line " + String::fromInt(number) + " of '" + CPath(file).getText() +
                         "' is not a header as in 'Name: value'.");
        }
    }
}

} // namespace

void CHeaderOptions::addTo(CLI::App& verb) {
    verb.add_option_function<std::vector<std::string>>(
            "--header",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments) {
                    headers_.push_back(parseHeaderArgument("--header", argument));
                    refuseSecret(headers_.back());
                }
            },
            "Header to send, as 'Name: value'; any number of them.\nWith an empty value the header of that "
            "name that\nwould be sent otherwise is left out. HTTP only")
        ->type_name("'N: V'")
        ->allow_extra_args(false);
    verb.add_option_function<std::string>(
            "--header-file",
            [this](const std::string& argument) {
                file_ = parseFileArgument("--header-file", argument);
                if (*file_ == "-") throw CUsageError("--header-file: must name a file");
            },
            "File with headers to send, one a line, such as those\nwith secrets that nobody is to see")
        ->type_name("FILE");
}

const std::vector<HeaderArgument>& CHeaderOptions::getHeaders() const {
    if (!allHeaders_) {
        allHeaders_ = headers_;
        if (file_) appendFromFile(*allHeaders_, *file_);
    }
    return *allHeaders_;
}

bool CHeaderOptions::hasHeader(const String& name) const {
    return std::any_of(getHeaders().begin(), getHeaders().end(),
                       [&](const HeaderArgument& header) { return header.name.equalsNoCase(name); });
}

void CHeaderOptions::applyTo(CNetRequest& request) const {
    if (getHeaders().empty()) return;
    P<CNetHeaders> headers = request.getCustomHTTPHeaders();
    if (!headers) headers = new CNetHeaders();
    for (const HeaderArgument& header : getHeaders()) headers->add(header.name, header.value);
    request.setCustomHTTPHeaders(headers);
}

} // namespace vantra::tool
