// Stores the files of a folder in a bucket and then checks that the store lists them all.
//
//     AWS_ACCESS_KEY_ID=... AWS_SECRET_ACCESS_KEY=... s3_backup photos my-bucket backup/photos/
//
// AWS_ENDPOINT_URL names a store other than Amazon's. Files that links name are stored, folders are not
// followed through links, and what is no file (a socket, a device) is left out.
#include "Environment.h"

#include <vantra/vantra.h>

#include <kel/FileStream.h>

#include <climits>
#include <filesystem>
#include <iostream>
#include <map>

namespace {

using kel::CError;
using kel::P;
using kel::String;
using kel::TBuffer;
using vantra::CNetRequest;
using vantra::CS3Client;

String toText(const std::filesystem::path& path) {
    const std::u8string utf8 = path.generic_u8string();
    const std::string_view bytes(reinterpret_cast<const char*>(utf8.data()), utf8.size());
    String text;
    if (!String::tryFromUTF8(bytes, text))
        throw CError("The name of this file is not UTF-8: " + String::fromUTF8Lax(bytes));
    return text;
}

/// The files below a folder, by their names seen from it with "/" between folders.
std::map<String, std::filesystem::path> findFiles(const std::filesystem::path& folder) {
    std::map<String, std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files[toText(entry.path().lexically_relative(folder))] = entry.path();
    return files;
}

TBuffer<unsigned char> readFile(const std::filesystem::path& path) {
    const P<kel::CFileInStream> stream = new kel::CFileInStream(toText(path));
    TBuffer<unsigned char> bytes;
    unsigned char block[65536];
    while (const std::size_t length = stream->read(block, sizeof block)) {
        bytes.append(block, length);
        if (bytes.getUsed() > INT_MAX) throw CError("'" + toText(path) + "' is too large for one object.");
    }
    return bytes;
}

/// The sizes of all objects under a prefix, by key.
std::map<String, kel::int64> listSizes(CS3Client* client, CNetRequest* request, const String& bucket,
                                       const String& prefix) {
    std::map<String, kel::int64> sizes;
    vantra::CS3ObjectEnum objects(client, request, bucket, prefix, "", -1);
    while (objects.next()) sizes[objects.getCurrObject()->getKey()] = objects.getCurrObject()->getSize();
    return sizes;
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 4) {
        std::cerr << "usage: s3_backup FOLDER BUCKET PREFIX\n";
        return 2;
    }
    const std::filesystem::path folder = kel::CPath(argv[1]).toStdPath();
    const String bucket = argv[2];
    const String prefix = argv[3];
    const P<CS3Client> client =
        new CS3Client(requireSetting("AWS_ACCESS_KEY_ID"), requireSetting("AWS_SECRET_ACCESS_KEY"), true);
    const String endpoint = getSetting("AWS_ENDPOINT_URL");
    if (!endpoint.isEmpty()) client->setEndpoint(endpoint);
    client->setMaxRetries(5);
    const P<CNetRequest> request = new CNetRequest(); // one for all, which keeps the connection

    std::map<String, kel::int64> stored;
    for (const auto& [name, path] : findFiles(folder)) {
        const TBuffer<unsigned char> bytes = readFile(path);
        const String key = prefix + name;
        client->putObject(*request, bucket, key, bytes.getData(), static_cast<int>(bytes.getUsed()), "");
        stored[key] = static_cast<kel::int64>(bytes.getUsed());
        std::cout << key << ": " << bytes.getUsed() << " bytes\n";
    }

    const std::map<String, kel::int64> listed = listSizes(client, request, bucket, prefix);
    for (const auto& [key, size] : stored) {
        const auto found = listed.find(key);
        if (found == listed.end() || found->second != size)
            throw CError("The store does not list '" + key + "' as it was sent.");
    }
    std::cout << stored.size() << " files are in '" << bucket << "'\n";
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
}
