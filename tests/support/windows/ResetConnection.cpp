#include "support/ResetConnection.h"

namespace testsupport {

bool resetMayLookLikeAnEnd() { return true; }

} // namespace testsupport
