// Windows takes line ends out of what a program reads and puts others into what it writes, unless told
// otherwise. The examples hand on what they get.
#include <fcntl.h>
#include <initializer_list>
#include <io.h>

namespace {

/// Made before main() begins.
const struct CBinaryStandardFiles {
    CBinaryStandardFiles() {
        for (const int descriptor : {0, 1, 2}) (void)::_setmode(descriptor, _O_BINARY);
    }
} binaryStandardFiles;

} // namespace
