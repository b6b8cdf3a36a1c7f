#pragma once
#include <optional>

#include "async/TaskScope.h"
#include "base/Uuid.h"

namespace quillmar {

/// The run of the start-up sequence: at most one counts, and quitting cancels it. Main thread.
class ApplicationStartupTask {
public:
    explicit ApplicationStartupTask(MainLoop& loop) : tasks_(loop) {}

    /// Cancels what runs and begins `operation`.
    void start(Task<void> operation);
    void cancel();
    bool isRunning() const { return static_cast<bool>(task_); }

private:
    Task<void> run(Task<void> operation, Uuid taskID);

    TaskHandle<void> task_;
    std::optional<Uuid> taskID_;
    TaskScope tasks_;
};

}  // namespace quillmar
