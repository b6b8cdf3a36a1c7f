#include <cmath>

#include "base/Enum.h"
#include "modes/ManagedScreensaverSettings.h"

using namespace testing;

namespace quillmar {
namespace {

const auto english = GeneralLanguage::english;
const auto portuguese = GeneralLanguage::portuguese;

template <class Settings>
ManagedScreensaverMode with(auto change) {
    Settings settings;
    change(settings);
    return {settings};
}

std::string problem(const ManagedScreensaverMode& mode) {
    const auto error = mode.validationError();
    return error ? errorText(*error, english) : "";
}

using Alarm = AlarmClockScreensaverSettings;
using Countdown = CountdownTimerScreensaverSettings;
using Stopwatch = StopwatchScreensaverSettings;

ManagedScreensaverMode styled(auto change) {
    return with<Stopwatch>([&](auto& s) { change(s.style); });
}

ManagedScreensaverMode shader(std::string id) {
    return {ShadertoyScreensaverSettings{.shaderID = std::move(id)}};
}

TEST(ScreensaverValidationTest, kindsThatOnlyScreensaversHaveSayWhatIsWrong) {
    const std::string missingShader = "Enter a Shadertoy shader ID.";
    const std::string invalidShader = "A Shadertoy shader ID can contain only letters and numbers.";
    const std::string style = "Choose valid clock colors, a font, and a font size from 24 to 500 points.";
    const std::string time = "Choose a valid alarm time.";
    const std::string duration = "Set a duration between one second and 23:59:59.";
    const std::string sound = "Choose a custom sound file or select a built-in sound.";
    const auto custom = ScreensaverAlarmSound::custom;
    const std::vector<std::pair<ManagedScreensaverMode, std::string>> rows = {
        {shader(" \n"), missingShader},
        {shader("Xs-Wt"), invalidShader},
        {shader("Xs Wt"), invalidShader},
        {styled([](auto& s) { s.fontName = " "; }), style},
        {styled([](auto& s) { s.fontSize = 23.9; }), style},
        {styled([](auto& s) { s.fontSize = 500.1; }), style},
        {styled([](auto& s) { s.fontSize = std::nan(""); }), style},
        {styled([](auto& s) { s.backgroundHexColor = "#12345"; }), style},
        {styled([](auto& s) { s.foregroundHexColor = "12345G"; }), style},
        {with<Alarm>([](auto& s) {
             s.style.fontName = "";
             s.alarmHour = 24;
         }),
         style},
        {with<Countdown>([](auto& s) { s.style.fontName = ""; }), style},
        {with<Alarm>([](auto& s) { s.alarmHour = 24; }), time},
        {with<Alarm>([](auto& s) { s.alarmMinute = -1; }), time},
        {with<Alarm>([](auto& s) { s.snoozeMinutes = 0; }), time},
        {with<Alarm>([](auto& s) { s.snoozeMinutes = 61; }), time},
        {with<Alarm>([=](auto& s) {
             s.alarmEnabled = true;
             s.sound.sound = custom;
         }),
         sound},
        {with<Countdown>([](auto& s) { s.durationSeconds = 0.5; }), duration},
        {with<Countdown>([](auto& s) { s.durationSeconds = 86400; }), duration},
        {with<Countdown>([](auto& s) { s.durationSeconds = INFINITY; }), duration},
        {with<Countdown>([](auto& s) { s.durationSeconds = std::nan(""); }), duration},
        {with<Countdown>([=](auto& s) { s.sound.sound = custom; }), sound},
        {with<Stopwatch>([](auto& s) {
             s.stopAtEnabled = true;
             s.stopAtSeconds = 0;
         }),
         duration},
        {with<Stopwatch>([=](auto& s) {
             s.stopAtEnabled = true;
             s.sound.sound = custom;
         }),
         sound},
    };
    for (const auto& [mode, text] : rows) EXPECT_EQ(problem(mode), text);
}

TEST(ScreensaverValidationTest, whatIsSwitchedOffIsNotAskedFor) {
    const auto custom = ScreensaverAlarmSound::custom;
    const std::vector<ManagedScreensaverMode> modes = {
        {},
        shader(" XsBXWt1\n"),
        styled([](auto& s) {
            s.fontSize = 24;
            s.backgroundHexColor = " #aBcDeF ";
        }),
        styled([](auto& s) {
            s.fontSize = 500;
            s.foregroundHexColor = "##abcdef#";
        }),
        with<Alarm>([=](auto& s) {
            s.snoozeMinutes = 60;
            s.alarmHour = 23;
            s.alarmMinute = 59;
            s.sound.sound = custom;
        }),
        with<Countdown>([=](auto& s) {
            s.durationSeconds = 1;
            s.playSound = false;
            s.sound.sound = custom;
        }),
        with<Countdown>([=](auto& s) {
            s.durationSeconds = 86399;
            s.sound = {custom, Url::fromFilePath("/a.ogg"), {}};
        }),
        with<Stopwatch>([=](auto& s) {
            s.stopAtSeconds = 0;
            s.sound.sound = custom;
        }),
    };
    for (const ManagedScreensaverMode& mode : modes) EXPECT_EQ(problem(mode), "") << enumName(mode.kind());
}

TEST(ScreensaverValidationTest, sharedKindsFailAsTheWallpaperDoes) {
    const ManagedScreensaverMode mode{ImagePresentationSettings{}};
    EXPECT_EQ(problem(mode), "Choose an image for this mode.");
    EXPECT_THROW(raise(*mode.validationError()), WallpaperApplicationError);
    EXPECT_THROW(raise(*shader("").validationError()), ManagedScreensaverValidationError);
}

class ScreensaverApplyTest : public Test {
protected:
    DisplayManagedScreensaverSettings& add(const std::string& id) {
        return settings.displays.emplace_back(DisplayManagedScreensaverSettings{.displayID = id});
    }
    DisplayManagedScreensaverSettings& addWithShortcut(const std::string& id, std::uint32_t keyCode) {
        auto& entry = add(id);
        entry.options.keyboardShortcutEnabled = true;
        entry.options.keyboardShortcut = {keyCode, 0, "K"};
        return entry;
    }
    std::optional<ScreensaverApplyIssue> issue(GeneralLanguage language = english) const {
        return settings.firstApplyIssue(names, language);
    }

    ManagedScreensaverSettings settings;
    std::map<std::string, std::string> names = {{"a", "Left"}, {"b", "Right"}, {"nameless", ""}};
};

TEST_F(ScreensaverApplyTest, anAutomaticStartNeedsADelayThatCanBe) {
    auto& options = add("a").options;
    options.startDelaySeconds = 59;
    EXPECT_EQ(issue(), std::nullopt);
    options.startAutomatically = true;
    for (const double delay : {59.0, 86400.0, double(INFINITY), std::nan("")}) {
        options.startDelaySeconds = delay;
        EXPECT_EQ(issue()->message, "Set the automatic start delay between one minute and 23:59:59.");
    }
    for (const double delay : {60.0, 86399.0}) {
        options.startDelaySeconds = delay;
        EXPECT_EQ(issue(), std::nullopt);
    }
}

TEST_F(ScreensaverApplyTest, aShortcutBelongsToOneConnectedDisplay) {
    addWithShortcut("gone", 1);
    addWithShortcut("a", 1);
    addWithShortcut("b", 2);
    EXPECT_EQ(issue(), std::nullopt);
    settings.displays.back().options.keyboardShortcut->keyCode = 1;
    EXPECT_EQ(issue(), (ScreensaverApplyIssue{"b", "That keyboard shortcut is already assigned to Left."}));
    EXPECT_EQ(issue(portuguese)->message, "Esse atalho de teclado já está atribuído a Left.");
    names["a"] = "";
    EXPECT_EQ(issue()->message, "That keyboard shortcut is already assigned to another display.");
    settings.displays[1].options.keyboardShortcutEnabled = false;
    EXPECT_EQ(issue(), std::nullopt);
    settings.displays.back().options.keyboardShortcut.reset();
    EXPECT_EQ(issue()->message, "Record a keyboard shortcut or turn off the shortcut option.");
}

TEST_F(ScreensaverApplyTest, theFirstConnectedDisplayWithAnIssueIsNamed) {
    add("gone").mode = shader("");
    add("a");
    auto& broken = add("b");
    broken.mode = shader("-");
    broken.options.keyboardShortcutEnabled = true;
    EXPECT_EQ(issue(),
              (ScreensaverApplyIssue{"b", "A Shadertoy shader ID can contain only letters and numbers."}));
}

}  // namespace
}  // namespace quillmar
