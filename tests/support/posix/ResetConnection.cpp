#include "support/ResetConnection.h"

namespace testsupport {

bool resetMayLookLikeAnEnd() { return false; }

} // namespace testsupport
