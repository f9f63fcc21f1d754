// The system's own calls, on settings that a test wrote: what they give and what the tables then hold.
#include "proxy/SystemProxy.h"

#include <vantra/ProxySettings.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <windows.h>

#include <winhttp.h>

namespace {

using kel::P;
using kel::String;
using kel::TArray;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using vantra::CProxySettings;
using vantra::getSystemProxy;

constexpr const wchar_t* connectionsPath =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections";

/// While one lives, a root of the registry is an empty key of the test's own for this process, so that
/// neither the user's settings nor those of other tests are touched.
class CEmptyRoot {
public:
    CEmptyRoot(HKEY root, const wchar_t* name)
        : root_(root), path_(std::wstring(L"Software\\vantra-test-") + name) {
        path_ += L"-" + std::to_wstring(::GetCurrentProcessId());
        EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                    &key_, nullptr),
                  ERROR_SUCCESS);
    }
    CEmptyRoot(const CEmptyRoot&) = delete;
    CEmptyRoot& operator=(const CEmptyRoot&) = delete;
    ~CEmptyRoot() {
        ::RegCloseKey(key_);
        EXPECT_EQ(::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()), ERROR_SUCCESS);
    }

    void use() { EXPECT_EQ(::RegOverridePredefKey(root_, key_), ERROR_SUCCESS); }
    void stopUsing() { EXPECT_EQ(::RegOverridePredefKey(root_, nullptr), ERROR_SUCCESS); }

private:
    HKEY root_;
    std::wstring path_;
    HKEY key_ = nullptr;
};

class WindowsRegistry : public testing::Test {
protected:
    WindowsRegistry() {
        user_.use();
        machine_.use();
    }
    ~WindowsRegistry() override {
        machine_.stopUsing();
        user_.stopUsing();
    }

    static constexpr DWORD direct = 1;
    static constexpr DWORD proxy = 2;
    static constexpr DWORD script = 4;
    static constexpr DWORD autoDetect = 8;

    /// Writes the user's settings in the system's form.
    static void setUser(DWORD flags, const std::string& proxyList, const std::string& bypassList,
                        const std::string& scriptAddress) {
        std::vector<unsigned char> bytes;
        const auto addNumber = [&](std::size_t number) {
            for (unsigned shift = 0; shift < 32; shift += 8) bytes.push_back((number >> shift) & 0xFFU);
        };
        const auto addText = [&](const std::string& text) {
            addNumber(text.size());
            bytes.insert(bytes.end(), text.begin(), text.end());
        };
        constexpr DWORD signature = 0x46;
        addNumber(signature);
        addNumber(0);
        addNumber(flags);
        addText(proxyList);
        addText(bypassList);
        addText(scriptAddress);
        constexpr std::size_t trailer = 32;
        bytes.insert(bytes.end(), trailer, 0);
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, connectionsPath, 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                                    &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegSetValueExW(key, L"DefaultConnectionSettings", 0, REG_BINARY, bytes.data(),
                                   static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
        ::RegCloseKey(key);
    }

    static void setMachine(DWORD accessType, std::wstring proxyList, std::wstring bypassList) {
        WINHTTP_PROXY_INFO info{accessType, proxyList.empty() ? nullptr : proxyList.data(),
                                bypassList.empty() ? nullptr : bypassList.data()};
        EXPECT_TRUE(::WinHttpSetDefaultProxyConfiguration(&info)) << ::GetLastError();
    }

    static void expectLists(const char* proxyList, const char* bypassList) {
        const vantra::CSystemProxy read = getSystemProxy();
        EXPECT_EQ(read.proxyList, proxyList);
        EXPECT_EQ(read.bypassList, bypassList);
    }

    /// What CProxySettings makes of the settings: scheme and proxy.
    std::map<std::string, std::string> readProxies() {
        settings_->initFromUserSettings();
        TArray<String> schemes;
        settings_->getProxyURLSchemes(schemes);
        std::map<std::string, std::string> proxies;
        for (const String& scheme : schemes)
            proxies[scheme.toUTF8()] = settings_->getProxyForURLScheme(scheme).toUTF8();
        return proxies;
    }
    /// After readProxies().
    std::vector<std::string> getDirectHosts() {
        TArray<String> hosts;
        settings_->getDirectConnectHosts(hosts);
        std::vector<std::string> texts;
        for (const String& host : hosts) texts.push_back(host.toUTF8());
        return texts;
    }

private:
    CEmptyRoot user_{HKEY_CURRENT_USER, L"user"};
    CEmptyRoot machine_{HKEY_LOCAL_MACHINE, L"machine"};
    P<CProxySettings> settings_ = new CProxySettings();
};

TEST_F(WindowsRegistry, WithoutSettingsHasNoProxy) {
    expectLists("", "");
    EXPECT_THAT(readProxies(), IsEmpty());
    EXPECT_THAT(getDirectHosts(), IsEmpty());
}

TEST_F(WindowsRegistry, GivesAListOfProxiesBySchemes) {
    setUser(direct | proxy, "http=a.example:3128;https=b.example:443;ftp=c.example:2121", "", "");
    expectLists("http=a.example:3128;https=b.example:443;ftp=c.example:2121", "");
    EXPECT_THAT(readProxies(), ElementsAre(Pair("ftp", "c.example:2121"), Pair("http", "a.example:3128"),
                                           Pair("https", "b.example:443")));
}

TEST_F(WindowsRegistry, GivesOneProxyForAllSchemes) {
    setUser(direct | proxy, "gate.example:8080", "", "");
    expectLists("gate.example:8080", "");
    EXPECT_THAT(readProxies(),
                ElementsAre(Pair("ftp", "gate.example:8080"), Pair("http", "gate.example:8080"),
                            Pair("https", "gate.example:8080")));
}

TEST_F(WindowsRegistry, GivesTheBypassList) {
    setUser(direct | proxy, "gate.example:8080", "Store.example;*.lan;<local>", "");
    expectLists("gate.example:8080", "Store.example;*.lan;<local>");
    EXPECT_EQ(readProxies().size(), 3U);
    EXPECT_THAT(getDirectHosts(), ElementsAre("*.lan", "<local>", "store.example"));
}

TEST_F(WindowsRegistry, WithADirectConnectionHasNoProxy) {
    setUser(direct, "", "", "");
    expectLists("", "");
    EXPECT_THAT(readProxies(), IsEmpty());
}

TEST_F(WindowsRegistry, DoesNotUseAProxyThatIsSwitchedOff) {
    setUser(direct, "gate.example:8080", "store", "");
    EXPECT_THAT(readProxies(), IsEmpty());
    EXPECT_THAT(getDirectHosts(), IsEmpty());
}

TEST_F(WindowsRegistry, DoesNotUseAScriptOrAutomaticDetection) {
    setUser(direct | script | autoDetect, "", "", "http://pac.example/proxy.pac");
    expectLists("", "");
    EXPECT_THAT(readProxies(), IsEmpty());
}

TEST_F(WindowsRegistry, GivesTheProxyBesideAScript) {
    setUser(direct | proxy | script | autoDetect, "gate.example:8080", "store",
            "http://pac.example/proxy.pac");
    expectLists("gate.example:8080", "store");
    EXPECT_EQ(readProxies().size(), 3U);
    EXPECT_THAT(getDirectHosts(), ElementsAre("store"));
}

TEST_F(WindowsRegistry, GivesTheMachinesProxyWhereTheUserHasNone) {
    setMachine(WINHTTP_ACCESS_TYPE_NAMED_PROXY, L"http=m.example:80;https=m.example:443", L"store;<local>");
    expectLists("http=m.example:80;https=m.example:443", "store;<local>");
    EXPECT_THAT(readProxies(), ElementsAre(Pair("http", "m.example:80"), Pair("https", "m.example:443")));
    EXPECT_THAT(getDirectHosts(), ElementsAre("<local>", "store"));
}

TEST_F(WindowsRegistry, GivesTheMachinesProxyWhereTheUserIsDirect) {
    setUser(direct, "", "", "");
    setMachine(WINHTTP_ACCESS_TYPE_NAMED_PROXY, L"m.example:80", L"");
    expectLists("m.example:80", "");
    EXPECT_EQ(readProxies().size(), 3U);
}

TEST_F(WindowsRegistry, PrefersTheUsersProxyToTheMachines) {
    setUser(direct | proxy, "gate.example:8080", "mine", "");
    setMachine(WINHTTP_ACCESS_TYPE_NAMED_PROXY, L"m.example:80", L"machines");
    expectLists("gate.example:8080", "mine");
    EXPECT_EQ(readProxies().size(), 3U);
    EXPECT_THAT(getDirectHosts(), ElementsAre("mine"));
}

TEST_F(WindowsRegistry, WithAMachineWithoutProxyHasNone) {
    setMachine(WINHTTP_ACCESS_TYPE_NO_PROXY, L"", L"");
    expectLists("", "");
    EXPECT_THAT(readProxies(), IsEmpty());
}

TEST_F(WindowsRegistry, GivesWhatIsSetNowAndNotWhatWas) {
    setUser(direct | proxy, "gate.example:8080", "store", "");
    EXPECT_EQ(readProxies().size(), 3U);
    setUser(direct, "", "", "");
    EXPECT_THAT(readProxies(), IsEmpty());
    EXPECT_THAT(getDirectHosts(), IsEmpty());
}

} // namespace
