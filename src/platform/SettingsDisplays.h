#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/PixelBuffer.h"
#include "base/PixelRect.h"

namespace quillmar {

/// A small picture in a pane. Two of one version are the same, so that only what has changed is drawn again.
struct SettingsPicture {
    SharedPixels pixels;  ///< null while there is none
    std::uint64_t version = 0;

    bool operator==(const SettingsPicture& other) const { return version == other.version; }
};

/// The displays as they stand beside each other, to choose one by. The choice comes as an intent with the
/// arrangement's ID for the row and the display's for the value.
struct SettingsArrangement {
    struct Display {
        std::string id;
        std::string name;
        /// In the layout's own units, origin at the top left; drawn to scale. Empty for one that is not
        /// connected.
        PixelRect bounds = {};
        bool isPrimary = false;
        bool isSelected = false;
        bool hasUnsavedDraft = false;
        bool hasFailed = false;  ///< it does not show what it should
        SettingsPicture thumbnail = {};
        std::string accessibleName;  ///< says all of the above

        bool operator==(const Display&) const = default;
    };
    std::string id;
    std::string title;
    std::vector<Display> connected;
    std::string absentTitle;
    std::vector<Display> absent;  ///< have settings, and are not connected

    bool operator==(const SettingsArrangement&) const = default;
};

/// What a display would show if the draft were applied.
struct SettingsPreview {
    std::string title;
    PixelSize canvas;  ///< the display's: the picture has its proportions, and so has the place held for it
    SettingsPicture picture = {};
    std::string text = {};  ///< stands where there is no picture: why not
    bool isBusy = false;    ///< a picture is being made; the former one, if any, still stands

    bool operator==(const SettingsPreview&) const = default;
};

/// A button at the foot of a pane. Pressed it comes as an intent with its ID for the row.
struct SettingsPaneAction {
    std::string id;
    std::string label;
    bool isSuggested = false;  ///< the one that the pane is there for
    bool isDestructive = false;
    bool isEnabled = true;

    bool operator==(const SettingsPaneAction&) const = default;
};

}  // namespace quillmar
