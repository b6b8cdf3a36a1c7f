#pragma once
#include <expected>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>

#include "async/EventBus.h"
#include "async/TaskScope.h"
#include "imports/MediaImport.h"
#include "imports/MediaImportError.h"

namespace quillmar {

using MediaImportSlots = std::set<MediaImportSlot>;

/// Posted after a slot began or ended to import, with those that do so now.
inline constexpr NotificationName<MediaImportSlots> mediaImportsDidChange{"QuillmarMediaImportsDidChange"};

/// One import for each slot: a newer choice replaces an older one, and what was overtaken is never told to
/// anybody and leaves no file. Main thread.
class MediaImportCoordinator {
public:
    /// The URL of the program's own copy, or why there is none.
    using Completion = std::function<void(std::expected<Url, MediaImportError>)>;

    MediaImportCoordinator(MainLoop& loop, EventBus& notifications, MediaImportStoring& storage);

    /// Ends an import of the slot, if there is one, and begins another. `completion` is called once, never
    /// from inside this call, and not at all when the import is cancelled or replaced. From then on the file
    /// is the caller's: what nothing will refer to goes to `cleanup`.
    void startImport(const MediaImportSlot& slot, Url source, MediaImportKind kind, Completion completion);
    /// Ends all imports of a display, or of these slots.
    void cancelImports(const std::string& displayID);
    void cancelImports(const MediaImportSlots& slots);
    /// Removes the imported files among `candidates` that are not in `keeping`: for a draft that was
    /// discarded or replaced, its own files, and those that the saved settings refer to. Other files are left
    /// alone.
    void cleanup(std::span<const Url> candidates, std::span<const Url> keeping);

    /// The slots that import now.
    const MediaImportSlots& importingSlots() const { return importingSlots_; }

private:
    struct Running {
        Uuid generation;
        TaskHandle<void> task;
    };
    struct Order {
        MediaImportSlot slot;
        Uuid generation;
        Url source;
        MediaImportKind kind;
        Completion completion;
    };
    Task<void> run(Order order);
    Task<std::expected<Url, MediaImportError>> imported(const Order& order);
    bool isCurrent(const Order& order) const;
    void forget(const MediaImportSlot& slot);
    void announce();

    EventBus& notifications_;
    MediaImportStoring& storage_;
    MediaImportSlots importingSlots_;
    std::map<MediaImportSlot, Running> running_;
    TaskScope tasks_;
};

}  // namespace quillmar
