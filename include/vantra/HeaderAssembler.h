/// @file vantra/HeaderAssembler.h
/// Turns received header lines into a map.
#pragma once

#include "vantra/Export.h"
#include "vantra/ServerInfo.h"

#include <kel/Base.h>
#include <kel/Map.h>
#include <kel/P.h>
#include <kel/String.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vantra {

/// Collects the header lines of one response after another. The map goes from lower-cased name to value;
/// repeated headers are joined with ",", folded continuation lines (RFC 9112 §5.2) with a blank. Status lines
/// are not its business; reset() starts the next response.
///
/// Thread safety: one thread at a time.
class VANTRA_API CHeaderAssembler : public kel::CBase {
public:
    CHeaderAssembler();
    CHeaderAssembler(const CHeaderAssembler&);
    CHeaderAssembler(CHeaderAssembler&&) noexcept;
    CHeaderAssembler& operator=(CHeaderAssembler other);
    ~CHeaderAssembler() override;

    /// Takes one line, its CR LF included. The line "\r\n" completes the block: the server record is told,
    /// and further lines are ignored until reset().
    /// @throws kel::CInvalidArgError as CNetHeaders::splitEntry; kel::CError "Error parsing HTTP header:
    /// first line starts with whitespace." What was stored before stays.
    void handleHeaderLine(const kel::String& line);

    /// Forgets the headers, not the server record.
    void reset();

    /// @{
    /// The headers so far. Most responses are never asked: the map is made at the first call, and from then
    /// on follows each line, reset() and assignment.
    [[nodiscard]] kel::TMap<kel::String, kel::String>& getHeaderMap();
    [[nodiscard]] const kel::TMap<kel::String, kel::String>& getHeaderMap() const;
    /// @}

    /// The record to update whenever a block is complete, or null; a reference is kept.
    void setServerInfoToUpdate(CServerInfo* info);

private:
    /// A line that is not in the map yet; its text is in waitingText_.
    struct WaitingLine {
        std::size_t nameLength; // 0 for a continuation
        std::size_t valueLength;
    };

    void addLine(std::wstring_view name, std::wstring_view value);
    void putMapInUse() const;
    void makeMap() const;
    void addToMap(std::wstring_view name, std::wstring_view value) const;
    kel::String& getLastHeaderValue() const;

    // The lines received are in the map or wait behind it.
    mutable kel::TMap<kel::String, kel::String> headerMap_;
    mutable kel::String lastHeaderName_; // in the map, lower-cased; empty at the start of a block
    mutable std::wstring waitingText_;
    mutable std::vector<WaitingLine> waitingLines_;
    mutable bool isMapInUse_ = false; // somebody may hold a reference to it: no line waits
    bool headerComplete_ = false;
    kel::P<CServerInfo> serverInfoToUpdate_;
    // Entries of earlier responses, whose memory serves the next one. Not part of the value: not copied.
    mutable std::vector<kel::TMap<kel::String, kel::String>::node_type> spareEntries_;
};

} // namespace vantra
