#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "base/Uuid.h"

namespace quillmar {

/// A monitor that is plugged in now.
struct PluggedMonitor {
    std::string connector;
    std::string description;  ///< what it says of itself wherever it is plugged in; empty: nothing
};

/// Which monitor has which lasting identity. It follows from what the monitor says of itself, so that it
/// keeps it on another connector. Of several that say the same, the first has that identity and the others
/// are told apart by the connector that they were first seen on. What was given is remembered, so that
/// nobody's identity changes because another monitor comes or goes; a monitor that says nothing has its
/// connector's.
class OutputIdentities {
public:
    OutputIdentities() = default;
    /// Reads `text()` back; lines that make no sense are left out.
    explicit OutputIdentities(std::string_view text);
    std::string text() const;

    /// One for each monitor, in their order, no two the same. Remembers what is new.
    std::vector<Uuid> identify(const std::vector<PluggedMonitor>& monitors);

    bool operator==(const OutputIdentities&) const = default;

private:
    struct Known {
        std::string description;
        std::string connector;  ///< where it was seen last
        Uuid uuid;
        bool operator==(const Known&) const = default;
    };
    Known& claim(const PluggedMonitor& monitor, const std::vector<Uuid>& taken);
    Known& add(const PluggedMonitor& monitor);
    bool isGiven(const Uuid& uuid) const;

    std::vector<Known> known_;  ///< those with one description in the order in which they were first seen
};

}  // namespace quillmar
