#pragma once
#include "platform/SettingsContent.h"
#include "settings/records/GeneralSettings.h"

namespace quillmar {

constexpr WindowTheme themeOf(AppTheme theme) {
    switch (theme) {
        case AppTheme::automatic: return WindowTheme::automatic;
        case AppTheme::light: return WindowTheme::light;
        case AppTheme::dark: return WindowTheme::dark;
    }
    return WindowTheme::automatic;
}

}  // namespace quillmar
