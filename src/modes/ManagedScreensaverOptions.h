#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace quillmar {

/// A global shortcut as it was recorded. Two are the same when all of it is.
struct ScreensaverKeyboardShortcut {
    std::uint32_t keyCode = 0;
    std::uint64_t modifierFlags = 0;
    std::string keyLabel;  ///< for people to read

    bool operator==(const ScreensaverKeyboardShortcut&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("keyCode", self.keyCode)
            .required("modifierFlags", self.modifierFlags)
            .required("keyLabel", self.keyLabel);
    }
};

/// When a display's screensaver starts, what stops it and what happens around it.
struct ManagedScreensaverOptions {
    bool startAutomatically = false;
    double startDelaySeconds = 1200;  ///< idle time before an automatic start
    bool pauseAutoStartWhenFullscreenAppIsActive = false;
    bool stopAutomatically = false;  ///< input may stop it
    bool stopOnMouseMove = true;
    bool stopOnMouseClick = true;
    bool stopOnKeyPress = true;
    bool onlyAutoStopWhenAutoStarted = true;
    bool keyboardShortcutEnabled = false;
    std::optional<ScreensaverKeyboardShortcut> keyboardShortcut;
    bool lockOnClose = false;
    bool keepDisplayAwake = false;
    bool alwaysOnTop = true;

    bool operator==(const ManagedScreensaverOptions&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("startAutomatically", self.startAutomatically)
            .required("startDelaySeconds", self.startDelaySeconds)
            .required("pauseAutoStartWhenFullscreenAppIsActive", self.pauseAutoStartWhenFullscreenAppIsActive)
            .required("stopAutomatically", self.stopAutomatically)
            .required("stopOnMouseMove", self.stopOnMouseMove)
            .required("stopOnMouseClick", self.stopOnMouseClick)
            .required("stopOnKeyPress", self.stopOnKeyPress)
            .required("onlyAutoStopWhenAutoStarted", self.onlyAutoStopWhenAutoStarted)
            .required("keyboardShortcutEnabled", self.keyboardShortcutEnabled)
            .optional("keyboardShortcut", self.keyboardShortcut)
            .required("lockOnClose", self.lockOnClose)
            .required("keepDisplayAwake", self.keepDisplayAwake)
            .required("alwaysOnTop", self.alwaysOnTop);
    }
};

}  // namespace quillmar
