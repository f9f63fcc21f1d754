#include "vantra/S3ObjectEnum.h"

#include <kel/Error.h>

namespace vantra {

using kel::CInvalidArgError;
using kel::P;
using kel::String;

CS3ObjectEnum::CS3ObjectEnum(CS3Client* client, CNetRequest* request, const String& bucket,
                             const String& prefix, const String& startMarker, int pageSize)
    : client_(client),
      request_(request),
      bucket_(bucket),
      prefix_(prefix),
      pageSize_(pageSize),
      marker_(startMarker) {
    constexpr const char* function = "CS3ObjectEnum::CS3ObjectEnum";
    if (!client) throw CInvalidArgError(function, "client must not be null");
    if (!request) throw CInvalidArgError(function, "request must not be null");
}

CS3ObjectEnum::CS3ObjectEnum(const CS3ObjectEnum&) = default;
CS3ObjectEnum::CS3ObjectEnum(CS3ObjectEnum&&) noexcept = default;
CS3ObjectEnum& CS3ObjectEnum::operator=(const CS3ObjectEnum&) = default;
CS3ObjectEnum& CS3ObjectEnum::operator=(CS3ObjectEnum&&) noexcept = default;
CS3ObjectEnum::~CS3ObjectEnum() = default;

bool CS3ObjectEnum::next() {
    if (finished_) return false;
    if (page_) {
        ++index_;
    } else if (!nextPage()) {
        return false;
    }
    if (static_cast<std::size_t>(index_) < page_->getObjects().size()) return true;
    return nextPage();
}

P<CS3ListObjectsElement> CS3ObjectEnum::getCurrObject() const {
    if (!page_) return nullptr;
    return page_->getObjects()[static_cast<std::size_t>(index_)];
}

bool CS3ObjectEnum::nextPage() {
    if (page_) {
        if (!page_->isTruncated()) {
            finished_ = true;
            return false;
        }
        marker_ = page_->getObjects().back()->getKey();
    }
    page_ = client_->listObjects(*request_, bucket_, prefix_, "", marker_, pageSize_);
    if (page_->getObjects().empty()) {
        finished_ = true;
        return false;
    }
    index_ = 0;
    return true;
}

} // namespace vantra
