#pragma once
#include "platform/FileChoosing.h"

namespace quillmar {

/// The desktop's own dialog for files, before the program's window.
class GtkFileDialogs final : public FileChoosing {
public:
    Task<std::optional<std::filesystem::path>> choose(FileQuestion question) override;
};

}  // namespace quillmar
