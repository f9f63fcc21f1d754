/// @file vantra/MimeMessage.h
/// One MIME entity: header fields and a body.
///
///     P<CMimeMessage> mail = new CMimeMessage("text/plain; charset=utf-8");
///     mail->getHeaders()["Subject"] = "Grüße";
///     mail->setBody(encodeQuotedPrintable(text), "quoted-printable");
///     mail->store(stream);
#pragma once

#include "vantra/Export.h"
#include "vantra/NetHeaders.h"

#include <kel/Base.h>
#include <kel/Buffer.h>
#include <kel/Map.h>
#include <kel/P.h>
#include <kel/Stream.h>
#include <kel/String.h>

namespace vantra {

class CNetRequest;

/// An Internet message or one part of it (RFC 5322, RFC 2045): header fields, each name once, and an optional
/// body. It writes itself to a stream, or loads itself into a request as headers and data to send.
///
/// Nothing is validated: a name or value that holds a line break breaks the header block, which is the
/// caller's concern.
///
/// Thread safety: one thread at a time, or any number of threads that only call const members.
class VANTRA_API CMimeMessage : public kel::CBase {
public:
    /// Has "MIME-Version: 1.0" and, unless `contentType` is empty, "Content-Type"; no body.
    explicit CMimeMessage(const kel::String& contentType);
    CMimeMessage(const CMimeMessage&) = delete;
    CMimeMessage& operator=(const CMimeMessage&) = delete;
    ~CMimeMessage() override;

    /// @{
    /// The fields themselves, to add to, change and remove from: values by name, in their raw form, that is
    /// neither encoded nor folded. Names differ by case; fields are written in the order of their names'
    /// character codes.
    [[nodiscard]] kel::TMap<kel::String, kel::String>& getHeaders() noexcept { return headers_; }
    [[nodiscard]] const kel::TMap<kel::String, kel::String>& getHeaders() const noexcept { return headers_; }
    /// @}

    /// Sets the body and says how it is encoded.
    /// @param body shared with the caller, not copied; its bytes are written as they are then, so they must
    /// be in the named encoding already. Null for no body.
    /// @param transferEncoding the value of "Content-Transfer-Encoding"; empty removes that field.
    virtual void setBody(const kel::TBuffer<unsigned char>* body, const kel::String& transferEncoding);
    /// Writes the header block, the empty line and the body. @throws what `out` throws, here and below.
    virtual void store(kel::IOutStream& out) const;
    /// Writes each field as a line that CR LF ends, then an empty line, in Latin-1. A value that is not all
    /// ASCII is written as toEncodedWord() gives it; other lines are not folded, however long. In a name "?"
    /// stands for each character that Latin-1 lacks.
    virtual void storeHeader(kel::IOutStream& out) const;
    /// Writes the body's bytes; nothing without a body.
    virtual void storeBody(kel::IOutStream& out) const;

    /// A text as RFC 2047 encoded words, "Q" encoding over UTF-8: ASCII letters and digits stay, each byte of
    /// everything else becomes "=" and two upper-case hexadecimal digits. A word ends after the character
    /// that takes it over 45 characters; CR LF and a blank separate words. No character is split between two.
    /// Empty for the empty text.
    [[nodiscard]] static kel::String toEncodedWord(const kel::String& text);

    /// The text between double quotes, with a backslash before each backslash, double quote and carriage
    /// return (RFC 5322 §3.2.4): for the display name of an address or the value of a parameter.
    [[nodiscard]] static kel::String toQuotedString(const kel::String& text);

    /// Adds each field, in its raw form, to a collection for requests.
    void updateNetHeaders(CNetHeaders& netHeaders) const;

    /// Makes this message what a request sends: its fields are added to the request's custom headers (to new
    /// ones if it has none), and a copy of the body becomes the data to send, with its size.
    void fillRequest(CNetRequest& request) const;

protected:
    /// "name: value", the value as encoded words if any of its characters has a code of 128 or more.
    [[nodiscard]] static kel::String makeHeaderField(const kel::String& name, const kel::String& value);

private:
    kel::TMap<kel::String, kel::String> headers_;
    kel::PC<kel::TBuffer<unsigned char>> body_;
};

} // namespace vantra
