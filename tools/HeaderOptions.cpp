#include "HeaderOptions.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace vantra::tool {

using kel::P;
using kel::String;

void CHeaderOptions::addTo(CLI::App& verb) {
    verb.add_option_function<std::vector<std::string>>(
            "--header",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments)
                    headers_.push_back(parseHeaderArgument("--header", argument));
            },
            "Header to send, as 'Name: value'; any number of them.\nWith an empty value the header of that "
            "name that\nwould be sent otherwise is left out. HTTP only")
        ->type_name("'N: V'")
        ->allow_extra_args(false);
}

bool CHeaderOptions::hasHeader(const String& name) const {
    return std::any_of(headers_.begin(), headers_.end(),
                       [&](const HeaderArgument& header) { return header.name.equalsNoCase(name); });
}

void CHeaderOptions::applyTo(CNetRequest& request) const {
    if (headers_.empty()) return;
    P<CNetHeaders> headers = request.getCustomHTTPHeaders();
    if (!headers) headers = new CNetHeaders();
    for (const HeaderArgument& header : headers_) headers->add(header.name, header.value);
    request.setCustomHTTPHeaders(headers);
}

} // namespace vantra::tool
