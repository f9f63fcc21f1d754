/// @file GetObjectCommand.h
/// vantra s3 get s3://BUCKET/KEY: downloads an object.
#pragma once

#include "files/Output.h"
#include "options/DownloadOptions.h"
#include "s3/StoreCommand.h"

namespace vantra::tool {

class CGetObjectCommand : public CStoreCommand {
public:
    explicit CGetObjectCommand(CLI::App& group);

    void run() override;

private:
    void download(CS3Client& client, CNetRequest& request, IOutput& output, CProgressLine& line) const;

    std::optional<CObjectArgument> object_;
    CDownloadOptions downloadOptions_;
};

} // namespace vantra::tool
