#include "fuzz/Fuzz.h"
#include "vantra/URLEncoding.h"

#include <map>

using kel::String;

namespace {

using Params = kel::TMap<String, String>;

Params decode(const String& query) {
    Params params;
    vantra::decodeURLParams(query, params);
    return params;
}

/// The number of parameters that a query holds as it is written.
std::size_t countPieces(const String& query) {
    std::size_t count = query.isEmpty() || query.endsWith(L"&") ? 0 : 1;
    for (const wchar_t c : query.view())
        if (c == L'&') ++count;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String query = fuzz::toText(data, size);
    const Params params = decode(query);
    fuzz::check(params.size() <= countPieces(query), "a piece gives one parameter");
    fuzz::check(params.empty() == query.isEmpty(), "every query but the empty one has a parameter");
    fuzz::check(decode(vantra::encodeURLParams(params)) == params, "decoding undoes encoding");

    const std::map<String, String> form(params.begin(), params.end());
    fuzz::check(decode(vantra::formURLEncode(form, true)) == params, "decoding undoes encoding as a form");
    fuzz::check(decode(vantra::formURLEncode(form, false)) == params,
                "the case of hexadecimal digits does not matter");

    Params twice = params;
    vantra::decodeURLParams(query, twice);
    fuzz::check(twice == params, "the same query once more changes nothing");

    Params own{{"query", query}};
    vantra::decodeURLParams(own["query"], own);
    twice.try_emplace("query", query);
    fuzz::check(own == twice, "the query may be a value of the map");
    return 0;
}
