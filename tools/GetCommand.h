/// @file GetCommand.h
/// vantra get URL: fetches what an address names.
#pragma once

#include "LogOption.h"
#include "RangeArgument.h"
#include "RequestOptions.h"
#include "URLArgument.h"
#include "Verb.h"

#include <kel/String.h>

#include <optional>

namespace vantra::tool {

class CGetCommand : public CVerb {
public:
    explicit CGetCommand(CLI::App& program);

    void run() override;

private:
    void addURL();
    void addOutputOptions();
    void check() const;

    std::optional<CURLArgument> url_;
    std::optional<kel::String> outputName_;
    bool includeHeaders_ = false;
    std::optional<CRangeArgument> range_;
    CRequestOptions requestOptions_;
    CLogOption logOption_;
};

} // namespace vantra::tool
