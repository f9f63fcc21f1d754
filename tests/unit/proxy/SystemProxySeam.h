/// @file SystemProxySeam.h
/// Stands in for the operating system's proxy configuration.
#pragma once

#include "proxy/SystemProxy.h"

#include <functional>

namespace proxytest {

/// What the operating system answers from now on; before that, no proxy. It may throw.
void setSystemProxy(std::function<vantra::CSystemProxy()> answer);
void setSystemProxy(const kel::String& proxyList, const kel::String& bypassList);

/// How often the operating system was asked.
int getSystemProxyCallCount();

} // namespace proxytest
