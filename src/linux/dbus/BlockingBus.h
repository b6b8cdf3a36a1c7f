#pragma once
#include <stdexcept>
#include <string>

#include "linux/dbus/SessionBus.h"

namespace quillmar {

// The session bus for questions whose answer the caller cannot go on without. Every call waits for it, for
// five seconds at the most.

/// The other side's refusal, with the name that it gives its error: "org.xfce.Xfconf.Error.ReadOnly".
class BusRefusal final : public std::runtime_error {
public:
    BusRefusal(std::string name, const std::string& message)
        : std::runtime_error(message), name_(std::move(name)) {}
    const std::string& name() const { return name_; }

private:
    std::string name_;
};

/// The session bus; an empty reference when there is none.
Bus blockingSessionBus();

/// Calls a method and returns the tuple that it answers with; starts the service when the bus knows how.
/// Throws `BusRefusal`, and another `std::runtime_error` when there is no answer.
Owned<GVariant> callAndWait(const Bus& bus, const BusCall& call);

/// Whether somebody has that name on the bus now.
bool hasOwner(const Bus& bus, const char* name);

}  // namespace quillmar
