#include "modes/ManagedScreensaverMode.h"

#include "base/HexColor.h"
#include "base/Text.h"
#include "modes/DefaultMode.h"

namespace quillmar {
namespace {

using Error = ManagedScreensaverValidationError;
using Case = Error::Case;
using Problem = std::optional<ManagedScreensaverModeError>;

constexpr double smallestFont = 24;
constexpr double largestFont = 500;
constexpr double longestDuration = 86399;  // 23:59:59
constexpr int longestSnooze = 60;

bool isColor(std::string_view text) {
    std::string_view plain = trimmed(text);
    while (plain.starts_with('#')) plain.remove_prefix(1);
    while (plain.ends_with('#')) plain.remove_suffix(1);
    return parseHexColor(plain).has_value();
}

bool isStyleSound(const ScreensaverTimeDisplayStyle& style) {
    const bool hasFont = !trimmed(style.fontName).empty();
    const bool hasSize = style.fontSize >= smallestFont && style.fontSize <= largestFont;
    return hasFont && hasSize && isColor(style.backgroundHexColor) && isColor(style.foregroundHexColor);
}

bool isDuration(double seconds) { return seconds >= 1 && seconds <= longestDuration; }
bool isWithin(int value, int low, int high) { return value >= low && value <= high; }

Problem soundProblem(bool isOn, const ScreensaverSoundSettings& sound) {
    const bool isMissing = sound.sound == ScreensaverAlarmSound::custom && !sound.customSoundURL;
    if (isOn && isMissing) return Error(Case::missingCustomSound);
    return std::nullopt;
}

Problem problemOf(const ShadertoyScreensaverSettings& s) {
    const std::string_view shaderID = trimmed(s.shaderID);
    if (shaderID.empty()) return Error(Case::missingShadertoyShaderID);
    if (!isAlphanumeric(shaderID)) return Error(Case::invalidShadertoyShaderID);
    return std::nullopt;
}

// The times are judged even while the alarm is off: switching it on must not uncover a fault.
Problem problemOf(const AlarmClockScreensaverSettings& s) {
    if (!isStyleSound(s.style)) return Error(Case::invalidTimeDisplayStyle);
    const bool isTime = isWithin(s.alarmHour, 0, 23) && isWithin(s.alarmMinute, 0, 59);
    if (!isTime || !isWithin(s.snoozeMinutes, 1, longestSnooze)) return Error(Case::invalidAlarmTime);
    return soundProblem(s.alarmEnabled, s.sound);
}

Problem problemOf(const CountdownTimerScreensaverSettings& s) {
    if (!isStyleSound(s.style)) return Error(Case::invalidTimeDisplayStyle);
    if (!isDuration(s.durationSeconds)) return Error(Case::invalidTimedDuration);
    return soundProblem(s.playSound, s.sound);
}

Problem problemOf(const StopwatchScreensaverSettings& s) {
    if (!isStyleSound(s.style)) return Error(Case::invalidTimeDisplayStyle);
    if (!s.stopAtEnabled) return std::nullopt;
    if (!isDuration(s.stopAtSeconds)) return Error(Case::invalidTimedDuration);
    return soundProblem(s.playSound, s.sound);
}

}  // namespace

std::string errorText(const ManagedScreensaverModeError& error, GeneralLanguage language) {
    return std::visit([&](const auto& held) { return held.message(language); }, error);
}

void raise(const ManagedScreensaverModeError& error) {
    std::visit([](const auto& held) { throw held; }, error);
    std::unreachable();
}

ManagedScreensaverMode ManagedScreensaverMode::defaultMode(ManagedScreensaverModeKind kind) {
    return makeDefaultMode<ManagedScreensaverMode>(kind);
}

std::optional<WallpaperMode> ManagedScreensaverMode::wallpaperMode() const {
    return std::visit(
        []<class Settings>(const Settings& settings) -> std::optional<WallpaperMode> {
            if constexpr (holdsCase<Settings, WallpaperMode::Value>) {
                return WallpaperMode{settings};
            } else {
                return std::nullopt;
            }
        },
        value);
}

std::optional<ManagedScreensaverModeError> ManagedScreensaverMode::validationError(
    FileReadable isReadable) const {
    return std::visit(
        [&]<class Settings>(const Settings& settings) -> Problem {
            if constexpr (holdsCase<Settings, WallpaperMode::Value>) {
                return WallpaperMode{settings}.validationError(isReadable);
            } else {
                return problemOf(settings);
            }
        },
        value);
}

}  // namespace quillmar
