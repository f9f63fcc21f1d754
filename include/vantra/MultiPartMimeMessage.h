/// @file vantra/MultiPartMimeMessage.h
/// A message made of messages.
///
///     P<CMultiPartMimeMessage> mail = new CMultiPartMimeMessage();
///     mail->getHeaders()["Subject"] = "The report";
///     mail->addPart(text);
///     mail->addPart(makeAttachment("report.pdf", "application/pdf", bytes));
#pragma once

#include "vantra/Export.h"
#include "vantra/MimeMessage.h"

#include <kel/Array.h>
#include <kel/Buffer.h>
#include <kel/P.h>
#include <kel/Stream.h>
#include <kel/String.h>

namespace vantra {

/// A MIME entity whose body is a list of others, separated by a random boundary (RFC 2046 §5.1). There is
/// neither a preamble nor an epilogue, and without parts the body is empty.
///
/// Thread safety: as for CMimeMessage, its parts included.
class VANTRA_API CMultiPartMimeMessage : public CMimeMessage {
public:
    /// "Content-Type" becomes "multipart/SUBTYPE; boundary=BOUNDARY".
    /// @param subtype such as "mixed" (independent parts) or "alternative" (forms of the same content).
    explicit CMultiPartMimeMessage(const kel::String& subtype = "mixed");
    ~CMultiPartMimeMessage() override;

    /// Appends a part, which is shared with the caller, not copied, and may have parts itself, only not this
    /// message.
    /// @throws kel::CInvalidArgError "part must not be null"
    void addPart(const CMimeMessage* part);

    /// 10 to 32 lower-case hexadecimal digits, mostly 16; random, and the same for the life of the message.
    /// Whether they occur in a part is not looked at.
    [[nodiscard]] kel::String getBoundary() const { return boundary_; }

    /// Not supported. @throws kel::CError "CMultiPartMimeMessage::setBody should not be used."
    void setBody(const kel::TBuffer<unsigned char>* body, const kel::String& transferEncoding) override;
    /// Writes the parts with their header blocks, each behind a line with the boundary, and a closing one.
    void storeBody(kel::IOutStream& out) const override;

private:
    kel::TArray<kel::PC<CMimeMessage>> parts_;
    const kel::String boundary_;
};

} // namespace vantra
