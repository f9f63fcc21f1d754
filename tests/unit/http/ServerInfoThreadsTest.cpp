#include "vantra/HeaderAssembler.h"
#include "vantra/ServerInfo.h"

#include "support/Threads.h"

#include <kel/P.h>

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

using kel::P;
using kel::String;
using testsupport::runOnThreads;
using testsupport::threadCount;
using vantra::CHeaderAssembler;
using vantra::CServerInfo;

constexpr int rounds = 2000;

/// Odd numbers announce a server whose ranges are broken.
String serverOf(int number) {
    return (number % 2 == 1 ? "DAV/2 Python/3." : "Srv/1.") + String::fromInt(number);
}

TEST(ServerInfoThreads, KeepOneServerWhoeverComesFirst) {
    for (int round = 0; round < 50; ++round) {
        const P<CServerInfo> info = new CServerInfo();
        std::vector<String> seen(threadCount);
        runOnThreads([&info, &seen](int number) {
            CHeaderAssembler assembler;
            assembler.setServerInfoToUpdate(info);
            assembler.handleHeaderLine("Server: " + serverOf(number) + "\r\n");
            assembler.handleHeaderLine("\r\n");
            seen[static_cast<std::size_t>(number)] = info->getServerHeader();
        });

        std::set<String> possible;
        for (int number = 0; number < threadCount; ++number) possible.insert(serverOf(number));
        const String kept = info->getServerHeader();
        EXPECT_TRUE(possible.contains(kept)) << kept;
        EXPECT_EQ(seen, std::vector<String>(threadCount, kept));
        EXPECT_EQ(info->areGetRangesBroken(), kept.startsWith(L"DAV"));
    }
}

TEST(ServerInfoThreads, ReadAWholeRecordWhileOthersUpdateIt) {
    CServerInfo info;
    const String server = serverOf(1);
    std::vector<int> badReads(threadCount);
    runOnThreads([&](int number) {
        const kel::TMap<String, String> headers{{"server", server}};
        for (int round = 0; round < rounds; ++round) {
            if (number % 2 == 0) {
                info.updateFromHeaders(round < rounds / 2 ? kel::TMap<String, String>() : headers);
                continue;
            }
            // The ranges flag comes with the server, so asked after it, it cannot lag behind.
            const String header = info.getServerHeader();
            const bool rangesBroken = info.areGetRangesBroken();
            const bool isWhole = header.isEmpty() || (header == server && rangesBroken);
            if (!isWhole || info.isGetBroken() || info.isPutBroken())
                ++badReads[static_cast<std::size_t>(number)];
        }
    });
    EXPECT_EQ(badReads, std::vector<int>(threadCount, 0));
    EXPECT_EQ(info.getServerHeader(), server);
    EXPECT_TRUE(info.areGetRangesBroken());
}

TEST(ServerInfoThreads, ReadAFlagBeforeAnythingElse) {
    for (int round = 0; round < 50; ++round) {
        CServerInfo info;
        std::vector<int> wrongFlags(threadCount);
        runOnThreads([&info, &wrongFlags](int number) {
            if (number == 0) info.updateFromHeaders({{"server", serverOf(1)}});
            // Each number asks for the flags in another order, so that each flag is the first for somebody.
            for (int i = 0; i < 3; ++i) {
                const int flag = (number + i) % 3;
                if (flag == 0) static_cast<void>(info.areGetRangesBroken());
                if (flag == 1 && info.isGetBroken()) ++wrongFlags[static_cast<std::size_t>(number)];
                if (flag == 2 && info.isPutBroken()) ++wrongFlags[static_cast<std::size_t>(number)];
            }
        });
        EXPECT_EQ(wrongFlags, std::vector<int>(threadCount, 0));
        EXPECT_TRUE(info.areGetRangesBroken());
    }
}

} // namespace
