#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "base/WallTime.h"
#include "diagnostics/Log.h"

namespace quillmar {

enum class DiagnosticLevel { debug, information, warning, error };
constexpr auto enumNames(DiagnosticLevel) {
    return std::to_array<std::string_view>({"debug", "information", "warning", "error"});
}

/// One line of the log. Every text in it is scrubbed already.
struct DiagnosticEntry {
    WallTime timestamp;
    DiagnosticLevel level = DiagnosticLevel::information;
    std::string category;
    std::string message;
    std::optional<std::string> errorDescription;
    LogMetadata metadata;
    std::string appVersion;
    std::string operatingSystemVersion;

    bool operator==(const DiagnosticEntry&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("timestamp", self.timestamp)
            .required("level", self.level)
            .required("category", self.category)
            .required("message", self.message)
            .optional("errorDescription", self.errorDescription)
            .required("metadata", self.metadata)
            .required("appVersion", self.appVersion)
            .required("operatingSystemVersion", self.operatingSystemVersion);
    }
};

/// Takes entries in and keeps them somewhere, in the background.
class DiagnosticRecording {
public:
    virtual ~DiagnosticRecording() = default;
    /// Any thread; neither waits nor fails for the caller. `report` asks for a report to the maker, too.
    virtual void record(DiagnosticEntry entry, bool report) = 0;
};

}  // namespace quillmar
