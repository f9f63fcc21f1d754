#include "support/EnvironmentVariable.h"

#include <cstdlib>

namespace testsupport {

void removeEnvironmentVariable(const char* name) { ::unsetenv(name); }

} // namespace testsupport
