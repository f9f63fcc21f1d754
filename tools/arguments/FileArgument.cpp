#include "arguments/FileArgument.h"

#include "arguments/ArgumentText.h"
#include "Errors.h"

#include <kel/Path.h>

namespace vantra::tool {

using kel::String;

namespace {

const std::wstring separators{L'/', kel::nativePathSeparator()};

/// Whether it can be told by the name alone.
bool isFolder(const String& name) {
    const String end = name.substr(name.view().find_last_of(separators) + 1); // all of it without a separator
    return end.isEmpty() || end == "." || end == "..";
}

} // namespace

String parseFileArgument(const std::string& option, const std::string& argument) {
    String name = toArgumentText(option, argument);
    if (name.isEmpty()) throw CUsageError(String(option) + ": must not be empty");
    if (isFolder(name)) throw CUsageError(String(option) + ": '" + name + "' names a folder, not a file");
    return name;
}

} // namespace vantra::tool
