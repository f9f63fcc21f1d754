#include "support/Command.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testsupport::CommandOptions;
using testsupport::CommandResult;
using testsupport::runCommand;
using testsupport::TempDir;

/// A user's desktop settings in a key file, read by a process of its own through the GLib of the system.
class DesktopSettings : public testing::Test {
protected:
    DesktopSettings() {
        environment["GSETTINGS_BACKEND"] = "keyfile";
        environment["XDG_CONFIG_HOME"] = folder.path();
        environment["GSETTINGS_SCHEMA_DIR"] = std::nullopt;
        environment["XDG_DATA_DIRS"] = std::nullopt;
        environment["XDG_DATA_HOME"] = folder.file("data");
        environment["G_DEBUG"] = "fatal-criticals";
        for (const char* const variable : {"http_proxy", "https_proxy", "HTTPS_PROXY", "ALL_PROXY"})
            environment[variable] = "http://environment.example:1";
        environment["no_proxy"] = "environment.example";
    }

    void write(const std::string& keyFile) const { folder.writeFile("glib-2.0/settings/keyfile", keyFile); }

    /// What the probe says; it has to end well and to be quiet beyond that.
    std::string probe(std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.begin(), DESKTOP_PROBE);
        CommandOptions options;
        options.environment = environment;
        const CommandResult result = runCommand(arguments, {}, options);
        EXPECT_EQ(result.exitStatus, 0);
        EXPECT_EQ(result.standardError, "");
        return result.standardOutput;
    }

    /// Makes the schema the only one that is installed.
    void installSchema(const std::string& xml) {
        folder.writeFile("schemas/test.gschema.xml", xml);
        const CommandResult result = runCommand({"glib-compile-schemas", folder.file("schemas")});
        ASSERT_EQ(result.exitStatus, 0) << result.standardError;
        environment["GSETTINGS_SCHEMA_DIR"] = folder.file("schemas");
        environment["XDG_DATA_DIRS"] = folder.file("nothing");
    }

    const TempDir folder;
    testsupport::Environment environment;
};

const std::string nothing = "proxies: \nbypass: \n";

TEST_F(DesktopSettings, AreReadInManualMode) {
    write("[system/proxy]\nmode='manual'\nignore-hosts=['localhost', '*.lan', '::1']\n"
          "[system/proxy/http]\nhost='a.example'\nport=3128\n"
          "[system/proxy/https]\nhost='b.example'\nport=3129\n"
          "[system/proxy/ftp]\nhost='c.example'\nport=3130\n");
    EXPECT_EQ(probe(), "proxies: http=a.example:3128;https=b.example:3129;ftp=c.example:3130\n"
                       "bypass: localhost;*.lan;::1\n");
}

TEST_F(DesktopSettings, MayHoldASOCKSProxy) {
    write(
        "[system/proxy]\nmode='manual'\nignore-hosts=@as []\n[system/proxy/socks]\nhost='gate'\nport=1080\n");
    EXPECT_EQ(probe(), "proxies: http=socks5h://gate:1080;https=socks5h://gate:1080;ftp=socks5h://gate:1080;"
                       "ftps=socks5h://gate:1080;sftp=socks5h://gate:1080;smtp=socks5h://gate:1080;"
                       "smtps=socks5h://gate:1080\nbypass: \n");
}

TEST_F(DesktopSettings, MayHoldCharactersOutsideASCII) {
    write("[system/proxy]\nmode='manual'\nignore-hosts=['b\u00FCcher']\n[system/proxy/"
          "ftp]\nhost='\u00E9'\nport=21\n");
    EXPECT_EQ(probe(), "proxies: ftp=\u00E9:21\nbypass: b\u00FCcher\n");
}

TEST_F(DesktopSettings, CountForNothingInOtherModes) {
    const std::string servers = "ignore-hosts=['localhost']\nautoconfig-url='http://pac.example/'\n"
                                "[system/proxy/http]\nhost='a'\nport=80\nenabled=true\n";
    write("[system/proxy]\nmode='none'\n" + servers);
    EXPECT_EQ(probe(), nothing);
    write("[system/proxy]\nmode='auto'\n" + servers);
    EXPECT_EQ(probe(), nothing);
}

TEST_F(DesktopSettings, HaveNoProxyUnlessTheUserSetOne) {
    EXPECT_EQ(probe(), nothing);
    environment["GSETTINGS_BACKEND"] = "memory";
    EXPECT_EQ(probe(), nothing);
    environment["GSETTINGS_BACKEND"] = std::nullopt;
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + folder.file("no-bus");
    EXPECT_EQ(probe(), nothing);
}

TEST_F(DesktopSettings, HaveNoProxyWithoutHostOrPort) {
    write("[system/proxy]\nmode='manual'\n[system/proxy/http]\nhost=''\nport=80\n[system/proxy/"
          "https]\nhost='b'\n");
    EXPECT_EQ(probe(), "proxies: \nbypass: localhost;127.0.0.0/8;::1\n");
}

TEST_F(DesktopSettings, MayBeMissingAltogether) {
    write("[system/proxy]\nmode='manual'\n[system/proxy/http]\nhost='a'\nport=80\n");
    environment["XDG_DATA_DIRS"] = folder.file("nothing");
    EXPECT_EQ(probe(), nothing);
}

TEST_F(DesktopSettings, MayBeMissingAmongOthers) {
    installSchema("<schemalist><schema id='org.example.other' path='/other/'>"
                  "<key name='host' type='s'><default>'x'</default></key></schema></schemalist>");
    EXPECT_EQ(probe(), nothing);
}

TEST_F(DesktopSettings, MayLackASchemaOrAKey) {
    installSchema("<schemalist><schema id='org.gnome.system.proxy' path='/system/proxy/'>"
                  "<key name='mode' type='s'><default>'manual'</default></key></schema>"
                  "<schema id='org.gnome.system.proxy.http' path='/system/proxy/http/'>"
                  "<key name='host' type='s'><default>'a'</default></key></schema>"
                  "<schema id='org.gnome.system.proxy.ftp' path='/system/proxy/ftp/'>"
                  "<key name='host' type='s'><default>'c'</default></key>"
                  "<key name='port' type='i'><default>21</default></key></schema></schemalist>");
    EXPECT_EQ(probe(), "proxies: ftp=c:21\nbypass: \n");
}

TEST_F(DesktopSettings, AreNotReadWithoutGLib) {
    write("[system/proxy]\nmode='manual'\n[system/proxy/ftp]\nhost='c'\nport=21\n");
    EXPECT_EQ(probe({"--gio", "libgio-2.0.so.0"}), "proxies: ftp=c:21\nbypass: localhost;127.0.0.0/8;::1\n");
    EXPECT_EQ(probe({"--gio", "libgio-of-nobody.so.0"}), nothing);
}

TEST_F(DesktopSettings, AreNotReadThroughALibraryWithoutTheirFunctions) {
    write("[system/proxy]\nmode='manual'\n[system/proxy/ftp]\nhost='c'\nport=21\n");
    EXPECT_EQ(probe({"--gio", "libglib-2.0.so.0"}), nothing);
}

TEST_F(DesktopSettings, BecomeTheUsersSettings) {
    write("[system/proxy]\nmode='manual'\nignore-hosts=['store']\n[system/proxy/http]\nhost='a'\nport=80\n");
    EXPECT_EQ(probe({"--url", "https://example.org/"}), "proxy: a:80\n");
    EXPECT_EQ(probe({"--url", "https://Store:443/"}), "proxy: \n");
    EXPECT_EQ(probe({"--url", "ftp://example.org/"}), "proxy: \n");
}

} // namespace
