#include "s3/ObjectArgument.h"

#include "arguments/ArgumentText.h"
#include "Errors.h"

#include <string_view>

namespace vantra::tool {

using kel::String;

namespace {

constexpr std::wstring_view schemeStart = L"s3://";

} // namespace

CObjectArgument::CObjectArgument(const std::string& name, const std::string& argument, Key key)
    : text_(toArgumentText(name, argument)) {
    if (!text_.substr(0, schemeStart.size()).toLower().startsWith(schemeStart))
        throw CUsageError(String(name) + ": '" + text_ + "' does not begin with s3://");
    const String path = text_.substr(schemeStart.size());
    const std::size_t slash = path.find(L'/');
    bucket_ = path.substr(0, slash);
    if (slash != String::npos) key_ = path.substr(slash + 1);
    if (bucket_.isEmpty()) throw CUsageError(String(name) + ": '" + text_ + "' names no bucket");
    if (key == Key::Needed && key_.isEmpty())
        throw CUsageError(String(name) + ": '" + text_ + "' names no object, as s3://BUCKET/KEY does");
}

} // namespace vantra::tool
