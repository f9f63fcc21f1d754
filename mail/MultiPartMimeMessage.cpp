#include "vantra/MultiPartMimeMessage.h"

#include "mail/Boundary.h"

#include <kel/Error.h>
#include <kel/MTRand.h>
#include <kel/Mutex.h>

#include <string>

namespace vantra {

using kel::CError;
using kel::CInvalidArgError;
using kel::CMTRand;
using kel::CMutexLock;
using kel::IOutStream;
using kel::String;
using kel::TBuffer;

namespace {

String makeRandomBoundary() {
    const CMutexLock lock(CMTRand::getGlobalMutex());
    return makeBoundary([] { return CMTRand::getGlobal().rand64(); });
}

void write(IOutStream& out, const std::string& bytes) { out.write(bytes.data(), bytes.size()); }

} // namespace

CMultiPartMimeMessage::CMultiPartMimeMessage(const String& subtype)
    : CMimeMessage(""), boundary_(makeRandomBoundary()) {
    getHeaders()["Content-Type"] = "multipart/" + subtype + "; boundary=" + boundary_;
}

CMultiPartMimeMessage::~CMultiPartMimeMessage() = default;

void CMultiPartMimeMessage::addPart(const CMimeMessage* part) {
    if (!part) throw CInvalidArgError("CMultiPartMimeMessage::addPart", "part must not be null");
    parts_.push_back(part);
}

void CMultiPartMimeMessage::setBody(const TBuffer<unsigned char>* /*body*/,
                                    const String& /*transferEncoding*/) {
    throw CError("CMultiPartMimeMessage::setBody should not be used.");
}

void CMultiPartMimeMessage::storeBody(IOutStream& out) const {
    if (parts_.empty()) return;
    const std::string delimiter = "--" + boundary_.toUTF8();
    bool isFirst = true;
    for (const auto& part : parts_) {
        write(out, (isFirst ? "" : "\r\n") + delimiter + "\r\n");
        part->store(out);
        isFirst = false;
    }
    write(out, "\r\n" + delimiter + "--\r\n");
}

} // namespace vantra
