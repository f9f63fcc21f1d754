/// @file BigFileSource.h
/// A body that is read as it goes.
#pragma once

#include <vantra/vantra.h>

#include "support/NginxServer.h"

/// The first bytes of the web server's big file, of unknown size, and not to be read twice when told so.
class CBigFileSource : public kel::CBase, public vantra::CNetRequest::IDataSource {
public:
    explicit CBigFileSource(bool canSeek, std::size_t size = testsupport::NginxServer::bigContent().size())
        : content_(std::string_view(testsupport::NginxServer::bigContent()).substr(0, size)),
          canSeek_(canSeek) {}

    unsigned int read(void* buffer, unsigned int maxLength,
                      const kel::TMap<kel::String, kel::String>& /*headers*/) override {
        const std::size_t count =
            content_.copy(static_cast<char*>(buffer), maxLength, static_cast<std::size_t>(position_));
        position_ += static_cast<kel::int64>(count);
        return static_cast<unsigned int>(count);
    }
    kel::int64 getSize() override { return -1; }
    void seek(kel::int64 position) override {
        if (!canSeek_) throw kel::CError("This source cannot go back.");
        position_ = position;
        ++seeks_;
    }
    kel::int64 getPosition() override { return position_; }

    [[nodiscard]] int getSeeks() const noexcept { return seeks_; }

private:
    const std::string_view content_;
    const bool canSeek_;
    kel::int64 position_ = 0;
    int seeks_ = 0;
};
