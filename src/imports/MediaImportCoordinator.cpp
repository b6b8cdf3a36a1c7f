#include "imports/MediaImportCoordinator.h"

#include <algorithm>

#include "storage/CacheFileProtection.h"

namespace quillmar {
namespace {

template <class T>
using Outcome = std::expected<T, MediaImportError>;

/// The failure of a step as one that its user can be told; a cancellation stays one.
template <class T>
Task<Outcome<T>> outcomeOf(Url source, Task<T> step) {
    try {
        co_return co_await std::move(step);
    } catch (const CancellationError&) {
        throw;
    } catch (const MediaImportError& error) {
        co_return std::unexpected(error);
    } catch (...) {
        co_return std::unexpected(MediaImportError::importFailed(source, std::current_exception()));
    }
}

}  // namespace

MediaImportCoordinator::MediaImportCoordinator(MainLoop& loop, EventBus& notifications,
                                               MediaImportStoring& storage)
    : notifications_(notifications), storage_(storage), tasks_(loop) {}

void MediaImportCoordinator::startImport(const MediaImportSlot& slot, Url source, MediaImportKind kind,
                                         Completion completion) {
    if (const auto former = running_.find(slot); former != running_.end()) former->second.task.cancel();
    const Uuid generation = Uuid::random();
    running_[slot] = {generation,
                      tasks_.start(run({slot, generation, std::move(source), kind, std::move(completion)}))};
    if (importingSlots_.insert(slot).second) announce();
}

Task<void> MediaImportCoordinator::run(Order order) {
    const Outcome<Url> outcome = co_await imported(order);
    if (!isCurrent(order)) co_return;
    order.completion(outcome);
    // A completion may begin the slot's next import.
    if (isCurrent(order)) forget(order.slot);
}

/// The import may be overtaken in each wait, and then takes back what it has done. Whoever overtook it has
/// cleared the slot already.
Task<std::expected<Url, MediaImportError>> MediaImportCoordinator::imported(const Order& order) {
    const auto prepared = co_await outcomeOf(order.source, storage_.prepare(order.source, order.kind));
    if (!prepared) co_return std::unexpected(prepared.error());
    if (!isCurrent(order)) {
        co_await storage_.discard(*prepared);
        throw CancellationError();
    }
    const auto committed = co_await outcomeOf(order.source, storage_.commit(*prepared));
    if (!committed) co_return std::unexpected(committed.error());
    if (!isCurrent(order)) {
        co_await storage_.releaseClaim(*committed);
        throw CancellationError();
    }
    co_await storage_.acceptClaim(*committed);
    if (!isCurrent(order)) {
        if (committed->createdFile) co_await storage_.removeImportedFile(committed->file);
        throw CancellationError();
    }
    co_return Url::fromFilePath(committed->file);
}

void MediaImportCoordinator::cancelImports(const std::string& displayID) {
    MediaImportSlots ofDisplay;
    for (const auto& [slot, running] : running_) {
        if (slot.displayID == displayID) ofDisplay.insert(slot);
    }
    cancelImports(ofDisplay);
}

void MediaImportCoordinator::cancelImports(const MediaImportSlots& slots) {
    bool didChange = false;
    for (const MediaImportSlot& slot : slots) {
        const auto found = running_.find(slot);
        if (found == running_.end()) continue;
        found->second.task.cancel();
        running_.erase(found);
        didChange |= importingSlots_.erase(slot) > 0;
    }
    if (didChange) announce();
}

void MediaImportCoordinator::cleanup(std::span<const Url> candidates, std::span<const Url> keeping) {
    std::set<std::filesystem::path> kept;
    for (const Url& url : keeping) {
        if (const auto file = url.filePath()) kept.insert(resolvedPath(*file));
    }
    for (const Url& url : candidates) {
        const auto file = url.filePath();
        if (file && !kept.contains(resolvedPath(*file))) tasks_.spawn(storage_.removeImportedFile(*file));
    }
}

bool MediaImportCoordinator::isCurrent(const Order& order) const {
    const auto found = running_.find(order.slot);
    return found != running_.end() && found->second.generation == order.generation;
}

void MediaImportCoordinator::forget(const MediaImportSlot& slot) {
    running_.erase(slot);
    importingSlots_.erase(slot);
    announce();
}

void MediaImportCoordinator::announce() { notifications_.post(mediaImportsDidChange, importingSlots_); }

}  // namespace quillmar
