/// @file ProxyCommand.h
/// vantra proxy [URL]: tells what the system's settings say of proxies.
#pragma once

#include "arguments/URLArgument.h"
#include "Verb.h"

#include <optional>

namespace vantra::tool {

class CProxyCommand : public CVerb {
public:
    explicit CProxyCommand(CLI::App& program);

    void run() override;

private:
    std::optional<CURLArgument> url_;
};

} // namespace vantra::tool
