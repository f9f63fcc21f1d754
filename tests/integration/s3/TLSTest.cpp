#include "ObjectStore.h"

#include <gtest/gtest.h>

using kel::String;
using testsupport::NginxServer;
using vantra::CS3Client;

namespace {

class S3TLS : public ObjectStoreTest {
protected:
    S3TLS() : ObjectStoreTest(tlsEndpoint()) { client_->setSSLVerifyPeer(true); }
};

TEST_F(S3TLS, NeedsACertificateThatSomebodyVouchesFor) {
    EXPECT_EQ(transferErrorOf([&] { (void)client_->listObjects(*request_, "empty", "", "", "", -1); }),
              CURLE_PEER_FAILED_VERIFICATION);
}

TEST_F(S3TLS, TakesTheCallersRootsInAPreparedRequest) {
    client_->prepareListObjectsRequest(*request_, "empty", "", "", "", -1);
    request_->setRootCertBundlePath(String(tlsServer().caFile()));
    EXPECT_EQ(client_->performRequest(*request_), 1);
    EXPECT_FALSE(vantra::CS3ListObjectsResult(request_->getDefaultReceiveBuffer()).isTruncated());
}

TEST_F(S3TLS, DoesWithoutWhenToldSo) {
    client_->setSSLVerifyPeer(false);
    EXPECT_FALSE(client_->listObjects(*request_, "empty", "", "", "", -1)->isTruncated());
}

} // namespace
