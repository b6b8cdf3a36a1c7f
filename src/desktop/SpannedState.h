#pragma once
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/DesktopPicture.h"

namespace quillmar {

/// What one picture over all monitors was composed from, so that the next process knows it too.
struct SpannedState {
    std::string composed;                         ///< the file that this holds for; empty: none
    std::map<std::string, std::string> monitors;  ///< our pictures by the monitors' connectors
    std::string ownFile;  ///< the desktop's own picture, which the other monitors show
    DesktopImageOptions ownOptions;
    /// How the desktop lays it out.
    std::optional<SpannedDesktopPicturing::Layout> ownLayout;
    std::optional<std::string> arrangement;  ///< of the monitors, when it was composed

    /// Reads the file; what is missing or damaged is as good as nothing.
    static SpannedState load(const std::filesystem::path& file);
    /// Throws `std::system_error`.
    void save(const std::filesystem::path& file) const;

    bool operator==(const SpannedState&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("composed", self.composed)
            .required("monitors", self.monitors)
            .required("ownFile", self.ownFile)
            .required("ownOptions", self.ownOptions)
            .optional("ownLayout", self.ownLayout)
            .optional("arrangement", self.arrangement);
    }
};

}  // namespace quillmar
