/// @file vantra/HTTPContentRange.h
/// The value of a "Content-Range" header (RFC 9110 §14.4).
///
///     P<CHTTPContentRange> range = CHTTPContentRange::parse("bytes 0-499/1234");
///     int64 length = range->getLast() - range->getFirst() + 1;
#pragma once

#include "vantra/Export.h"

#include <kel/Base.h>
#include <kel/Int64.h>
#include <kel/P.h>
#include <kel/String.h>

namespace vantra {

/// Which part of a document a partial response holds. Nothing is checked: the positions need be neither in
/// order nor inside the document.
///
/// Thread safety: any number of readers, or one thread that assigns.
class VANTRA_API CHTTPContentRange : public kel::CBase {
public:
    /// Stands for a position or size that the header tells as "*".
    static constexpr kel::int64 unknown = -1;

    /// Stores the values as they are.
    CHTTPContentRange(const kel::String& unit, kel::int64 first, kel::int64 last,
                      kel::int64 entireContentSize);
    CHTTPContentRange(const CHTTPContentRange&);
    CHTTPContentRange(CHTTPContentRange&&) noexcept;
    CHTTPContentRange& operator=(const CHTTPContentRange&);
    CHTTPContentRange& operator=(CHTTPContentRange&&) noexcept;
    ~CHTTPContentRange() override;

    /// Reads "UNIT FIRST-LAST/SIZE", in which SIZE may be "*", or "UNIT */SIZE" (of a response that found the
    /// range unsatisfiable). White space around the whole value does not matter; inside there is just the one
    /// blank.
    /// @throws kel::CError "Invalid HTTP Content-Range header: VALUE" for any other form; kel::parseInt64's
    /// error when a number is none.
    [[nodiscard]] static kel::P<CHTTPContentRange> parse(const kel::String& headerValue);

    /// In lower case, usually "bytes".
    [[nodiscard]] kel::String getUnit() const { return unit_; }
    /// The position of the first byte, or `unknown`.
    [[nodiscard]] kel::int64 getFirst() const noexcept { return first_; }
    /// The position of the last byte, which is part of the range, or `unknown`.
    [[nodiscard]] kel::int64 getLast() const noexcept { return last_; }
    /// The size of the whole document in bytes, or `unknown`.
    [[nodiscard]] kel::int64 getEntireContentSize() const noexcept { return entireContentSize_; }

private:
    kel::String unit_;
    kel::int64 first_;
    kel::int64 last_;
    kel::int64 entireContentSize_;
};

} // namespace vantra
