#include "linux/glib/Gio.h"

#include <gmock/gmock.h>

#include "async/TaskScope.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/glib/Signal.h"

namespace quillmar {
namespace {

class GioTest : public testing::Test {
public:
    static void settle() {
        while (g_main_context_iteration(nullptr, FALSE)) {
        }
    }
    /// An operation that answers when the test says so.
    Task<std::string> held() {
        const auto result =
            co_await gio([this](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
                operation_ = Ref<GTask>::adopt(g_task_new(nullptr, cancellable, done, data));
            });
        Owned<GError> error;
        const Owned<char> text(
            static_cast<char*>(g_task_propagate_pointer(G_TASK(result.get()), GErrorOut(error))));
        throwIfFailed(error);
        co_return std::string(text.get());
    }
    void answers(const char* text) { g_task_return_pointer(operation_.get(), g_strdup(text), g_free); }

    GlibMainLoop loop_;
    Ref<GTask> operation_;
};

TEST_F(GioTest, anOperationIsAwaited) {
    TaskScope scope(loop_);
    const auto task = scope.start(held());
    settle();
    EXPECT_FALSE(task.isFinished());
    answers("done");
    settle();
    std::string text;
    scope.spawn([](std::string* out, TaskHandle<std::string> handle) -> Task<void> {
        *out = co_await handle.value();
    }(&text, task));
    settle();
    EXPECT_EQ(text, "done");
}

TEST_F(GioTest, aCancelledTaskCancelsTheOperationAndEndsCancelled) {
    TaskScope scope(loop_);
    bool wasCancelled = false;
    const auto task = scope.start([](GioTest* test, bool* out) -> Task<void> {
        try {
            co_await test->held();
        } catch (const CancellationError&) {
            *out = true;
        }
    }(this, &wasCancelled));
    settle();
    task.cancel();
    EXPECT_TRUE(g_cancellable_is_cancelled(g_task_get_cancellable(operation_.get())));
    answers("too late");
    settle();
    EXPECT_TRUE(wasCancelled);
}

TEST_F(GioTest, theAnswerForATaskThatIsGoneIsDropped) {
    {
        TaskScope scope(loop_);
        scope.spawn([](GioTest* test) -> Task<void> { co_await test->held(); }(this));
        settle();
    }
    EXPECT_TRUE(g_cancellable_is_cancelled(g_task_get_cancellable(operation_.get())));
    answers("too late");
    settle();
}

TEST_F(GioTest, aSignalEndsWithItsGuardAndWithItsEmitter) {
    int calls = 0;
    const auto counts = [&](GCancellable*) { ++calls; };
    auto emitter = Ref<GCancellable>::adopt(g_cancellable_new());
    Signal kept = Signal::connect<void>(emitter.get(), "cancelled", counts);
    {
        const Signal ended = Signal::connect<void>(emitter.get(), "cancelled", counts);
    }
    Signal self;
    self = Signal::connect<void>(emitter.get(), "cancelled", [&](GCancellable*) {
        ++calls;
        self.disconnect();
    });
    g_signal_emit_by_name(emitter.get(), "cancelled");
    g_signal_emit_by_name(emitter.get(), "cancelled");
    EXPECT_EQ(calls, 3);
    emitter = {};
    kept.disconnect();
}

}  // namespace
}  // namespace quillmar
