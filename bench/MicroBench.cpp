#include <vantra/vantra.h>

#include <benchmark/benchmark.h>

#include <array>

namespace {

using kel::String;

constexpr std::array<std::string_view, 12> headerLines = {
    "Server: nginx\r\n",
    "Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n",
    "Content-Type: text/plain\r\n",
    "Content-Length: 256\r\n",
    "Connection: keep-alive\r\n",
    "ETag: \"5f3c1a2b-100\"\r\n",
    "Last-Modified: Sat, 05 Nov 1994 08:49:37 GMT\r\n",
    "Cache-Control: max-age=3600, must-revalidate\r\n",
    "Vary: Accept-Encoding\r\n",
    "X-Request-Id: 0123456789abcdef0123456789abcdef\r\n",
    "X-Frame-Options: DENY\r\n",
    "Accept-Ranges: bytes\r\n",
};

void decodeHeaderLines(benchmark::State& state) {
    String line;
    for (auto _ : state) {
        for (const std::string_view text : headerLines)
            benchmark::DoNotOptimize(String::tryFromUTF8(text, line));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(headerLines.size()));
}
BENCHMARK(decodeHeaderLines);

void assembleHeaders(benchmark::State& state) {
    std::array<String, headerLines.size()> lines;
    for (std::size_t i = 0; i < lines.size(); ++i) lines[i] = String::fromUTF8(headerLines[i]);
    vantra::CHeaderAssembler assembler;
    for (auto _ : state) {
        assembler.reset();
        for (const String& line : lines) assembler.handleHeaderLine(line);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines.size()));
}
BENCHMARK(assembleHeaders);

void parseStatusLine(benchmark::State& state) {
    const String line = "HTTP/1.1 404 Not Found";
    for (auto _ : state) benchmark::DoNotOptimize(vantra::getStatusCodeFromHTTPStatusLine(line));
}
BENCHMARK(parseStatusLine);

} // namespace

BENCHMARK_MAIN();
