#include "diagnostics/ErrorReport.h"

#include "base/JsonRecord.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumTailCharacters = 65536;

/// As the server's event format spells the levels.
std::string_view serverLevel(DiagnosticLevel level) {
    switch (level) {
        case DiagnosticLevel::debug: return "Debug";
        case DiagnosticLevel::information: return "Information";
        case DiagnosticLevel::warning: return "Warning";
        case DiagnosticLevel::error: return "Error";
    }
    return "Error";
}

/// One event of the server's format.
struct Event {
    const DiagnosticEntry& entry;
    const LogMetadata& properties;
    std::string timestamp = iso8601WithFraction(entry.timestamp);
    std::string_view level = serverLevel(entry.level);

    static void describe(auto& self, auto& io) {
        io.required("Timestamp", self.timestamp)
            .required("Level", self.level)
            .required("MessageTemplate", self.entry.message)
            .required("RenderedMessage", self.entry.message)
            // The server wants the key in any case.
            .required("Exception", self.entry.errorDescription)
            .required("Properties", self.properties);
    }
};

std::string_view lastCharacters(std::string_view text, std::size_t count) {
    std::size_t at = text.size();
    while (at > 0 && count > 0) {
        --at;
        const bool isContinuation = (static_cast<unsigned char>(text[at]) & 0xC0u) == 0x80u;
        if (!isContinuation) --count;
    }
    return text.substr(at);
}

}  // namespace

std::string errorReportPayload(const DiagnosticEntry& entry, const std::optional<std::string>& tail,
                               const Scrubber& scrubber) {
    LogMetadata properties = entry.metadata;
    properties["AppVersion"] = entry.appVersion;
    properties["Platform"] = "Linux";
    properties["OperatingSystemVersion"] = entry.operatingSystemVersion;
    properties["Category"] = entry.category;
    if (tail) properties["LogTail"] = scrubber.text(lastCharacters(*tail, maximumTailCharacters));

    return json::encodeCompact(std::vector{Event{entry, properties}});
}

std::string errorReportFingerprint(const DiagnosticEntry& entry) {
    constexpr char separator = '\x1f';
    std::string text(enumName(entry.level));
    text += separator + entry.category + separator + entry.message + separator;
    text += entry.errorDescription.value_or("") + separator;
    bool isFirst = true;
    for (const auto& [key, value] : entry.metadata) {
        text += (std::exchange(isFirst, false) ? "" : "&") + key + "=" + value;
    }
    return text;
}

}  // namespace quillmar
