#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "async/Executor.h"
#include "async/TaskLock.h"
#include "platform/Screens.h"

namespace quillmar {

/// The file that each screen was given last, for desktops that forget it with the session or the plug. Main
/// thread; the file is read and written on the executor.
class LastShownPictures {
public:
    /// Kept in `file`, whose folder is made when needed.
    LastShownPictures(std::filesystem::path file, Executor& executor)
        : file_(std::move(file)), executor_(executor) {}

    /// What cannot be kept is logged, and forgotten with the process.
    Task<void> note(Screen screen, std::filesystem::path picture);
    /// Nothing when there was none, or it is no longer there.
    Task<std::optional<std::filesystem::path>> pictureOf(Screen screen);

private:
    using Pictures = std::map<std::string, std::string>;  ///< by `keyOf` of the screen
    Task<void> load();

    std::filesystem::path file_;
    Executor& executor_;
    std::optional<Pictures> pictures_;  ///< absent until they are read
    TaskLock order_;
};

/// What tells the screen's monitor, or else its connector.
std::string screenKey(const Screen& screen);

}  // namespace quillmar
