#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "async/Executor.h"
#include "async/TaskLock.h"
#include "base/Url.h"
#include "platform/DesktopPicture.h"
#include "storage/CacheSweep.h"

namespace quillmar {

/// What a display showed before it was given its first picture.
struct FormerPicture {
    Url fileURL = Url::fromFilePath("/");
    DesktopImageOptions options;
    static void describe(auto& self, auto& io) {
        io.required("fileURL", self.fileURL).required("options", self.options);
    }
};

/// The pictures that displays get back when they are no longer ours, by display. Main thread; the file is
/// read and written on the executor. What cannot be kept is logged, and forgotten with the process.
class FormerPictures {
public:
    /// Kept in `folder`, which is made when needed and holds nothing else. What lies elsewhere in
    /// `programFolder` is made by the program itself.
    FormerPictures(std::filesystem::path folder, std::filesystem::path programFolder, Executor& executor)
        : folder_(std::move(folder)), programFolder_(std::move(programFolder)), executor_(executor) {}

    /// Pictures of our own are nobody's former ones, but for what was captured from the screen, which is
    /// copied: it would be swept.
    Task<void> keep(std::string displayID, std::filesystem::path file, DesktopImageOptions options);
    /// Nothing when there is none, or its file is gone.
    Task<std::optional<FormerPicture>> find(std::string displayID);
    Task<void> forget(std::string displayID);
    /// Removes the copies that no display gets back and none of `shown` is.
    Task<void> removeForgotten(FilePaths shown);

private:
    using Pictures = std::map<std::string, FormerPicture>;  ///< by display
    Task<void> load();
    Task<void> save();
    std::filesystem::path file() const { return folder_ / "former.json"; }

    std::filesystem::path folder_;
    std::filesystem::path programFolder_;
    Executor& executor_;
    std::optional<Pictures> pictures_;  ///< absent until they are read
    TaskLock order_;
};

}  // namespace quillmar
