#include "linux/glib/Readable.h"

#include <glib-unix.h>

#include <utility>

namespace quillmar {

void readable::suspend(std::coroutine_handle<> frame, const TaskContext& context) {
    frame_ = frame;
    source_ = g_unix_fd_source_new(descriptor_, GIOCondition(G_IO_IN | G_IO_HUP | G_IO_ERR));
    const GUnixFDSourceFunc isReady = [](int, GIOCondition, gpointer data) -> gboolean {
        auto* self = static_cast<readable*>(data);
        self->unwatch();
        self->frame_.resume();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(source_, G_SOURCE_FUNC(isReady), this, nullptr);
    g_source_attach(source_, nullptr);
    // The task that asks for the stop is still on the stack here, so this one is woken at a later turn.
    onStop_.emplace(context.stop, [this, loop = context.loop] {
        wasCancelled_ = true;
        unwatch();
        wakeUp_ = Scheduled(*loop, [this] { frame_.resume(); });
    });
}

void readable::await_resume() {
    onStop_.reset();
    if (wasCancelled_) throw CancellationError();
}

void readable::unwatch() {
    GSource* source = std::exchange(source_, nullptr);
    if (!source) return;
    g_source_destroy(source);
    g_source_unref(source);
}

}  // namespace quillmar
