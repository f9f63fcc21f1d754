#include "proxy/SystemProxy.h"

#include "proxy/posix/GSettings.h"

namespace vantra {

CSystemProxy getSystemProxy() { return toSystemProxy(readDesktopProxy()); }

} // namespace vantra
