/// Stands in for the system's header of this name: as much of it as the library uses, with the system's own
/// declarations.
#pragma once

#include <windows.h>

struct WINHTTP_CURRENT_USER_IE_PROXY_CONFIG {
    BOOL fAutoDetect;
    LPWSTR lpszAutoConfigUrl;
    LPWSTR lpszProxy;
    LPWSTR lpszProxyBypass;
};

struct WINHTTP_PROXY_INFO {
    DWORD dwAccessType;
    LPWSTR lpszProxy;
    LPWSTR lpszProxyBypass;
};

constexpr DWORD WINHTTP_ACCESS_TYPE_NO_PROXY = 1;
constexpr DWORD WINHTTP_ACCESS_TYPE_NAMED_PROXY = 3;

extern "C" BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG* config);
extern "C" BOOL WinHttpGetDefaultProxyConfiguration(WINHTTP_PROXY_INFO* info);
