#pragma once
#include <filesystem>
#include <memory>

namespace quillmar {

/// Tells how long the main loop's turns take: the time between two waits for events, in which nobody is
/// answered, whoever asked for the work (a timer, GTK, D-Bus, a task). Every turn of a millisecond or more is
/// appended to a file as a line of three numbers: when it ended, in seconds of the monotonic clock, and for
/// how many milliseconds it lasted and used a processor. Replaces the poll function of GLib's default context
/// while it lives. One at a time, on the main thread.
class LoopProbe {
public:
    /// Throws `std::system_error` where the file cannot be made.
    explicit LoopProbe(const std::filesystem::path& file);
    LoopProbe(const LoopProbe&) = delete;
    LoopProbe& operator=(const LoopProbe&) = delete;
    ~LoopProbe();

    /// What the environment asks for: into the file that QUILLMAR_LOOP_PROBE names, or nothing at all.
    static std::unique_ptr<LoopProbe> wanted();
};

}  // namespace quillmar
