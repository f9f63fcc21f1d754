/// @file ObjectCommands.h
/// vantra s3 head, cp, rm and exists: what is done to one object without its content.
#pragma once

#include "s3/StoreCommand.h"

namespace vantra::tool {

/// vantra s3 head s3://BUCKET/KEY: writes an object's headers, one a line.
class CHeadObjectCommand : public CStoreCommand {
public:
    explicit CHeadObjectCommand(CLI::App& group);
    void run() override;

private:
    std::optional<CObjectArgument> object_;
};

/// vantra s3 cp s3://BUCKET/KEY s3://BUCKET/KEY: has the store copy an object within a bucket.
class CCopyObjectCommand : public CStoreCommand {
public:
    explicit CCopyObjectCommand(CLI::App& group);
    void run() override;

private:
    std::optional<CObjectArgument> source_;
    std::optional<CObjectArgument> target_;
};

/// vantra s3 rm s3://BUCKET/KEY: deletes an object.
class CRemoveObjectCommand : public CStoreCommand {
public:
    explicit CRemoveObjectCommand(CLI::App& group);
    void run() override;

private:
    std::optional<CObjectArgument> object_;
};

/// vantra s3 exists s3://BUCKET/KEY: fails if there is no such object.
class CObjectExistsCommand : public CStoreCommand {
public:
    explicit CObjectExistsCommand(CLI::App& group);
    void run() override;

private:
    std::optional<CObjectArgument> object_;
};

} // namespace vantra::tool
