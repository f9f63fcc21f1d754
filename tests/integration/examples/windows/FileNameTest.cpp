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
    this->folder_.writeFile("kept", "kept\n");
    // A colon, which Windows does not allow either, is nothing special to Wine.
    for (const char sign : std::string("?*<>|\"")) {
        const std::string name = std::string("a") + sign + "b";
        const std::string directory = "/names" + std::to_string(static_cast<int>(sign));
        this->writeFile(directory + "/" + name, "odd\n");
        const Outcome outcome = this->mirror(directory);
        EXPECT_EQ(outcome.exitStatus, 1) << name;
        EXPECT_EQ(outcome.output, "") << name;
        EXPECT_THAT(outcome.error, testing::HasSubstr(name));
        EXPECT_THAT(filesIn(this->folder_.path()), ElementsAre("kept")) << name;
    }
}
