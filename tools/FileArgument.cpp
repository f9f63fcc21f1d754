#include "FileArgument.h"

#include "ArgumentText.h"
#include "Errors.h"

#include <kel/Path.h>

namespace vantra::tool {

using kel::String;

String parseFileArgument(const std::string& option, const std::string& argument) {
    String name = toArgumentText(option, argument);
    if (name.isEmpty()) throw CUsageError(String(option) + ": must not be empty");
    if (name.endsWith(L"/") || name.endsWith(String(std::wstring(1, kel::nativePathSeparator()))))
        throw CUsageError(String(option) + ": '" + name + "' names a folder, not a file");
    return name;
}

} // namespace vantra::tool
