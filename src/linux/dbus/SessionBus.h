#pragma once
#include <gio/gio.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "async/Task.h"
#include "linux/glib/Ref.h"

namespace quillmar {

/// The name that the running program has on the session bus.
inline constexpr const char* quillmarBusName = "com.quillmar.Quillmar";

using Bus = Ref<GDBusConnection>;

/// The session bus. Throws `std::runtime_error` when there is none.
Task<Bus> sessionBus();

/// Nobody has answered in time.
class BusSilence final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The session bus, or `BusSilence` when that takes longer.
Task<Bus> sessionBusWithin(Duration limit);

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

/// The other side's refusal, with the name that it gives its error: "org.xfce.Xfconf.Error.ReadOnly".
class BusRefusal final : public std::runtime_error {
public:
    BusRefusal(std::string name, const std::string& message)
        : std::runtime_error(message), name_(std::move(name)) {}
    const std::string& name() const { return name_; }
    /// The bus itself says so: whoever should have answered is not there.
    bool isAbsence() const;

private:
    std::string name_;
};

/// Calls a method of whoever has the name. Throws `BusRefusal`, `BusSilence`, another `std::runtime_error`
/// when the bus is gone, and `CancellationError`.
Task<std::shared_ptr<GVariant>> callOnBus(Bus bus, BusCall call);

/// Whether somebody has that name on the bus now. Throws as `callOnBus`.
Task<bool> hasOwner(Bus bus, std::string name, int timeoutMilliseconds = -1);

}  // namespace quillmar
