#include "panes/SettingsSections.h"

namespace quillmar {

SettingsSectionRow rowOf(SettingsSection section) {
    switch (section) {
        case SettingsSection::general: return {"General"_key, "quillmar-general-symbolic"};
        case SettingsSection::wallpaper: return {"Wallpaper"_key, "quillmar-wallpaper-symbolic"};
        case SettingsSection::backup: return {"Backup / Restore"_key, "quillmar-backup-symbolic"};
        case SettingsSection::about: return {"About"_key, "quillmar-about-symbolic"};
    }
    return {"General"_key, "quillmar-general-symbolic"};
}

}  // namespace quillmar
