#include "Benchmarks.h"
#include "Comparison.h"

#include <curl/curl.h>

#include <vantra/vantra.h>

#include <memory>

namespace bench {

using kel::String;

namespace {

struct CurlFree {
    void operator()(void* memory) const noexcept { curl_free(memory); }
};
using CurlText = std::unique_ptr<char, CurlFree>;

/// Keeps the compiler from leaving out what is not looked at.
void use(const void* result) { asm volatile("" : : "g"(result) : "memory"); }

void benchText(CURL* curl, const std::string& name, const std::string& utf8, int rounds, int calls) {
    const String text = String::fromUTF8(utf8);
    const ComparisonResult escape = compare(
        rounds,
        [&] {
            for (int i = 0; i < calls; ++i) {
                const String escaped = vantra::urlEscape(text, false);
                use(&escaped);
            }
        },
        [&] {
            for (int i = 0; i < calls; ++i) {
                const CurlText escaped(curl_easy_escape(curl, utf8.data(), static_cast<int>(utf8.size())));
                use(escaped.get());
            }
        });
    printComparison("urlEscape, " + name, escape, calls, "ns", 1e9);

    const String escapedText = vantra::urlEscape(text, false);
    const std::string escapedBytes = escapedText.toUTF8();
    require(vantra::urlUnescape(escapedText, false) == text, "unescaping does not undo escaping");
    const ComparisonResult unescape = compare(
        rounds,
        [&] {
            for (int i = 0; i < calls; ++i) {
                const String unescaped = vantra::urlUnescape(escapedText, false);
                use(&unescaped);
            }
        },
        [&] {
            for (int i = 0; i < calls; ++i) {
                int length = 0;
                const CurlText unescaped(curl_easy_unescape(curl, escapedBytes.data(),
                                                            static_cast<int>(escapedBytes.size()), &length));
                use(unescaped.get());
            }
        });
    printComparison("urlUnescape, " + name, unescape, calls, "ns", 1e9);
}

std::string repeat(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += text;
    return result;
}

} // namespace

void benchEscaping(int rounds, int callsPerRound) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    require(curl != nullptr, "curl_easy_init failed");
    const std::string name = "holiday pictures/2024-07-01 at the sea.jpg";
    benchText(curl.get(), "file name", name, rounds, callsPerRound);
    benchText(curl.get(), "umlauts", "Ferienfotos/Grüße von der Küste - größer.jpg", rounds, callsPerRound);
    benchText(curl.get(), "4 KiB", repeat(name, 100), rounds, callsPerRound / 40 + 1);
}

} // namespace bench
