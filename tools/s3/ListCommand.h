/// @file ListCommand.h
/// vantra s3 ls s3://BUCKET[/PREFIX]: lists objects.
#pragma once

#include "files/Output.h"
#include "s3/StoreCommand.h"
#include "transfer/TransferLog.h"

#include <vantra/S3Results.h>

namespace vantra::tool {

class CListCommand : public CStoreCommand {
public:
    explicit CListCommand(CLI::App& group);

    void run() override;

private:
    void addListOptions();
    [[nodiscard]] const kel::String& getPrefix() const;
    void list(CS3Client& client, CNetRequest& request, IOutput& output, CTransferLog* log) const;
    [[nodiscard]] kel::P<CS3ListObjectsResult> fetchPage(CS3Client& client, CNetRequest& request,
                                                         const kel::String& marker, CTransferLog* log) const;

    std::optional<CObjectArgument> place_;
    std::optional<kel::String> prefix_;
    kel::String delimiter_;
    int pageSize_ = -1;
};

} // namespace vantra::tool
