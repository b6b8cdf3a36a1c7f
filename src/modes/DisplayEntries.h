#pragma once
#include <algorithm>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace quillmar {

// What the lists of settings per display have in common. A display has at most one entry; one without an
// entry counts as disabled. Entries of displays that are gone stay where they are.

using DisplayIDs = std::set<std::string>;

/// The display's entry, or null.
template <class Entries>
auto* findEntry(Entries& entries, const std::string& displayID) {
    const auto found = std::ranges::find_if(entries, [&](const auto& e) { return e.displayID == displayID; });
    return found == entries.end() ? nullptr : &*found;
}

/// Appends a new entry, disabled, for every display that has none.
template <class Entry>
void ensureEntriesIn(std::vector<Entry>& entries, std::span<const std::string> displayIDs) {
    for (const std::string& id : displayIDs) {
        if (!findEntry(entries, id)) entries.push_back(Entry{.displayID = id});
    }
}

/// Gives the entry a mode of the kind, as the user last had it set up. The mode that it had is kept, so that
/// the way back forgets nothing.
template <class Entry, class Kind>
void selectKindOf(Entry& entry, Kind kind) {
    using Mode = decltype(entry.mode);
    if (entry.mode.kind() == kind) return;
    if (entry.mode.kind() != Kind::disabled) entry.savedModes.insert_or_assign(entry.mode.kind(), entry.mode);
    const auto saved = entry.savedModes.find(kind);
    if (kind == Kind::disabled) {
        entry.mode = Mode{};
    } else {
        entry.mode = saved != entry.savedModes.end() ? saved->second : Mode::defaultMode(kind);
    }
}

}  // namespace quillmar
