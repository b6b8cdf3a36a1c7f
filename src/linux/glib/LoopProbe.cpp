#include "linux/glib/LoopProbe.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <glib.h>
#include <unistd.h>

#include <ctime>
#include <optional>
#include <system_error>

#include "base/FileDescriptor.h"

namespace quillmar {
namespace {

constexpr double shortestMilliseconds = 1;

/// In milliseconds.
double timeOf(clockid_t clock) {
    std::timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

struct Instant {
    double wall = timeOf(CLOCK_MONOTONIC);
    double processor = timeOf(CLOCK_THREAD_CPUTIME_ID);
};

/// GLib hands its poll function nothing of ours.
struct Watch {
    FileDescriptor file;
    GPollFunc poll = nullptr;
    std::optional<Instant> began;
};
Watch watch;

void noteTurn() {
    if (!watch.began) return;
    const Instant end;
    const double lasted = end.wall - watch.began->wall;
    if (lasted < shortestMilliseconds) return;
    const std::string line =
        fmt::format("{:.6f} {:.3f} {:.3f}\n", end.wall / 1e3, lasted, end.processor - watch.began->processor);
    // A line that is lost is no reason to disturb the program.
    [[maybe_unused]] const ssize_t ignored = ::write(watch.file.get(), line.data(), line.size());
}

gint pollBetweenTurns(GPollFD* descriptors, guint count, gint timeout) {
    noteTurn();
    const gint ready = watch.poll(descriptors, count, timeout);
    watch.began.emplace();
    return ready;
}

}  // namespace

LoopProbe::LoopProbe(const std::filesystem::path& file) {
    watch.file = FileDescriptor(::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    if (!watch.file) throw std::system_error(errno, std::generic_category(), file.string());
    watch.poll = g_main_context_get_poll_func(nullptr);
    g_main_context_set_poll_func(nullptr, &pollBetweenTurns);
}

LoopProbe::~LoopProbe() {
    g_main_context_set_poll_func(nullptr, watch.poll);
    watch = {};
}

std::unique_ptr<LoopProbe> LoopProbe::wanted() {
    const char* file = g_getenv("QUILLMAR_LOOP_PROBE");
    return file ? std::make_unique<LoopProbe>(file) : nullptr;
}

}  // namespace quillmar
