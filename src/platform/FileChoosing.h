#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "async/Task.h"

namespace quillmar {

/// A question after a file or a folder. The texts are in the user's language.
struct FileQuestion {
    struct Type {
        std::string name;
        std::vector<std::string> patterns;  ///< such as "*.json"
    };
    enum class Purpose { open, openFolder, save };
    Purpose purpose = Purpose::open;
    std::string title;
    std::string accept;  ///< what the button says that takes the file
    std::string cancel;
    std::string suggestedName = {};  ///< to save under
    std::vector<Type> types = {};    ///< what is offered; the first one at once
};

/// Lets the user choose files. Main thread.
class FileChoosing {
public:
    virtual ~FileChoosing() = default;
    /// The chosen file or folder; for one to save, the user has agreed to its being replaced. Empty when the
    /// user chose none. The dialog goes away when the waiting task is cancelled or destroyed.
    virtual Task<std::optional<std::filesystem::path>> choose(FileQuestion question) = 0;
};

}  // namespace quillmar
