#include "kel/ResourceManager.h"

#include "SystemFiles.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> toTexts(const kel::TArray<kel::CPath>& paths) {
    std::vector<std::string> texts;
    for (const kel::CPath& path : paths) texts.push_back(path.getText().toUTF8());
    return texts;
}

/// Two folders "first" and "second"; both hold "both.txt", each a file of its own, the second a folder "sub".
class ResourceManager : public testing::Test {
protected:
    ResourceManager() {
        std::filesystem::create_directory(folder_.getStdPath() / "first");
        std::filesystem::create_directories(folder_.getStdPath() / "second/sub");
        for (const char* name : {"outside.txt", "first/both.txt", "second/both.txt", "first/first.txt",
                                 "second/second.txt", "second/sub/deep.txt"})
            folder_.writeFile(name, "content");
        manager_->setFolders({folder_ / "first", folder_ / "second"});
    }

    [[nodiscard]] std::string find(const char* name) const {
        return manager_->findResource(name).getText().toUTF8();
    }
    [[nodiscard]] std::string at(const char* name) const { return (folder_ / name).getText().toUTF8(); }

    CTempFolder folder_;
    kel::P<kel::CResourceManager> manager_ = new kel::CResourceManager();
};

TEST_F(ResourceManager, FindsAFileInWhicheverFolderHasIt) {
    EXPECT_EQ(find("first.txt"), at("first/first.txt"));
    EXPECT_EQ(find("second.txt"), at("second/second.txt"));
}

TEST_F(ResourceManager, PrefersTheEarlierFolder) {
    EXPECT_EQ(find("both.txt"), at("first/both.txt"));
    manager_->setFolders({folder_ / "second", folder_ / "first"});
    EXPECT_EQ(find("both.txt"), at("second/both.txt"));
}

TEST_F(ResourceManager, FindsAFolder) { EXPECT_EQ(find("sub"), at("second/sub")); }

TEST_F(ResourceManager, FindsAFileFurtherBelow) {
    EXPECT_EQ(find("sub/deep.txt"), at("second/sub/deep.txt"));
    EXPECT_EQ(find("sub\\.\\deep.txt"), at("second/sub/deep.txt"));
    EXPECT_EQ(find("sub/../second.txt"), at("second/sub/../second.txt"));
}

TEST_F(ResourceManager, GivesTheEmptyPathForWhatIsNotThere) {
    EXPECT_EQ(find("missing.txt"), "");
    EXPECT_EQ(find("sub/missing.txt"), "");
    EXPECT_EQ(find("both.txt/below"), "");
    EXPECT_EQ(find(""), "");
    EXPECT_EQ(find("."), "");
}

TEST_F(ResourceManager, NeverLeavesItsFolders) {
    EXPECT_EQ(find("../outside.txt"), "");
    EXPECT_EQ(find(".."), "");
    EXPECT_EQ(find("../first/first.txt"), "") << "leads out on the way";
    EXPECT_EQ(find("sub/../../outside.txt"), "");
    EXPECT_EQ(find("sub/../../second/second.txt"), "");
    EXPECT_EQ(find(at("outside.txt").c_str()), "");
    EXPECT_EQ(find(at("first/first.txt").c_str()), "");
    EXPECT_EQ(manager_->findResource(kel::CPath(kel::String("first.txt\0x", 11))).getText(), "");
}

TEST_F(ResourceManager, FindsNothingWithoutFolders) {
    manager_->setFolders({});
    EXPECT_THAT(toTexts(manager_->getFolders()), IsEmpty());
    EXPECT_EQ(find("both.txt"), "");
}

TEST_F(ResourceManager, PutsAnAddedFolderInFront) {
    manager_->addFolder(folder_ / "second");
    EXPECT_THAT(toTexts(manager_->getFolders()), ElementsAre(at("second"), at("first"), at("second")));
    EXPECT_EQ(find("both.txt"), at("second/both.txt"));
}

TEST_F(ResourceManager, GivesACopyOfItsFolders) {
    kel::TArray<kel::CPath> folders = manager_->getFolders();
    folders.clear();
    EXPECT_THAT(toTexts(manager_->getFolders()), ElementsAre(at("first"), at("second")));
}

TEST_F(ResourceManager, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    std::atomic<int> found{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 50; ++k) {
                manager_->addFolder(folder_ / "first");
                found += find("first.txt").empty() ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(found, 200);
    EXPECT_EQ(manager_->getFolders().size(), 202U);
}

TEST(ResourceManagerDefaults, LieBesideTheProgramAndThisLibrary) {
    const std::filesystem::path program = getProgramPath();
    const std::vector<std::string> folders = toTexts(kel::CResourceManager().getFolders());
    ASSERT_EQ(folders.size(), 3U);
    EXPECT_EQ(folders[0], (program.parent_path() / "resources").string());
    EXPECT_EQ(folders[1], (program.parent_path() / ".." / "share").string());
    const std::filesystem::path besideLibrary = folders[2];
    EXPECT_EQ(besideLibrary.filename(), "resources");
    EXPECT_TRUE(besideLibrary.is_absolute());
    EXPECT_TRUE(std::filesystem::exists(besideLibrary.parent_path() / KEL_FILE_NAME)) << folders[2];
}

TEST(ResourceManagerDefaults, OneManagerIsThereForAll) {
    kel::P<kel::CResourceManager> fromOtherThread;
    std::thread([&] { fromOtherThread = kel::CResourceManager::get(); }).join();
    EXPECT_EQ(kel::CResourceManager::get().get(), fromOtherThread.get());
    EXPECT_EQ(toTexts(fromOtherThread->getFolders()), toTexts(kel::CResourceManager().getFolders()));
}

} // namespace
