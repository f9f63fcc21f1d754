// Files that are not what a verb needs.
#include "VerbTable.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace tooltest;
using testing::HasSubstr;

namespace {

/// Runs the example of each verb with this name for each of its files, over which it has to fail.
void expectFailuresOver(const std::string& name, const std::vector<std::string>& types) {
    const ExampleFolder folder;
    forEachInParallel(allVerbs().size(), [&](std::size_t i) {
        const Verb& verb = allVerbs()[i];
        for (const Verb::Option& option : verb.options) {
            if (std::count(types.begin(), types.end(), option.valueType) == 0) continue;
            const Outcome outcome = folder.run(exampleArguments(verb, option, name));
            const std::string what = verb.name() + " " + option.name;
            expectCleanFailure(outcome, what);
            EXPECT_EQ(outcome.exitStatus, 1) << what;
            EXPECT_THAT(outcome.error, HasSubstr("'" + nativeName(name))) << what;
        }
    });
}

} // namespace

TEST(ToolFilesSweep, NamesAFileThatIsNotThere) { expectFailuresOver("missing/file", {"FILE", "DIR"}); }

TEST(ToolFilesSweep, NamesAFileBelowAFile) { expectFailuresOver("notes.txt/file", {"FILE", "DIR"}); }

TEST(ToolFilesSweep, NamesAFolderInPlaceOfAFile) { expectFailuresOver("downloads", {"FILE"}); }

TEST(ToolFilesSweep, NamesAFileInPlaceOfAFolder) { expectFailuresOver("notes.txt", {"DIR"}); }
