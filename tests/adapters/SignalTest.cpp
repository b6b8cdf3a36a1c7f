#include "linux/glib/Signal.h"

#include <gio/gio.h>
#include <gmock/gmock.h>

#include "linux/glib/Ref.h"

namespace quillmar {
namespace {

TEST(SignalTest, aSignalEndsWithItsGuardAndWithItsEmitter) {
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
