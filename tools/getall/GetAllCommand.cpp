#include "GetAllCommand.h"

#include "arguments/ArgumentText.h"
#include "display/TerminalText.h"
#include "DownloadQueue.h"
#include "Errors.h"
#include "files/Output.h"
#include "Interrupt.h"

#include <CLI/CLI.hpp>

#include <kel/Number.h>

namespace vantra::tool {

using kel::CError;
using kel::int64;
using kel::String;

namespace {

constexpr std::size_t defaultParallel = 8;
constexpr int64 maxParallel =
    200; // each takes a socket or two and a file, of which a process has 1024 at least

std::size_t parseParallel(const std::string& argument) {
    const String text = toArgumentText("--parallel", argument);
    int64 count = 0;
    try {
        count = kel::parseInt64(text);
    } catch (const CError&) {
        count = 0; // as wrong as what is no number
    }
    if (count < 1 || count > maxParallel)
        throw CUsageError("--parallel: '" + text + "' is not a number from 1 to " +
                          String::fromInt(maxParallel));
    return static_cast<std::size_t>(count);
}

} // namespace

CGetAllCommand::CGetAllCommand(CLI::App& program)
    : CVerb(program, "get-all", "Fetch many URLs at once, each to a file",
            {"vantra get-all https://www.example.com/a.zip https://www.example.com/b.zip",
             "vantra get-all --json -d downloads --parallel 4 https://www.example.com/{1..9}.jpg"}),
      parallel_(defaultParallel) {
    addURLs();
    addFolderOption();
    addParallelOption();
    requestOptions_.addTo(getParser());
    logOption_.addTo(getParser());
}

void CGetAllCommand::addURLs() {
    getParser()
        .add_option_function<std::vector<std::string>>(
            "URL",
            [this](const std::vector<std::string>& arguments) {
                for (const std::string& argument : arguments) urls_.emplace_back("URL", argument);
            },
            "Addresses to fetch: http, https, ftp or ftps. A file\ngets its name from the response's "
            "Content-Disposition\nor from the URL, with a number if the name is taken")
        ->type_name("")
        ->required();
}

void CGetAllCommand::addFolderOption() {
    getParser()
        .add_option_function<std::string>(
            "-d,--directory",
            [this](const std::string& argument) {
                folder_ = toArgumentText("--directory", argument);
                if (folder_.isEmpty()) throw CUsageError("--directory: must not be empty");
            },
            "Folder for the files. It has to exist. Default: the\ncurrent one")
        ->type_name("DIR");
}

void CGetAllCommand::addParallelOption() {
    getParser()
        .add_option_function<std::string>(
            "--parallel", [this](const std::string& argument) { parallel_ = parseParallel(argument); },
            "How many to fetch at the same time, at most " + std::to_string(maxParallel) +
                ".\nDefault: " + std::to_string(defaultParallel))
        ->type_name("N");
}

void CGetAllCommand::run() {
    for (const CURLArgument& url : urls_) requestOptions_.checkFor(url);
    const CInterruptGuard interruptGuard;
    const std::unique_ptr<CTransferLog> log = logOption_.open(CTransferLog::Kind::ManyTransfers);
    if (!log) {
        fetchAll(nullptr);
        return;
    }
    try {
        fetchAll(log.get());
    } catch (...) {
        try {
            log->write();
        } catch (const CError& error) {
            writeMessage(error.getMessage());
        }
        throw;
    }
    log->write();
}

void CGetAllCommand::fetchAll(CTransferLog* log) {
    CDownloadFolder folder(folder_);
    const std::unique_ptr<IOutput> output = wantsJSON() ? openOutput(std::nullopt) : nullptr;
    const bool linesGoToTerminal = output && output->isTerminal();
    const std::size_t failed =
        CDownloadQueue(
            urls_, requestOptions_, folder,
            {.showProgress = showsProgress() && !linesGoToTerminal, .log = log, .resultOutput = output.get()})
            .run(parallel_);
    if (failed != 0)
        throw CError(String::fromUInt(failed) + " of " + String::fromUInt(urls_.size()) +
                     " transfers failed.");
}

} // namespace vantra::tool
