#include "vantra/SMTPClient.h"

#include "Thrown.h"

#include <gtest/gtest.h>

namespace vantra::test {

namespace {

using Params = CSMTPParams;

TEST(SMTPParams, AreEmptyAtFirst) {
    const Params params;
    EXPECT_EQ(params.getHost(), "");
    EXPECT_EQ(params.getPort(), 0);
    EXPECT_EQ(params.getConnectType(), 0);
    EXPECT_EQ(params.getLoginName(), "");
    EXPECT_EQ(params.getLoginPassword(), "");
}

void expectExample(const Params& params) {
    EXPECT_EQ(params.getHost(), "mail.example.org");
    EXPECT_EQ(params.getPort(), 587);
    EXPECT_EQ(params.getConnectType(), Params::ConnectTypeStartTLS);
    EXPECT_EQ(params.getLoginName(), "jane");
    EXPECT_EQ(params.getLoginPassword(), "s3cret");
}

TEST(SMTPParams, KeepWhatTheyAreMadeOf) {
    expectExample(Params("mail.example.org", 587, Params::ConnectTypeStartTLS, "jane", "s3cret"));
}

TEST(SMTPParams, AreCopiedWithAllMembers) {
    const Params original("mail.example.org", 587, Params::ConnectTypeStartTLS, "jane", "s3cret");
    const Params copy(original); // NOLINT(performance-unnecessary-copy-initialization)
    expectExample(copy);
    Params assigned("h", 1, Params::ConnectTypeSSL, "n", "p");
    assigned = original;
    expectExample(assigned);
    assigned = Params();
    EXPECT_EQ(assigned.getHost(), "");
    expectExample(original);
}

TEST(SMTPParams, HaveTheValuesOfTheConnectTypes) {
    EXPECT_EQ(static_cast<int>(Params::ConnectTypeUnencrypted), 0);
    EXPECT_EQ(static_cast<int>(Params::ConnectTypeSSL), 1);
    EXPECT_EQ(static_cast<int>(Params::ConnectTypeStartTLS), 2);
}

TEST(SMTPParams, NameTheConnectTypes) {
    EXPECT_EQ(Params::connectTypeToString(Params::ConnectTypeUnencrypted), "unencrypted");
    EXPECT_EQ(Params::connectTypeToString(Params::ConnectTypeSSL), "ssl");
    EXPECT_EQ(Params::connectTypeToString(Params::ConnectTypeStartTLS), "starttls");
}

TEST(SMTPParams, RefuseToNameAnyOtherConnectType) {
    for (const int value : {3, -1, 100}) {
        EXPECT_EQ(
            thrownBy([&] { (void)Params::connectTypeToString(static_cast<Params::ConnectType>(value)); }),
            invalidArgError("CSMTPParams::connectTypeToString",
                            "invalid connect type: " + std::to_string(value)));
    }
}

TEST(SMTPParams, ReadTheNamesOfTheConnectTypes) {
    EXPECT_EQ(Params::connectTypeToInt("unencrypted"), 0);
    EXPECT_EQ(Params::connectTypeToInt("ssl"), 1);
    EXPECT_EQ(Params::connectTypeToInt("starttls"), 2);
}

TEST(SMTPParams, ReadNoOtherNameOfAConnectType) {
    for (const char* const text : {"SSL", "Ssl", "", " ssl", "ssl ", "tls", "0", "1", "startTLS", "none"}) {
        EXPECT_EQ(
            thrownBy([&] { (void)Params::connectTypeToInt(text); }),
            invalidArgError("CSMTPParams::connectTypeToInt", std::string("invalid connect type: ") + text));
    }
    EXPECT_EQ(
        thrownBy([] { (void)Params::connectTypeToInt(kel::String("ssl\0", 4)); }),
        invalidArgError("CSMTPParams::connectTypeToInt", std::string("invalid connect type: ssl\0", 26)));
}

} // namespace

} // namespace vantra::test
