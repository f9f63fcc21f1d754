#include "Benchmarks.h"

#include <vantra/vantra.h>

#include "support/ScriptedServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

void benchStartOfRequests(int samples) {
    std::atomic<Clock::time_point> arrival{Clock::time_point()};
    testsupport::ScriptedServer server([&arrival](testsupport::ScriptedConnection& connection) {
        connection.readBytes(1);
        arrival = Clock::now();
        connection.readUntil("\r\n\r\n");
        connection.send("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
    });
    const kel::P<vantra::CAsyncNetRequestThread> worker = new vantra::CAsyncNetRequestThread(nullptr);
    worker->start();
    std::vector<double> milliseconds;
    for (int sample = 0; sample < samples; ++sample) {
        const kel::P<vantra::CNetRequest> request = new vantra::CNetRequest();
        request->setURL(kel::String::fromUTF8(server.url()));
        // Spreads the additions evenly over the worker's turn.
        std::this_thread::sleep_for(std::chrono::milliseconds(150 + 100 * sample / samples));
        const Clock::time_point start = Clock::now();
        worker->addRequest(request);
        require(request->waitAsyncDone(10000), "a request did not end");
        request->checkAsyncResult();
        milliseconds.push_back(std::chrono::duration<double, std::milli>(arrival.load() - start).count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-28s least %9.3f ms   median %9.3f ms   most %9.3f ms\n", "addRequest to first byte",
                milliseconds.front(), milliseconds[milliseconds.size() / 2], milliseconds.back());
    std::fflush(stdout);
}

} // namespace bench
