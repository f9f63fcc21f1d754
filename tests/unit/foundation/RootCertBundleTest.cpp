#include "support/TempDir.h"
#include "vantra/GlobalInit.h"

#include <kel/Array.h>
#include <kel/Error.h>
#include <kel/ResourceManager.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <typeinfo>

namespace {

using kel::CError;
using kel::CPath;
using kel::CResourceManager;
using kel::String;
using kel::TArray;
using testsupport::TempDir;
using vantra::getRootCertBundlePath;

static_assert(std::is_same_v<decltype(getRootCertBundlePath()), kel::TPathImpl<kel::CWindowsPathTraits>>);

/// Runs with resource folders of its own.
class RootCertBundle : public testing::Test {
protected:
    RootCertBundle() { setFolders({folder_}); }
    ~RootCertBundle() override { CResourceManager::get()->setFolders(foldersBefore_); }

    static CPath pathOf(const TempDir& folder) { return CPath(String(folder.path())); }

    static void setFolders(std::initializer_list<std::reference_wrapper<const TempDir>> folders) {
        TArray<CPath> paths;
        for (const TempDir& folder : folders) paths.push_back(pathOf(folder));
        CResourceManager::get()->setFolders(paths);
    }

    static void expectNotFound() {
        try {
            const CPath path = getRootCertBundlePath();
            ADD_FAILURE() << "found '" << path.getText() << "'";
        } catch (const CError& error) {
            EXPECT_EQ(typeid(error), typeid(CError));
            EXPECT_EQ(error.getMessage(),
                      "INTERNAL ERROR: Root certificate bundle not found in application resources.");
            EXPECT_EQ(error.getCodeDomain(), "");
            EXPECT_EQ(error.getCode(), -1);
            EXPECT_TRUE(error.getParams().isEmpty());
            EXPECT_EQ(error.getCause().get(), nullptr);
        }
    }

    TempDir folder_;

private:
    TArray<CPath> foldersBefore_ = CResourceManager::get()->getFolders();
};

TEST_F(RootCertBundle, IsFoundInTheApplicationsResources) {
    folder_.writeFile("vantra/ca-bundle.crt", "certificates");
    const CPath path = getRootCertBundlePath();
    EXPECT_EQ(path, CPath(String(folder_.file("vantra/ca-bundle.crt"))));
    EXPECT_TRUE(path.isAbsolute());
}

TEST_F(RootCertBundle, IsFoundInALaterResourceFolder) {
    const TempDir later;
    later.writeFile("vantra/ca-bundle.crt", "certificates");
    setFolders({folder_, later});
    EXPECT_EQ(getRootCertBundlePath(), CPath(String(later.file("vantra/ca-bundle.crt"))));
}

TEST_F(RootCertBundle, IsTakenFromTheFirstResourceFolderThatHasIt) {
    const TempDir later;
    later.writeFile("vantra/ca-bundle.crt", "certificates");
    folder_.writeFile("vantra/ca-bundle.crt", "certificates");
    setFolders({folder_, later});
    EXPECT_EQ(getRootCertBundlePath(), CPath(String(folder_.file("vantra/ca-bundle.crt"))));
}

TEST_F(RootCertBundle, IsLookedUpAfreshByEveryCall) {
    expectNotFound();
    folder_.writeFile("vantra/ca-bundle.crt", "certificates");
    EXPECT_EQ(getRootCertBundlePath(), CPath(String(folder_.file("vantra/ca-bundle.crt"))));
}

TEST_F(RootCertBundle, IsMissingWithoutAVantraFolder) { expectNotFound(); }

TEST_F(RootCertBundle, IsMissingWhenTheVantraFolderLacksIt) {
    folder_.writeFile("vantra/other.crt", "certificates");
    expectNotFound();
}

TEST_F(RootCertBundle, IsMissingOutsideTheVantraFolder) {
    folder_.writeFile("ca-bundle.crt", "certificates");
    expectNotFound();
}

TEST_F(RootCertBundle, IsMissingWithoutAnyResourceFolder) {
    setFolders({});
    expectNotFound();
}

} // namespace
