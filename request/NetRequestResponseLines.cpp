#include "vantra/NetRequest.h"

namespace vantra {

// Few look at the lines of a transfer that went well: they are kept as they came, in memory that serves the
// next transfer too, and become a list only for those who ask.

void CNetRequest::addResponseLine(std::string_view utf8) {
    responseLines_ += utf8;
    responseLineEnds_.push_back(responseLines_.size());
}

void CNetRequest::clearResponseLines() {
    responseLines_.clear();
    responseLineEnds_.clear();
    responseInfoCount_ = 0;
    if (responseInfo_->getSList()) responseInfo_ = new CNetStringList();
}

const CNetStringList& CNetRequest::getResponseInfo() const {
    for (; responseInfoCount_ < responseLineEnds_.size(); ++responseInfoCount_) {
        const std::size_t start = responseInfoCount_ == 0 ? 0 : responseLineEnds_[responseInfoCount_ - 1];
        const std::string_view line(responseLines_);
        responseInfo_->addUTF8(line.substr(start, responseLineEnds_[responseInfoCount_] - start));
    }
    return *responseInfo_;
}

} // namespace vantra
