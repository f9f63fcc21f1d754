/// @file PutObjectCommand.h
/// vantra s3 put s3://BUCKET/KEY -f FILE: uploads an object.
#pragma once

#include "s3/StoreCommand.h"

namespace vantra::tool {

class CPutObjectCommand : public CStoreCommand {
public:
    explicit CPutObjectCommand(CLI::App& group);

    void run() override;

private:
    void addFile();
    void addContentType();

    kel::String file_;
    std::optional<CObjectArgument> object_;
    kel::String contentType_;
};

} // namespace vantra::tool
