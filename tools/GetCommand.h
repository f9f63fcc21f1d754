/// @file GetCommand.h
/// vantra get URL: fetches what an address names.
#pragma once

#include "RequestOptions.h"
#include "URLArgument.h"
#include "Verb.h"

#include <kel/String.h>

#include <optional>

namespace vantra::tool {

class CGetCommand : public IVerb {
public:
    explicit CGetCommand(CLI::App& program);

    [[nodiscard]] bool isChosen() const override;
    void run() override;

private:
    void addURL();
    void addOutputOptions();
    void check() const;

    CLI::App& app_;
    std::optional<CURLArgument> url_;
    std::optional<kel::String> outputName_;
    bool includeHeaders_ = false;
    CRequestOptions requestOptions_;
};

} // namespace vantra::tool
