#include "linux/glib/GlibMainLoop.h"

#include <glib.h>

#include "diagnostics/Log.h"

namespace quillmar {

struct GlibMainLoop::Source {
    GSource base;
    GlibMainLoop* loop;

    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        reinterpret_cast<Source*>(source)->loop->dispatch();
        return G_SOURCE_CONTINUE;
    }
    static GSourceFuncs* functions() {
        static GSourceFuncs functions{nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};
        return &functions;
    }
};

GlibMainLoop::GlibMainLoop() : source_(g_source_new(Source::functions(), sizeof(Source))) {
    reinterpret_cast<Source*>(source_)->loop = this;
    g_source_set_static_name(source_, "quillmar main loop");
    g_source_attach(source_, nullptr);
}

GlibMainLoop::~GlibMainLoop() {
    g_source_destroy(source_);
    g_source_unref(source_);
}

MainLoop::Ticket GlibMainLoop::callAt(TimePoint when, Callback callback) {
    const std::lock_guard lock(mutex_);
    const Ticket ticket = queue_.add(std::max(when, now()), std::move(callback));
    arm();
    return ticket;
}

void GlibMainLoop::forget(Ticket ticket) {
    Callback forgotten;  // dies after the lock is released: what it owns may forget something too
    const std::lock_guard lock(mutex_);
    forgotten = queue_.remove(ticket);
    arm();
}

void GlibMainLoop::post(Callback callback) {
    const std::lock_guard lock(mutex_);
    queue_.add(now(), std::move(callback));
    arm();
}

void GlibMainLoop::taskFailed(std::exception_ptr failure) {
    if (taskFailureHandler_) {
        taskFailureHandler_(failure);
    } else {
        logError("A background task failed.", "lifecycle", failure);
    }
}

void GlibMainLoop::run() {
    while (!hasQuit_) g_main_context_iteration(nullptr, TRUE);
}

void GlibMainLoop::quit() {
    hasQuit_ = true;
    g_main_context_wakeup(nullptr);
}

/// Runs what was queued before it began and is due by then; what that queues waits for the next turn, so that
/// GTK is never starved.
void GlibMainLoop::dispatch() {
    std::uint64_t serial = 0;
    {
        const std::lock_guard lock(mutex_);
        isDispatching_ = true;
        serial = queue_.nextSerial();
    }
    const TimePoint began = now();
    while (Callback callback = takeDue(began, serial)) {
        try {
            callback();
        } catch (...) {  // nothing may be thrown through GLib
            taskFailed(std::current_exception());
        }
    }
    const std::lock_guard lock(mutex_);
    isDispatching_ = false;
    arm();
}

MainLoop::Callback GlibMainLoop::takeDue(TimePoint now, std::uint64_t serial) {
    const std::lock_guard lock(mutex_);
    return queue_.takeDue(now, serial);
}

void GlibMainLoop::arm() {
    if (isDispatching_) return;  // the end of the dispatch arms
    const auto due = queue_.firstDue();
    if (due == armed_) return;
    armed_ = due;
    // Rounded up: a source that is ready a moment too early would find nothing to do and spin.
    const auto microseconds =
        due ? std::chrono::ceil<std::chrono::microseconds>(due->time_since_epoch()).count() : -1;
    g_source_set_ready_time(source_, microseconds);
}

}  // namespace quillmar
