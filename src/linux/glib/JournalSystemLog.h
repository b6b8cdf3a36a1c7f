#pragma once
#include <string>

#include "platform/SystemLog.h"

namespace quillmar {

/// The journal where the system has one, else the program's standard error.
class JournalSystemLog final : public SystemLog {
public:
    /// `subsystem`: the name under which the journal files the lines.
    explicit JournalSystemLog(std::string subsystem);
    void write(SystemLogLevel level, std::string_view line) noexcept override;

private:
    bool writeToJournal(SystemLogLevel level, std::string_view line) const;

    std::string subsystem_;
    bool hasJournal_;
};

}  // namespace quillmar
