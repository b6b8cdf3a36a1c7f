#pragma once
#include <string_view>

namespace quillmar {

enum class SystemLogLevel { information, standard, error };

/// The system's own log. Any thread may call, several at once; a call neither waits nor fails.
class SystemLog {
public:
    virtual ~SystemLog() = default;
    /// Writes one line, as it is and readable by every user of the log: it holds nothing personal.
    virtual void write(SystemLogLevel level, std::string_view line) noexcept = 0;
};

}  // namespace quillmar
