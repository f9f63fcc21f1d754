/// @file GetAllCommand.h
/// vantra get-all URL...: fetches many files at once.
#pragma once

#include "arguments/URLArgument.h"
#include "options/LogOption.h"
#include "options/RequestOptions.h"
#include "Verb.h"

#include <kel/String.h>

#include <vector>

namespace vantra::tool {

class CGetAllCommand : public CVerb {
public:
    explicit CGetAllCommand(CLI::App& program);

    void run() override;

private:
    void addURLs();
    void addFolderOption();
    void addParallelOption();
    void fetchAll(CTransferLog* log);

    std::vector<CURLArgument> urls_;
    kel::String folder_ = ".";
    std::size_t parallel_;
    CRequestOptions requestOptions_;
    CLogOption logOption_;
};

} // namespace vantra::tool
