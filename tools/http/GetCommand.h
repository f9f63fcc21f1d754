/// @file GetCommand.h
/// vantra get URL: fetches what an address names.
#pragma once

#include "arguments/RangeArgument.h"
#include "arguments/URLArgument.h"
#include "options/LogOption.h"
#include "options/RequestOptions.h"
#include "options/ResponseOptions.h"
#include "Verb.h"

#include <optional>

namespace vantra::tool {

class CGetCommand : public CVerb {
public:
    explicit CGetCommand(CLI::App& program);

    void run() override;

private:
    void addURL();
    void addRangeOption();

    std::optional<CURLArgument> url_;
    std::optional<CRangeArgument> range_;
    CResponseOptions responseOptions_;
    CRequestOptions requestOptions_;
    CLogOption logOption_;
};

} // namespace vantra::tool
