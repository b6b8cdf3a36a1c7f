#include "async/Sleep.h"

namespace quillmar {

void sleepFor::suspend(std::coroutine_handle<> frame, const TaskContext& context) {
    MainLoop* loop = context.loop;
    wakeUp_ = Scheduled(*loop, loop->now() + duration_, [frame] { frame.resume(); });
    // The task that asks for the stop is still on the stack here, so the sleeper is woken at a later turn.
    onStop_.emplace(context.stop, [this, loop, frame] {
        wasCancelled_ = true;
        wakeUp_ = Scheduled(*loop, [frame] { frame.resume(); });
    });
}

void sleepFor::await_resume() {
    onStop_.reset();
    if (wasCancelled_) throw CancellationError();
}

}  // namespace quillmar
