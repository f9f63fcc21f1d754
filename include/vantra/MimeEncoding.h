/// @file vantra/MimeEncoding.h
/// Bodies in the encodings that mail can carry, and attachments.
///
///     mail->setBody(encodeQuotedPrintable(utf8Text), "quoted-printable");
///     letter->addPart(makeAttachment("photo.jpg", "image/jpeg", bytes));
///
/// Thread safety: any thread may call any of them.
#pragma once

#include "vantra/Export.h"
#include "vantra/MimeMessage.h"

#include <kel/Buffer.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra {

/// The bytes in the transfer encoding "base64" (RFC 2045 §6.8): lines of 76 characters with CR LF between
/// them and none behind the last. Nothing for no bytes.
[[nodiscard]] VANTRA_API kel::P<kel::TBuffer<unsigned char>>
encodeBase64Lines(const kel::TBuffer<unsigned char>& bytes);

/// The bytes in the transfer encoding "quoted-printable" (RFC 2045 §6.7), for text in an encoding that is
/// mostly ASCII. CR LF in the bytes is a line break and stays; a CR or LF alone is encoded, so that what is
/// decoded equals the bytes whatever they are. Lines are at most 76 characters long; where one is broken, "="
/// CR LF marks the place. Blanks and tabs at the end of a line are encoded.
[[nodiscard]] VANTRA_API kel::P<kel::TBuffer<unsigned char>>
encodeQuotedPrintable(const kel::TBuffer<unsigned char>& bytes);

/// A part for CMultiPartMimeMessage::addPart that is shown as a file to save: its body is `bytes` in base64,
/// and "Content-Disposition" is "attachment" with the file's name.
/// @param name without a folder, which receivers cut off or refuse. A name of printable ASCII characters is
/// written as a quoted string, any other as RFC 2231 has it, in UTF-8; one that a single line cannot hold, in
/// sections on folded lines. Empty for no name.
/// @param contentType such as "image/png"; empty for "application/octet-stream".
/// @throws kel::CInvalidArgError "content type contains a line break"
[[nodiscard]] VANTRA_API kel::P<CMimeMessage> makeAttachment(const kel::String& name,
                                                             const kel::String& contentType,
                                                             const kel::TBuffer<unsigned char>& bytes);

} // namespace vantra
