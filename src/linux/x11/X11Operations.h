#pragma once
#include <memory>
#include <vector>

#include "async/ThreadPool.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

/// Work that waits for an X server, one piece after the other on threads of a pool. A server that does not
/// answer in time makes a piece fail; it holds up neither the main thread nor the end of this.
class X11Operations {
public:
    /// `display` names the X server; empty: that of the environment. `pool` must outlive this.
    explicit X11Operations(Executor& pool, std::string display = {})
        : display_(std::move(display)), executor_(pool) {}
    X11Operations(const X11Operations&) = delete;
    X11Operations& operator=(const X11Operations&) = delete;
    ~X11Operations();

    /// Runs `work` with a connection of its own: `co_await operations.run(screen.connector, work)`. Throws
    /// `DesktopPictureError` for the screen of that connector.
    template <class Work>
    Task<std::invoke_result_t<Work&, const X11Connection&>> run(std::string connector, Work work) {
        const TaskContext context = co_await currentContext();
        const auto interruption = newInterruption();
        const Scheduled deadline(*context.loop, context.loop->now() + answerLimit,
                                 [interruption] { interruption->interrupt(); });
        auto job = [interruption, display = display_, connector, work = std::move(work)]() mutable {
            try {
                const X11Connection connection(display, interruption);
                return work(connection);
            } catch (const X11Failure& failure) {
                throw DesktopPictureError(failure.errorCase(), "the X server", connector, failure.what());
            }
        };
        co_return co_await executor_.run(std::move(job));
    }
    /// For what follows the work in its order.
    Executor& executor() { return executor_; }

private:
    static constexpr Duration answerLimit = std::chrono::seconds(5);
    std::shared_ptr<X11Interruption> newInterruption();

    std::string display_;
    std::vector<std::weak_ptr<X11Interruption>> interruptions_;
    SerialExecutor executor_;
};

}  // namespace quillmar
