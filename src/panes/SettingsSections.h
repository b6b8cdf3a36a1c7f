#pragma once
#include <string_view>

#include "base/Localization.h"
#include "settings/records/SettingsSection.h"

namespace quillmar {

/// What stands for a section in the sidebar.
struct SettingsSectionRow {
    TextKey label;
    std::string_view iconName;
};
SettingsSectionRow rowOf(SettingsSection section);

}  // namespace quillmar
