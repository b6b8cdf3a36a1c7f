#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/DiagnosticEntry.h"
#include "diagnostics/Scrubber.h"

namespace quillmar {

/// Most bytes of one report.
inline constexpr std::size_t maximumReportBytes = 131072;

/// A report's content: a JSON array of one event. `tail` is cut to its last 65536 characters and scrubbed
/// once more. Throws `JsonRecordError` for an entry that is not UTF-8.
std::string errorReportPayload(const DiagnosticEntry& entry, const std::optional<std::string>& tail,
                               const Scrubber& scrubber);

/// A text that two entries share when they report the same thing.
std::string errorReportFingerprint(const DiagnosticEntry& entry);

}  // namespace quillmar
