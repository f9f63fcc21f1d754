#include "s3/ListCommand.h"

#include "arguments/ArgumentText.h"
#include "display/TerminalText.h"
#include "Errors.h"
#include "Interrupt.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace vantra::tool {

using kel::CError;
using kel::P;
using kel::String;

namespace {

/// A line of the listing.
struct Entry {
    std::string key;
    std::string size = "-";
    std::string time = "-";
    P<CS3ListObjectsElement> object = nullptr; // null for a common prefix
};

/// Objects and common prefixes of a page in the order of their names.
std::vector<Entry> getEntries(const CS3ListObjectsResult& page) {
    std::vector<Entry> entries;
    for (const P<CS3ListObjectsElement>& object : page.getObjects())
        entries.push_back({object->getKey().toUTF8(), String::fromInt(object->getSize()).toUTF8(),
                           toTerminalLine(object->getLastModified()), object});
    for (const String& prefix : page.getCommonPrefixes()) entries.push_back({.key = prefix.toUTF8()});
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& left, const Entry& right) { return left.key < right.key; });
    return entries;
}

/// A line of the listing for programs.
std::string describeForPrograms(const Entry& entry, bool isForTerminal) {
    CJSONObject object;
    if (!entry.object) {
        object.setText("prefix", String(entry.key));
        return object.toLine(isForTerminal);
    }
    object.setText("key", entry.object->getKey());
    object.setInteger("size", entry.object->getSize());
    object.setText("modified", entry.object->getLastModified());
    object.setText("etag", entry.object->getETag());
    return object.toLine(isForTerminal);
}

std::string describe(const Entry& entry, bool isForTerminal) {
    constexpr std::size_t sizeWidth = 12;
    constexpr std::size_t timeWidth = 24;
    std::string line;
    if (entry.size.size() < sizeWidth) line.append(sizeWidth - entry.size.size(), ' ');
    line += entry.size + "  " + entry.time;
    if (entry.time.size() < timeWidth) line.append(timeWidth - entry.time.size(), ' ');
    return line + "  " + (isForTerminal ? toTerminalLine(String(entry.key)) : entry.key) + "\n";
}

/// Where the page behind this one starts.
String getNextMarker(const CS3ListObjectsResult& page, const std::vector<Entry>& entries) {
    if (!page.getDelimiteredNextMarker().isEmpty()) return page.getDelimiteredNextMarker();
    return entries.empty() ? String() : String(entries.back().key);
}

} // namespace

CListCommand::CListCommand(CLI::App& group)
    : CStoreCommand(group, "ls", "List the objects of a bucket: size, time and key",
                    {"vantra s3 ls --access-key AKIAEXAMPLE --secret-key-file key.txt --delimiter / "
                     "s3://my-bucket/2026/"}) {
    addObjectArgument("BUCKET", place_, CObjectArgument::Key::Optional,
                      "The bucket, as s3://BUCKET, or s3://BUCKET/PREFIX");
    addListOptions();
    addStoreOptions();
}

void CListCommand::addListOptions() {
    getParser()
        .add_option_function<std::string>(
            "--prefix",
            [this](const std::string& argument) { prefix_ = toArgumentText("--prefix", argument); },
            "List the keys that begin with this alone")
        ->type_name("TEXT");
    getParser()
        .add_option_function<std::string>(
            "--delimiter",
            [this](const std::string& argument) { delimiter_ = toArgumentText("--delimiter", argument); },
            "Show one line for all keys that are the same up to\nthis text behind the prefix, such as / for "
            "folders")
        ->type_name("TEXT");
    constexpr int mostPerPage = 1000000;
    getParser()
        .add_option("--page-size", pageSize_,
                    "The most entries to ask for at a time. Default:\nwhat the store gives, usually 1000")
        ->type_name("COUNT")
        ->check(CLI::Range(1, mostPerPage));
}

const String& CListCommand::getPrefix() const { return prefix_ ? *prefix_ : place_->getKey(); }

void CListCommand::run() {
    if (prefix_ && !place_->getKey().isEmpty()) throw CUsageError("--prefix: BUCKET names a prefix already");
    const P<CS3Client> client = makeClient();
    const P<CNetRequest> request = new CNetRequest();
    const std::unique_ptr<CTransferLog> log = openLog(CTransferLog::Kind::ManyTransfers);
    const std::unique_ptr<IOutput> output = openOutput(std::nullopt);
    const CInterruptGuard interruptGuard;
    try {
        list(*client, *request, *output, log.get());
    } catch (...) {
        try {
            if (log) log->write();
        } catch (const CError& error) {
            writeMessage(error.getMessage());
        }
        throw;
    }
    if (log) log->write();
    output->commit();
}

void CListCommand::list(CS3Client& client, CNetRequest& request, IOutput& output, CTransferLog* log) const {
    const auto describeEntry = wantsJSON() ? &describeForPrograms : &describe;
    String marker;
    for (;;) {
        const P<CS3ListObjectsResult> page = fetchPage(client, request, marker, log);
        const std::vector<Entry> entries = getEntries(*page);
        std::string lines;
        for (const Entry& entry : entries) lines += describeEntry(entry, output.isTerminal());
        output.write(lines);
        if (!page->isTruncated()) return;
        const String next = getNextMarker(*page, entries);
        // A store that names the same place again would be asked for ever.
        if (next.toUTF8() <= marker.toUTF8())
            throw CError(place_->getText() + ": the store says that there is more, but not where.");
        marker = next;
    }
}

P<CS3ListObjectsResult> CListCommand::fetchPage(CS3Client& client, CNetRequest& request, const String& marker,
                                                CTransferLog* log) const {
    client.prepareListObjectsRequest(request, place_->getBucket(), getPrefix(), delimiter_, marker,
                                     pageSize_);
    applyTo(request);
    if (log) CTransferLog::record(request);
    P<CS3ListObjectsResult> page;
    const auto fetch = [&] {
        client.performRequest(request);
        page = new CS3ListObjectsResult(request.getDefaultReceiveBuffer());
    };
    try {
        runStoreTransfer(request, place_->getText(), nullptr, fetch);
    } catch (...) {
        if (log) log->add(request);
        throw;
    }
    if (log) log->add(request);
    return page;
}

} // namespace vantra::tool
