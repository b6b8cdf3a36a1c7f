#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "base/Url.h"

namespace quillmar {

/// How the time is drawn.
struct ScreensaverTimeDisplayStyle {
    std::string backgroundHexColor = "#000000";
    std::string foregroundHexColor = "#FFFFFF";
    std::string fontName = "Menlo";
    double fontSize = 100;  ///< points

    bool operator==(const ScreensaverTimeDisplayStyle&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("backgroundHexColor", self.backgroundHexColor)
            .required("foregroundHexColor", self.foregroundHexColor)
            .required("fontName", self.fontName)
            .required("fontSize", self.fontSize);
    }
};

/// The sounds that the program brings along, and one of the user's own.
enum class ScreensaverAlarmSound { beep, buzz, ring, siren, custom };
constexpr auto enumNames(ScreensaverAlarmSound) {
    return std::to_array<std::string_view>({"beep", "buzz", "ring", "siren", "custom"});
}

/// What is played when the time has come.
struct ScreensaverSoundSettings {
    ScreensaverAlarmSound sound = ScreensaverAlarmSound::beep;
    std::optional<Url> customSoundURL;         ///< file URL, for `custom`
    std::optional<Bytes> customSoundBookmark;  ///< stored grant for `customSoundURL`

    bool operator==(const ScreensaverSoundSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("sound", self.sound)
            .optional("customSoundURL", self.customSoundURL)
            .optional("customSoundBookmark", self.customSoundBookmark);
    }
};

/// The time of day, with an alarm at a time of day.
struct AlarmClockScreensaverSettings {
    ScreensaverTimeDisplayStyle style;
    bool alarmEnabled = false;
    int alarmHour = 8;
    int alarmMinute = 0;
    bool blinkScreen = false;
    bool snoozeEnabled = false;
    int snoozeMinutes = 9;
    ScreensaverSoundSettings sound;

    bool operator==(const AlarmClockScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("style", self.style)
            .required("alarmEnabled", self.alarmEnabled)
            .required("alarmHour", self.alarmHour)
            .required("alarmMinute", self.alarmMinute)
            .required("blinkScreen", self.blinkScreen)
            .required("snoozeEnabled", self.snoozeEnabled)
            .required("snoozeMinutes", self.snoozeMinutes)
            .required("sound", self.sound);
    }
};

/// Counts down to zero.
struct CountdownTimerScreensaverSettings {
    ScreensaverTimeDisplayStyle style;
    double durationSeconds = 600;
    bool startImmediately = true;
    bool blinkScreen = true;
    bool playSound = true;
    ScreensaverSoundSettings sound;

    bool operator==(const CountdownTimerScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("style", self.style)
            .required("durationSeconds", self.durationSeconds)
            .required("startImmediately", self.startImmediately)
            .required("blinkScreen", self.blinkScreen)
            .required("playSound", self.playSound)
            .required("sound", self.sound);
    }
};

/// Counts up, to a stop where one is set.
struct StopwatchScreensaverSettings {
    ScreensaverTimeDisplayStyle style;
    bool startImmediately = false;
    bool stopAtEnabled = false;
    double stopAtSeconds = 600;
    bool blinkScreen = true;
    bool playSound = true;
    ScreensaverSoundSettings sound;

    bool operator==(const StopwatchScreensaverSettings&) const = default;
    static void describe(auto& self, auto& io) {
        io.required("style", self.style)
            .required("startImmediately", self.startImmediately)
            .required("stopAtEnabled", self.stopAtEnabled)
            .required("stopAtSeconds", self.stopAtSeconds)
            .required("blinkScreen", self.blinkScreen)
            .required("playSound", self.playSound)
            .required("sound", self.sound);
    }
};

}  // namespace quillmar
