/// @file UploadCommand.h
/// vantra put URL -f FILE, vantra post URL -f FILE: sends a file.
#pragma once

#include "arguments/URLArgument.h"
#include "options/LogOption.h"
#include "options/RequestOptions.h"
#include "options/ResponseOptions.h"
#include "Verb.h"

#include <kel/String.h>

#include <optional>

namespace vantra::tool {

class CUploadCommand : public CVerb {
public:
    enum class Kind { Put, Post };

    CUploadCommand(CLI::App& program, Kind kind);

    void run() override;

private:
    void addURL();
    void addBodyOptions();
    void check();
    void configure(CNetRequest& request) const;
    void setMethod(CNetRequest& request) const;
    void setContentType(CNetRequest& request) const;

    Kind kind_;
    std::optional<CURLArgument> url_;
    kel::String file_;
    std::optional<kel::String> contentType_;
    CResponseOptions responseOptions_;
    CRequestOptions requestOptions_;
    CLogOption logOption_;
};

} // namespace vantra::tool
