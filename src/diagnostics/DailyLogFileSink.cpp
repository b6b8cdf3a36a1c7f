#include "diagnostics/DailyLogFileSink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "base/Text.h"

namespace quillmar {
namespace {

constexpr std::string_view namePrefix = "Quillmar-";
constexpr std::string_view nameExtension = ".log";
constexpr int retainedDays = 7;

[[noreturn]] void throwErrno(const std::filesystem::path& file) {
    throw std::system_error(errno, std::generic_category(), file.string());
}

std::optional<CalendarDay> dayOfFile(std::string_view name) {
    name.remove_prefix(namePrefix.size());
    name.remove_suffix(nameExtension.size());
    return parseCalendarDay(name);
}

}  // namespace

DailyLogFileSink::DailyLogFileSink(std::filesystem::path folder, const WallClock& clock,
                                   std::size_t retainedFileCount)
    : folder_(std::move(folder)), clock_(clock), retainedFileCount_(retainedFileCount) {}

void DailyLogFileSink::prepare() {
    createDirectories(folder_, 0700);
    prune(localDay(clock_.now()));
}

void DailyLogFileSink::append(const DiagnosticEntry& entry) {
    const CalendarDay day = localDay(entry.timestamp);
    if (currentDay_ != day || !currentFile_) openFile(day);
    writeLine(json::encodeCompact(entry) + "\n");
}

void DailyLogFileSink::writeLine(std::string_view line) const {
    std::size_t written = 0;
    while (written < line.size()) {
        const ssize_t count = ::write(currentFile_.get(), line.data() + written, line.size() - written);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
            continue;
        }
        if (errno == EINTR) continue;
        const int reason = errno;
        // The disk took the first part and is full: taken back, or the next line would be glued to it.
        struct stat status{};
        if (written > 0 && ::fstat(currentFile_.get(), &status) == 0) {
            (void)!::ftruncate(currentFile_.get(), status.st_size - static_cast<off_t>(written));
        }
        throw std::system_error(reason, std::generic_category(), folder_.string());
    }
}

void DailyLogFileSink::openFile(CalendarDay day) {
    close();
    const std::filesystem::path file =
        folder_ / (std::string(namePrefix) + calendarDayText(day) + std::string(nameExtension));
    currentFile_ =
        FileDescriptor(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600));
    if (!currentFile_) throwErrno(file);
    currentDay_ = day;
    prune(day);
}

void DailyLogFileSink::close() {
    const FileDescriptor file = std::exchange(currentFile_, FileDescriptor());
    currentDay_.reset();
    if (file && ::fsync(file.get()) != 0) throwErrno(folder_);
}

std::optional<std::string> DailyLogFileSink::tail(std::size_t limit) {
    if (limit < 1) return std::nullopt;
    if (currentFile_ && ::fsync(currentFile_.get()) != 0) throwErrno(folder_);
    const std::vector<std::string> names = logFileNames();
    if (names.empty()) return std::nullopt;
    const std::filesystem::path path = folder_ / names.back();
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file) throwErrno(path);
    struct stat status{};
    if (::fstat(file.get(), &status) != 0) throwErrno(path);
    const std::size_t size = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
    std::string bytes(std::min(size, limit), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const auto at = static_cast<off_t>(size - bytes.size() + length);
        const ssize_t count = ::pread(file.get(), bytes.data() + length, bytes.size() - length, at);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throwErrno(path);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return repairedUtf8(bytes);
}

std::vector<std::string> DailyLogFileSink::logFileNames() const {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entries(folder_, error);
    if (error == std::errc::no_such_file_or_directory) return names;
    if (error) throw std::system_error(error, folder_.string());
    for (const auto& entry : entries) {
        const std::string name = entry.path().filename().string();
        const bool isNamedSo = name.size() >= namePrefix.size() + nameExtension.size() &&
                               name.starts_with(namePrefix) && name.ends_with(nameExtension);
        if (isNamedSo && std::filesystem::is_regular_file(entry.symlink_status())) names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
}

void DailyLogFileSink::prune(CalendarDay today) const {
    const CalendarDay oldest = daysBefore(today, retainedDays - 1);
    for (const std::string& name : logFileNames()) {
        const auto day = dayOfFile(name);
        if (day && *day < oldest) std::filesystem::remove(folder_ / name);
    }
    const std::vector<std::string> names = logFileNames();
    for (std::size_t i = 0; i + retainedFileCount_ < names.size(); ++i) {
        std::filesystem::remove(folder_ / names[i]);
    }
}

}  // namespace quillmar
