// Downloads many files at once on one worker thread.
//
//     parallel_downloads https://example.org/a.iso a.iso https://example.org/b.iso b.iso
#include "Environment.h"
#include "NewFile.h"

#include <vantra/vantra.h>

#include <iostream>
#include <vector>

namespace {

using kel::P;
using vantra::CAsyncNetRequestThread;
using vantra::CNetRequest;

struct Download {
    P<CNetRequest> request;
    P<CNewFile> file;
};

Download makeDownload(const char* url, const char* path) {
    Download download{new CNetRequest(), new CNewFile(path)};
    download.request->setURL(url);
    applyTrustedRoots(*download.request);
    download.request->setReceiveDataStream(download.file); // written on the worker
    return download;
}

/// Waits for the end of a transfer. A thread that ended by an error would leave it undone for ever.
void wait(const CAsyncNetRequestThread& thread, const CNetRequest& request) {
    while (!request.waitAsyncDone(1000))
        if (const kel::PC<kel::CError> error = thread.getRunError()) error->throwClone();
}

} // namespace

int main(int argc, char** argv) try {
    if (argc < 3 || argc % 2 == 0) {
        std::cerr << "usage: parallel_downloads URL FILE [URL FILE]...\n";
        return 2;
    }
    std::vector<Download> downloads;
    for (int i = 1; i < argc; i += 2) downloads.push_back(makeDownload(argv[i], argv[i + 1]));

    const P<CAsyncNetRequestThread> thread = new CAsyncNetRequestThread(nullptr);
    thread->start();
    for (const Download& download : downloads) thread->addRequest(download.request);

    int failures = 0;
    for (const Download& download : downloads) {
        std::cout << download.request->getURL() << ": ";
        try {
            wait(*thread, *download.request);
            download.request->checkAsyncResult();
            download.file->commit();
            std::cout << download.request->getHTTPStatusLine() << "\n";
        } catch (const std::exception& error) { // the others go on
            std::cout << error.what() << "\n";
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
