#include "linux/glib/JournalSystemLog.h"

#include <glib.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <climits>

namespace quillmar {
namespace {

/// The journal's priorities are those of syslog.
const char* priority(SystemLogLevel level) {
    switch (level) {
        case SystemLogLevel::error: return "3";
        case SystemLogLevel::standard: return "4";
        case SystemLogLevel::information: return "6";
    }
    return "6";
}

/// In one write of a size that a pipe takes as a whole, so that lines of several threads stay apart and a
/// reader that has stopped reading never stops the program.
void writeToStandardError(std::string_view line) {
    std::array<char, PIPE_BUF> buffer;
    const std::size_t length = std::min(line.size(), buffer.size() - 1);
    line.copy(buffer.data(), length);
    buffer[length] = '\n';
    pollfd descriptor{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
    if (::poll(&descriptor, 1, 0) != 1 || descriptor.revents != POLLOUT) return;
    (void)!::write(STDERR_FILENO, buffer.data(), length + 1);
}

}  // namespace

JournalSystemLog::JournalSystemLog(std::string subsystem)
    : subsystem_(std::move(subsystem)), hasJournal_(::access("/run/systemd/journal/socket", W_OK) == 0) {}

void JournalSystemLog::write(SystemLogLevel level, std::string_view line) noexcept {
    if (hasJournal_ && writeToJournal(level, line)) return;
    writeToStandardError(line);
}

bool JournalSystemLog::writeToJournal(SystemLogLevel level, std::string_view line) const {
    const auto fields = std::to_array<GLogField>({
        {"MESSAGE", line.data(), static_cast<gssize>(line.size())},
        {"PRIORITY", priority(level), -1},
        {"SYSLOG_IDENTIFIER", "quillmar", -1},
        {"GLIB_DOMAIN", subsystem_.c_str(), -1},
        {"QUILLMAR_CATEGORY", "application", -1},
    });
    // The level of the call itself goes unused: the journal reads the field.
    return g_log_writer_journald(G_LOG_LEVEL_INFO, fields.data(), fields.size(), nullptr) ==
           G_LOG_WRITER_HANDLED;
}

}  // namespace quillmar
