#include "FTPFixture.h"

#include <functional>
#include <map>

using kel::P;
using kel::String;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using vantra::CAsyncNetRequestThread;
using vantra::CCURLError;
using vantra::CFTPGetInfoResult;
using vantra::CFTPListDirResult;
using vantra::CNetRequest;

namespace {

constexpr int requestCount = 10;
constexpr int patienceMs = 60000;

/// Ten requests and the worker thread that performs them, which keeps their connections.
struct Worker {
    Worker() {
        for (int number = 0; number < requestCount; ++number) requests.push_back(new CNetRequest());
        thread->start();
    }
    ~Worker() { thread->stop(true); }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    std::vector<P<CNetRequest>> requests;
    P<CAsyncNetRequestThread> thread = new CAsyncNetRequestThread(nullptr);
};

/// Ten requests at once on a worker thread, the same ones in all tests with a peer.
class FTPAsync : public OverFTP {
protected:
    static void TearDownTestSuite() { workers_.clear(); }

    /// The requests' own numbers as texts.
    static std::string text(int number) { return std::to_string(number); }

    /// Prepares all ten, hands them over and waits for their ends.
    void transfer(const std::function<void(CNetRequest&, int)>& prepare) {
        for (int number = 0; number < requestCount; ++number) prepare(request(number), number);
        for (const P<CNetRequest>& added : worker_.requests) worker_.thread->addRequest(added);
        for (const P<CNetRequest>& added : worker_.requests) ASSERT_TRUE(added->waitAsyncDone(patienceMs));
    }
    /// The same for transfers that must succeed.
    void transferAll(const std::function<void(CNetRequest&, int)>& prepare) {
        transfer(prepare);
        for (const P<CNetRequest>& done : worker_.requests) done->checkAsyncResult();
    }

    CNetRequest& request(int number) { return *worker_.requests[static_cast<std::size_t>(number)]; }

private:
    static inline std::map<std::string, Worker> workers_;

    Worker& worker_ = workers_[GetParam().name];
};

FOR_ALL_PEERS(FTPAsync);

TEST_P(FTPAsync, UploadsDownloadsAndDeletesTenFilesAtOnce) {
    const auto content = [](int number) { return std::string(100000, static_cast<char>('a' + number)); };
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareUploadRequest(request, at("/f" + text(number)), content(number).data(),
                                      static_cast<int>(content(number).size()), false);
    });
    for (int number = 0; number < requestCount; ++number)
        EXPECT_EQ(readFile("/f" + text(number)), content(number));

    transferAll([&](CNetRequest& request, int number) {
        client_->prepareDownloadRequest(request, at("/f" + text(number)), 0, -1);
    });
    for (int number = 0; number < requestCount; ++number)
        EXPECT_EQ(getBody(request(number)), content(number));

    transferAll([&](CNetRequest& request, int number) {
        client_->prepareDownloadRequest(request, at("/f" + text(number)), 50000 + number, 10);
    });
    for (int number = 0; number < requestCount; ++number)
        EXPECT_EQ(getBody(request(number)), content(number).substr(0, 10));

    transferAll([&](CNetRequest& request, int number) {
        client_->prepareDeleteFileRequest(request, at("/f" + text(number)));
    });
    EXPECT_THAT(OverFTP::namesIn(""), IsEmpty());
}

TEST_P(FTPAsync, CreatesListsAndRemovesTenDirectoriesAtOnce) {
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareCreateDirRequest(request, at("/d" + text(number)), false);
    });
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareUploadRequest(request, at("/d" + text(number) + "/a/b/f"), "x", 1, true);
    });
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareListDirRequest(request, at("/d" + text(number) + "/a/b"));
    });
    for (int number = 0; number < requestCount; ++number)
        EXPECT_THAT(namesOf(CFTPListDirResult(*request(number).getDefaultReceiveBuffer())), ElementsAre("f"));

    transferAll([&](CNetRequest& request, int number) {
        client_->prepareDeleteFileRequest(request, at("/d" + text(number) + "/a/b/f"));
    });
    for (const char* level : {"/a/b", "/a", ""}) {
        transferAll([&](CNetRequest& request, int number) {
            client_->prepareRemoveDirRequest(request, at("/d" + text(number) + level));
        });
    }
    EXPECT_THAT(OverFTP::namesIn(""), IsEmpty());
}

TEST_P(FTPAsync, MovesTenFilesAndTenDirectoriesAtOnce) {
    for (int number = 0; number < requestCount; ++number) {
        writeFile("/f" + text(number), text(number));
        makeFolder("/d" + text(number) + "/sub");
    }
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareMoveFileRequest(request, at("/f" + text(number)), at("/g" + text(number)), false);
    });
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareMoveFileRequest(request, at("/g" + text(number)),
                                        at("/new" + text(number) + "/deep/f"), true);
    });
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareMoveDirRequest(request, at("/d" + text(number)), at("/e" + text(number)), false);
    });
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareMoveDirRequest(request, at("/e" + text(number)),
                                       at("/new" + text(number) + "/deep/dir"), true);
    });
    EXPECT_THAT(OverFTP::namesIn(""), SizeIs(requestCount));
    for (int number = 0; number < requestCount; ++number) {
        EXPECT_EQ(readFile("/new" + text(number) + "/deep/f"), text(number));
        EXPECT_THAT(OverFTP::namesIn("/new" + text(number) + "/deep"), ElementsAre("dir", "f"));
        EXPECT_THAT(OverFTP::namesIn("/new" + text(number) + "/deep/dir"), ElementsAre("sub"));
    }
}

TEST_P(FTPAsync, TellsOfTenEntriesAtOnceWhetherTheyExistOrNot) {
    for (int number = 0; number < requestCount; number += 2) writeFile("/f" + text(number), text(number));
    transfer([&](CNetRequest& request, int number) {
        client_->prepareGetInfoRequest(request, at("/f" + text(number)));
    });
    for (int number = 0; number < requestCount; ++number) {
        CNetRequest& done = request(number);
        if (number % 2 == 0) {
            done.checkAsyncResult();
            EXPECT_EQ(CFTPGetInfoResult(done.getResponseInfo()).getInfo()->getSize(), 1);
        } else {
            const CCURLError error = errorOf([&] { done.checkAsyncResult(); });
            EXPECT_EQ(error.getCode(), CURLE_QUOTE_ERROR);
            EXPECT_EQ(error.getResponseCodeDomain(), "ftp");
            EXPECT_EQ(error.getResponseCode(), 550);
        }
    }
    transferAll([&](CNetRequest& request, int number) {
        client_->prepareVerifyExistsRequest(request, at("/f" + text(number / 2 * 2)));
    });
}

} // namespace
