#pragma once
#include <gio/gio.h>

#include <memory>

#include "async/Task.h"
#include "linux/glib/Ref.h"

namespace quillmar {

/// The name that the running program has on the session bus.
inline constexpr const char* quillmarBusName = "com.quillmar.Quillmar";

using Bus = Ref<GDBusConnection>;

/// The session bus. Throws `std::runtime_error` when there is none.
Task<Bus> sessionBus();

/// A method call on the bus.
struct BusCall {
    const char* destination;
    const char* path;
    const char* interface;
    const char* method;
    GVariant* arguments;           ///< floating, or held by the caller until the call has begun
    int timeoutMilliseconds = -1;  ///< the library's own when negative, G_MAXINT for none
    bool startsProgram = false;    ///< where nobody has the name, but the session knows who could
};

/// Calls a method of whoever has the name. Throws `std::runtime_error`.
Task<std::shared_ptr<GVariant>> callOnBus(Bus bus, BusCall call);

}  // namespace quillmar
