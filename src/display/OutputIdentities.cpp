#include "display/OutputIdentities.h"

#include <algorithm>
#include <optional>

namespace quillmar {

namespace {

/// Settings on disk refer to what follows from it.
constexpr Uuid monitorNamespace({0x6f, 0x1d, 0x0c, 0x5e, 0x92, 0x4b, 0x4c, 0x39, 0xa8, 0x57, 0x2e, 0xd3, 0x84,
                                 0x0b, 0x71, 0xf6});

/// More monitors than anybody meets; those that were met first are forgotten beyond it.
constexpr std::size_t maximumKnown = 256;

/// Takes what stands before the separator off the front; nothing where there is none.
std::optional<std::string_view> takeField(std::string_view& line) {
    const std::size_t end = line.find('\t');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(end + 1);
    return field;
}

}  // namespace

OutputIdentities::OutputIdentities(std::string_view text) {
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const auto identity = takeField(line);
        const auto connector = takeField(line);
        const auto uuid = identity ? Uuid::parse(*identity) : std::nullopt;
        if (!uuid || !connector || line.empty() || isGiven(*uuid) || known_.size() == maximumKnown) continue;
        known_.push_back({std::string(line), std::string(*connector), *uuid});
    }
}

std::string OutputIdentities::text() const {
    std::string text;
    for (const auto& [description, connector, uuid] : known_) {
        text += uuid.lowercaseString() + '\t' + connector + '\t' + description + '\n';
    }
    return text;
}

std::vector<Uuid> OutputIdentities::identify(const std::vector<PluggedMonitor>& monitors) {
    std::vector<Uuid> uuids(monitors.size());
    std::vector<bool> isDone(monitors.size());
    std::vector<Uuid> taken;
    const auto give = [&](std::size_t i, const Uuid& uuid) {
        uuids[i] = uuid;
        isDone[i] = true;
        taken.push_back(uuid);
    };
    // Those that stay where they were go first: a newcomer must not take what is theirs.
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const auto& [connector, description] = monitors[i];
        if (description.empty()) give(i, Uuid::fromName(monitorNamespace, "@" + connector));
        for (const Known& known : known_) {
            if (known.description == description && known.connector == connector) give(i, known.uuid);
        }
    }
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        if (!isDone[i]) give(i, claim(monitors[i], taken).uuid);
    }
    return uuids;
}

/// A known one that is plugged in nowhere else has been moved; without such a one it is new.
OutputIdentities::Known& OutputIdentities::claim(const PluggedMonitor& monitor,
                                                 const std::vector<Uuid>& taken) {
    for (Known& known : known_) {
        if (known.description != monitor.description || std::ranges::count(taken, known.uuid) > 0) continue;
        known.connector = monitor.connector;
        return known;
    }
    return add(monitor);
}

OutputIdentities::Known& OutputIdentities::add(const PluggedMonitor& monitor) {
    if (known_.size() == maximumKnown) known_.erase(known_.begin());
    Uuid uuid = Uuid::fromName(monitorNamespace, monitor.description);
    // The connector's name may be given already, to one that has been plugged in elsewhere since.
    for (std::string name = monitor.description + "@" + monitor.connector; isGiven(uuid); name += "'") {
        uuid = Uuid::fromName(monitorNamespace, name);
    }
    return known_.emplace_back(monitor.description, monitor.connector, uuid);
}

bool OutputIdentities::isGiven(const Uuid& uuid) const {
    return std::ranges::find(known_, uuid, &Known::uuid) != known_.end();
}

}  // namespace quillmar
