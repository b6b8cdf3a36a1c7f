#pragma once
#include <sys/stat.h>

#include <fstream>

#include "fakes/FakeExecutors.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "imports/MediaImportCoordinator.h"
#include "imports/MediaImportRepository.h"
#include "storage/CacheFileLease.h"

namespace quillmar {

/// Imports of real files, whose steps are taken one by one where `jobs` are held.
class MediaImportTest : public ::testing::Test {
protected:
    using Outcome = std::expected<Url, MediaImportError>;

    MediaImportTest() {
        jobs.runsAtOnce = true;
        limits.freeSpaceReserveBytes = 0;
    }
    std::unique_ptr<MediaImportRepository> repository() {
        return std::make_unique<MediaImportRepository>(
            MediaImportRepository::Services{.copying = jobs,
                                            .executor = jobs,
                                            .rendering = rendering,
                                            .cacheFiles = cacheFiles,
                                            .cacheRoot = cache,
                                            .isPlayable = isPlayable,
                                            .limits = limits,
                                            .availableCapacity = [this](const auto&) { return capacity; }});
    }
    std::filesystem::path write(const std::string& name, std::string_view content = "a picture") {
        std::ofstream(folder.path() / name) << content;
        return folder.path() / name;
    }
    static Url urlOf(const std::filesystem::path& file) { return Url::fromFilePath(file); }

    /// How the import of one file ends, with nobody in its way.
    Outcome import(Url source, MediaImportKind kind = MediaImportKind::image) {
        const auto files = repository();
        MediaImportCoordinator coordinator(loop, notifications, *files);
        std::optional<Outcome> result;
        coordinator.startImport({.displayID = "display:a"}, std::move(source), kind,
                                [&](Outcome outcome) { result = std::move(outcome); });
        loop.settle();
        return *result;
    }
    /// The names of all files of the cache, with their folders.
    std::vector<std::string> cached() const {
        std::vector<std::string> names;
        std::error_code isMissing;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(cache, isMissing)) {
            if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(cache));
        }
        std::ranges::sort(names);
        return names;
    }

    TemporaryFolder folder;
    std::filesystem::path cache = folder.path() / "Cache";
    VirtualLoop loop;
    HeldExecutor jobs;
    FakePictureRendering rendering;
    CacheFileProtection cacheFiles;
    EventBus notifications;
    MediaImportLimits limits;
    MediaImportRepository::VideoCheck isPlayable;
    std::optional<std::int64_t> capacity;
};

}  // namespace quillmar
