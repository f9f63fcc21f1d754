/// @file Benchmarks.h
/// The groups of benchmarks that vantra_bench consists of. Each prints its lines to standard output.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace bench {

/// Ends the program when a figure would be that of a failure.
inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

/// Small GETs, so many of them in flight on one thread, beside a loop around a bare multi handle.
/// @param url answers with 256 bytes.
void benchParallelGets(const std::string& url, int rounds, std::size_t requestsPerRound,
                       std::size_t inFlight);

/// How long a worker that has nothing to do takes from addRequest to the request's first byte.
void benchStartOfRequests(int samples);

/// urlEscape and urlUnescape beside curl_easy_escape and curl_easy_unescape.
void benchEscaping(int rounds, int callsPerRound);

/// What a request takes that waits to be performed, and one that waits to be performed again.
/// @param url answers with 256 bytes.
void benchMemory(const std::string& url, std::size_t requests);

/// CFTPListDirResult on an MLSD listing of so many lines, beside a bare split of the same bytes into lines.
void benchFTPListing(int rounds, int lines);

/// A file of so many bytes from and to a real FTP server, beside bare libcurl.
void benchFTPTransfers(int rounds, std::size_t size);

/// Preparing and signing an upload of 1 KiB to an object store, beside the same digest and HMAC by OpenSSL.
void benchS3Signing(int rounds, int callsPerRound);

/// Uploads to and downloads from an object store of 1 KiB, 1 MiB and the largest size, beside the same by
/// libcurl with headers that were signed ahead.
/// @param smallPerRound of the smallest; of the larger ones fewer.
void benchS3Transfers(int rounds, int smallPerRound, std::size_t largestSize);

/// Parsing a listing of 1,000 entries, beside loading the same XML.
void benchS3Listing(int rounds, int callsPerRound);

} // namespace bench
