#include "proxy/SystemProxy.h"

#include <windows.h>

#include <winhttp.h>

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <utility>

namespace {

using kel::String;
using vantra::CSystemProxy;
using vantra::getSystemProxy;

using Text = std::optional<std::wstring>;

struct UserConfiguration {
    bool succeeds = false;
    Text scriptAddress;
    Text proxyList;
    Text bypassList;
};

struct MachineConfiguration {
    bool succeeds = false;
    DWORD accessType = WINHTTP_ACCESS_TYPE_NAMED_PROXY;
    Text proxyList;
    Text bypassList;
};

/// The configuration that the doubles of the system's functions tell, and the strings they handed out.
struct System {
    UserConfiguration user;
    MachineConfiguration machine;
    int userCalls = 0;
    int machineCalls = 0;
    std::set<wchar_t*> handedOut;
    int freedStrangers = 0;

    wchar_t* handOut(const Text& text) {
        if (!text) return nullptr;
        auto* const copy = new wchar_t[text->size() + 1];
        copy[text->copy(copy, text->size())] = L'\0';
        handedOut.insert(copy);
        return copy;
    }
};

System theSystem;

/// Asks a system configured like this; all its strings have to be freed.
std::pair<String, String> ask(const UserConfiguration& user, const MachineConfiguration& machine = {}) {
    theSystem = System();
    theSystem.user = user;
    theSystem.machine = machine;
    const CSystemProxy proxy = getSystemProxy();
    EXPECT_EQ(theSystem.handedOut.size(), 0u);
    EXPECT_EQ(theSystem.freedStrangers, 0);
    EXPECT_EQ(theSystem.userCalls, 1);
    return {proxy.proxyList, proxy.bypassList};
}

using Lists = std::pair<String, String>;

TEST(WindowsSystemProxy, IsTheUsers) {
    EXPECT_EQ(ask({true, {}, L"http=a:80", L"<local>;store"}, {true, 3, L"machine", L"other"}),
              Lists("http=a:80", "<local>;store"));
    EXPECT_EQ(theSystem.machineCalls, 0);
}

TEST(WindowsSystemProxy, IsTrimmed) {
    EXPECT_EQ(ask({true, {}, L" a:80\r\n", L"\tstore "}), Lists("a:80", "store"));
    EXPECT_EQ(ask({}, {true, 3, L" b:80\r\n", L"\tstore "}), Lists("b:80", "store"));
}

TEST(WindowsSystemProxy, MayLackABypassList) { EXPECT_EQ(ask({true, {}, L"a:80", {}}), Lists("a:80", "")); }

TEST(WindowsSystemProxy, DoesNotUseAConfigurationScript) {
    EXPECT_EQ(ask({true, L"http://pac.example/", {}, {}}), Lists("", ""));
    EXPECT_EQ(ask({true, L"http://pac.example/", L"a:80", {}}), Lists("a:80", ""));
}

TEST(WindowsSystemProxy, IsTheMachinesWhereTheUserHasNone) {
    const MachineConfiguration machine{true, 3, L"b:80", L"store"};
    EXPECT_EQ(ask({true, {}, {}, {}}, machine), Lists("b:80", "store"));
    EXPECT_EQ(ask({true, {}, L" \t", {}}, machine), Lists("b:80", "store"));
    EXPECT_EQ(ask({false, {}, {}, {}}, machine), Lists("b:80", "store"));
    EXPECT_EQ(theSystem.machineCalls, 1);
}

TEST(WindowsSystemProxy, KeepsTheUsersBypassListWhereTheMachineHasNone) {
    EXPECT_EQ(ask({true, {}, {}, L"mine"}, {true, 3, L"b:80", {}}), Lists("b:80", "mine"));
    EXPECT_EQ(ask({true, {}, {}, L"mine"}, {true, 3, L"b:80", L"machine"}), Lists("b:80", "machine"));
}

TEST(WindowsSystemProxy, IsNoneWhereTheMachineSaysSo) {
    EXPECT_EQ(ask({}, {true, WINHTTP_ACCESS_TYPE_NO_PROXY, L"b:80", L"store"}), Lists("", ""));
    EXPECT_EQ(ask({}, {true, 0, L"b:80", L"store"}), Lists("b:80", "store"));
}

TEST(WindowsSystemProxy, IsNoneWhereNothingCanBeRead) {
    EXPECT_EQ(ask({}, {}), Lists("", ""));
    EXPECT_EQ(ask({false, L"script", L"a:80", L"store"}, {false, 3, L"b:80", L"store"}), Lists("", ""));
}

} // namespace

extern "C" HGLOBAL GlobalFree(HGLOBAL memory) {
    auto* const text = static_cast<wchar_t*>(memory);
    if (theSystem.handedOut.erase(text) == 1)
        delete[] text;
    else
        ++theSystem.freedStrangers;
    return nullptr;
}

extern "C" BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG* config) {
    const UserConfiguration& user = theSystem.user;
    ++theSystem.userCalls;
    *config = {1, theSystem.handOut(user.scriptAddress), theSystem.handOut(user.proxyList),
               theSystem.handOut(user.bypassList)};
    return user.succeeds ? 1 : 0;
}

extern "C" BOOL WinHttpGetDefaultProxyConfiguration(WINHTTP_PROXY_INFO* info) {
    const MachineConfiguration& machine = theSystem.machine;
    ++theSystem.machineCalls;
    *info = {machine.accessType, theSystem.handOut(machine.proxyList), theSystem.handOut(machine.bypassList)};
    return machine.succeeds ? 1 : 0;
}
