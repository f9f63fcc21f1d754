#include "BareTransfer.h"
#include "Benchmarks.h"

#include <vantra/vantra.h>

#include <malloc.h>

#include <memory>
#include <vector>

namespace bench {

using kel::P;
using vantra::CNetRequest;

namespace {

double allocatedKiB() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1024;
}

struct Footprint {
    double fresh;
    double used;
};

/// @param make gives an object that lives as long as the pointer, @param perform lets it do its transfer.
template <class Make, class Perform>
Footprint measure(std::size_t count, Make make, Perform perform) {
    std::vector<decltype(make())> objects;
    objects.reserve(count);
    const double before = allocatedKiB();
    for (std::size_t i = 0; i < count; ++i) objects.push_back(make());
    const double fresh = allocatedKiB();
    for (auto& object : objects) perform(*object);
    const double used = allocatedKiB();
    const auto number = static_cast<double>(count);
    return {(fresh - before) / number, (used - before) / number};
}

void print(const char* name, double library, double bare) {
    std::printf("%-28s vantra %9.2f KiB  libcurl %9.2f KiB\n", name, library, bare);
    std::fflush(stdout);
}

} // namespace

void benchMemory(const std::string& url, std::size_t requests) {
    const P<CNetRequest> first = new CNetRequest(); // what the process has but once is there now
    first->setURL(kel::String::fromUTF8(url));
    first->perform();
    const Footprint library = measure(
        requests,
        [&] {
            P<CNetRequest> request = new CNetRequest();
            request->setURL(kel::String::fromUTF8(url));
            return request;
        },
        [](CNetRequest& request) { request.perform(); });
    const Footprint bare = measure(
        requests, [&] { return std::make_unique<BareTransfer>(url); },
        [](BareTransfer& transfer) { transfer.perform(); });
    print("memory per new request", library.fresh, bare.fresh);
    print("memory per used request", library.used, bare.used);
}

} // namespace bench
