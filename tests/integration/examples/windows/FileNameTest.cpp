#include "Mirror.h"

#include <gmock/gmock.h>

using namespace testsupport;
using testing::ElementsAre;

namespace {

template <class Server>
class FTPMirrorName : public Mirror<Server> {};

} // namespace

TYPED_TEST_SUITE(FTPMirrorName, MirrorServers, MirrorServerNames);

TYPED_TEST(FTPMirrorName, ThatNoFileHasHereEndsTheProgram) {
    this->writeFile("/names/a?b", "odd\n");
    this->folder_.writeFile("kept", "kept\n");
    const Outcome outcome = this->mirror("/names");
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.error, testing::HasSubstr("a?b"));
    EXPECT_THAT(filesIn(this->folder_.path()), ElementsAre("kept"));
}
