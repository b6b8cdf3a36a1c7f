#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/Screens.h"

namespace quillmar {

/// The file that each screen was given last, for desktops that forget it with the session or the plug.
class LastShownPictures {
public:
    /// Kept in `file`, whose folder is made when needed.
    explicit LastShownPictures(std::filesystem::path file);

    /// What cannot be kept is logged, and forgotten with the process.
    void note(const Screen& screen, const std::filesystem::path& picture);
    /// Nothing when there was none, or it is no longer there.
    std::optional<std::filesystem::path> pictureOf(const Screen& screen) const;

private:
    std::filesystem::path file_;
    std::map<std::string, std::string> pictures_;  ///< by what tells the monitor, or else the connector
};

}  // namespace quillmar
