#include "linux/glib/Gio.h"

namespace quillmar {

/// Outlives the waiting task: GIO calls back in any case.
struct gio::Flight {
    gio* waiter;
    std::coroutine_handle<> frame;
    Ref<GCancellable> cancellable;
};

gio::~gio() {
    onStop_.reset();
    if (!flight_) return;
    flight_->waiter = nullptr;
    g_cancellable_cancel(flight_->cancellable.get());
}

void gio::suspend(std::coroutine_handle<> frame, std::stop_token stop) {
    flight_ = new Flight{this, frame, Ref<GCancellable>::adopt(g_cancellable_new())};
    onStop_.emplace(std::move(stop),
                    [cancellable = flight_->cancellable] { g_cancellable_cancel(cancellable.get()); });
    start_(flight_->cancellable.get(), &landed, flight_);
}

void gio::landed(GObject*, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Flight> flight(static_cast<Flight*>(data));
    if (!flight->waiter) return;
    flight->waiter->flight_ = nullptr;
    flight->waiter->result_ = Ref<GAsyncResult>::share(result);
    flight->frame.resume();
}

}  // namespace quillmar
