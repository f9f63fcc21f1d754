#include "Document.h"
#include "Mirror.h"

#include <gmock/gmock.h>

using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

template <class Server>
class FTPMirror : public Mirror<Server> {};

} // namespace

TYPED_TEST_SUITE(FTPMirror, MirrorServers, MirrorServerNames);

TYPED_TEST(FTPMirror, FetchesATreeAndThenOnlyWhatHasChanged) {
    const std::string odd = "50% #1;type=a.txt";
    const std::string unicode = "\u00dcbersicht \u65e5\u672c \U0001F680.txt";
    this->writeFile("/tree/" + odd, "odd\n");
    this->writeFile("/tree/" + unicode, "Unicode\n");
    this->writeFile("/tree/empty", "");
    this->writeFile("/tree/sub/" + unicode + "/big.bin", NginxServer::bigContent());

    const Outcome first = this->mirror("/tree");
    EXPECT_EQ(first.exitStatus, 0) << first.error;
    EXPECT_THAT(first.output, testing::EndsWith("\nfiles fetched: 4\n"));
    EXPECT_THAT(filesIn(this->folder_.path()),
                ElementsAre(odd, "empty", "sub/" + unicode + "/big.bin", unicode));
    EXPECT_EQ(this->folder_.readFile(odd), "odd\n");
    EXPECT_EQ(this->folder_.readFile(unicode), "Unicode\n");
    EXPECT_TRUE(this->folder_.readFile("sub/" + unicode + "/big.bin") == NginxServer::bigContent());

    EXPECT_EQ(this->mirror("/tree"), (Outcome{0, "files fetched: 0\n", ""}));

    this->writeFile("/tree/" + unicode, "changed since\n");
    const std::string rest = "/" + unicode + "\nfiles fetched: 1\n";
    EXPECT_EQ(this->mirror("/tree"), (Outcome{0, this->server().path("/tree") + rest, ""}));
    EXPECT_EQ("/tree" + rest, documentedOutput("docs/ftp.md", "ftp_mirror"));
    EXPECT_EQ(this->folder_.readFile(unicode), "changed since\n");
}

TYPED_TEST(FTPMirror, SaysWhatFailed) {
    const Outcome noDirectory = this->mirror("/none");
    EXPECT_EQ(noDirectory.exitStatus, 1);
    EXPECT_THAT(noDirectory.error, HasSubstr("response code: ftp"));

    Environment wrongPassword = this->environment();
    wrongPassword["FTP_PASSWORD"] = "wrong";
    const std::vector<std::string> arguments{this->server().host(FtpSecurity::explicitTls),
                                             this->server().path("/"), this->folder_.path()};
    const Outcome noLogin = runExample("ftp_mirror", arguments, wrongPassword);
    EXPECT_EQ(noLogin.exitStatus, 1);
    EXPECT_THAT(noLogin.error, HasSubstr("ftp 530"));

    Environment noTrust = this->environment();
    noTrust["SSL_CERT_FILE"] = std::nullopt;
    const Outcome notTrusted = runExample("ftp_mirror", arguments, noTrust);
    EXPECT_EQ(notTrusted.exitStatus, 1);
    EXPECT_THAT(notTrusted.error, HasSubstr("SSL peer certificate or SSH remote key was not OK"));
    EXPECT_THAT(filesIn(this->folder_.path()), IsEmpty());
}
