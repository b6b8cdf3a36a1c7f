#pragma once
#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

#include "async/Executor.h"
#include "async/WallClock.h"
#include "history/BannedPictures.h"
#include "history/PictureHistory.h"

namespace quillmar {

/// Remembers across starts what displays showed and what shall not come again: the files "history" and
/// "trash" of the state folder. Main thread. What cannot be kept is logged, and forgotten with the process.
class PictureMemory {
public:
    /// `files` does one job after the other, and outlives this, as the clock does.
    PictureMemory(Executor& files, std::filesystem::path folder, const WallClock& clock)
        : files_(files), folder_(std::move(folder)), clock_(clock) {}

    /// Reads the files, which changes nothing on screen. Until then nothing is known but what came meanwhile.
    Task<void> load();
    const PictureHistory& history() const { return history_; }
    /// The display shows this; none: nothing that can be shown again.
    void shows(const std::string& displayID, std::optional<ShownPicture> picture);
    /// It shows one of its former pictures again.
    void returned(const std::string& displayID, const ShownPicture& picture);
    /// A former picture that is gone.
    void forget(const std::string& displayID, const ShownPicture& picture) {
        history_.forget(displayID, picture);
    }

    const BannedPictures& banned() const { return banned_; }
    /// Never again, unless somebody asks for the file by its name. The file itself stays.
    void ban(const Url& fileURL);
    /// Waits until the latest of them is on disk. Throws `FileError` where it cannot be: it comes again with
    /// the next start.
    Task<void> bansAreKept() const;

private:
    void keep(const std::string& displayID);
    std::optional<ShownPicture> bannedNow(const std::string& displayID) const;

    Executor& files_;
    std::filesystem::path folder_;
    const WallClock& clock_;
    bool isLoaded_ = false;
    /// What came before the files were read.
    std::vector<std::function<void()>> waiting_;
    std::size_t written_ = 0;  ///< lines of the history since it was written anew
    /// Why the latest banned picture is not on disk. Touched by the jobs of `files_` alone.
    std::shared_ptr<std::exception_ptr> banFailure_ = std::make_shared<std::exception_ptr>();
    PictureHistory history_;
    BannedPictures banned_;
};

}  // namespace quillmar
