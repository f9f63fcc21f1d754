#include "support/EnvironmentVariable.h"

#include <cstdlib>

namespace testsupport {

void removeEnvironmentVariable(const char* name) { ::_putenv_s(name, ""); }

} // namespace testsupport
