#pragma once
#include <optional>
#include <string>

#include "base/Url.h"

namespace quillmar {

/// A version newer than this one.
struct AvailableUpdate {
    std::string version;
    std::optional<Url> page;          ///< that tells of it
    std::optional<std::string> file;  ///< the download, where there is one; its signature was verified

    bool operator==(const AvailableUpdate&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("version", self.version).optional("page", self.page).optional("file", self.file);
    }
};

}  // namespace quillmar
