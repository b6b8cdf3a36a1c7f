#pragma once
#include <mutex>

#include "async/TimerQueue.h"

using GSource = struct _GSource;

namespace quillmar {

/// The program's main loop, on GLib's default context, so that GTK and D-Bus run in it too. Made, run and
/// destroyed on the main thread, of which there is one.
class GlibMainLoop final : public MainLoop {
public:
    using TaskFailureHandler = std::function<void(std::exception_ptr)>;

    GlibMainLoop();
    GlibMainLoop(const GlibMainLoop&) = delete;
    GlibMainLoop& operator=(const GlibMainLoop&) = delete;
    ~GlibMainLoop() override;

    TimePoint now() const override { return std::chrono::steady_clock::now(); }
    Ticket callAt(TimePoint when, Callback callback) override;
    void forget(Ticket ticket) override;
    void post(Callback callback) override;
    void taskFailed(std::exception_ptr failure) override;
    /// Who hears of failed tasks; without one they are logged as errors.
    void setTaskFailureHandler(TaskFailureHandler handler) { taskFailureHandler_ = std::move(handler); }

    /// Runs until `quit`; returns at once when that was called before.
    void run();
    /// Ends `run` after the present turn. Main thread.
    void quit();

private:
    struct Source;
    void dispatch();
    Callback takeDue(TimePoint now, std::uint64_t serial);
    void arm();

    std::mutex mutex_;
    TimerQueue queue_;                ///< guarded
    std::optional<TimePoint> armed_;  ///< guarded; when the source is to wake up
    bool isDispatching_ = false;      ///< guarded
    GSource* source_ = nullptr;
    bool hasQuit_ = false;
    TaskFailureHandler taskFailureHandler_;
};

}  // namespace quillmar
