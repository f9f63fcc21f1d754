/// The proxy configuration in GSettings, which GNOME and the desktops near it keep. Private to the library.
#pragma once

#include "proxy/DesktopProxy.h"

namespace vantra {

/// Reads the schema "org.gnome.system.proxy". GLib is loaded for that and stays loaded, so that nobody has to
/// have it; without it or the schema the result is the one of no configuration.
/// @param gioLibrary the file name of GLib's library of GSettings, with which GLib's other libraries come.
CDesktopProxy readDesktopProxy(const char* gioLibrary = "libgio-2.0.so.0");

} // namespace vantra
