#include "s3/ObjectSink.h"

namespace vantra::tool {

using kel::CError;
using kel::String;
using kel::TMap;

CObjectSink::CObjectSink(const CNetRequest& request, IOutput& output,
                         const std::optional<CRangeArgument>& range)
    : request_(request), output_(output), range_(range) {}

CObjectSink::~CObjectSink() = default;

void CObjectSink::write(const void* data, unsigned int length, int httpStatusCode,
                        const TMap<String, String>& responseHeaders) {
    if (!currentTry_) {
        currentTry_ = new CResponseSink(request_, output_, false);
        if (range_) currentTry_->expectRange(*range_);
    }
    currentTry_->write(data, length, httpStatusCode, responseHeaders);
}

void CObjectSink::onRequestDone(CNetRequest* /*request*/, const CError* /*error*/) {
    errorBody_.clear();
    if (currentTry_) errorBody_ = currentTry_->getErrorBody();
    currentTry_ = nullptr;
}

} // namespace vantra::tool
