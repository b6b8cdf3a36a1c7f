#include "AppDelegateFixture.h"

namespace quillmar {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

struct AuxiliaryWindowsTest : AppDelegateFixture {
    /// As it was before the very first start, with somebody who starts it.
    void startAnew() {
        delegate.reset();
        fs::remove_all(machine.settingsFile().parent_path());
        machine.settingsWindow = {};
        machine.usage.messages.clear();
        log.lines.clear();
        machine.isStartedByPerson = true;
        launch();
    }
    void wish(const std::string& wanted) {
        machine.welcomeWindow.wish(wanted);
        machine.loop.settle();
    }
    void startAgain() {
        machine.runningInstances.onActivate();
        machine.loop.settle();
    }
    bool isStarted() const {
        return std::ranges::any_of(log.lines,
                                   [](const auto& line) { return line.contains("startup completed"); });
    }
};

TEST_F(AuxiliaryWindowsTest, everyWayOutOfTheWelcomeIsCountedOnceAndTheStartGoesOn) {
    struct WayOut {
        std::string wish;
        std::string task;
        std::vector<std::string> opened;
    };
    std::vector<WayOut> ways{{WelcomePage::notNowWish, "skip", {}},
                             {closeWish, "skip", {}},
                             {WelcomePage::openSettingsWish, "settings", {""}}};
    for (const FirstRunChoice& choice : firstRunChoices()) {
        const std::string section(enumName(choice.section));
        ways.push_back({section, std::string(enumName(choice.task)), {section}});
    }
    for (const WayOut& way : ways) {
        startAnew();
        ASSERT_TRUE(machine.welcomeWindow.page) << way.wish;
        EXPECT_FALSE(isStarted()) << way.wish;
        startAgain();
        wish("lunch");
        EXPECT_THAT(machine.settingsWindow.opened, IsEmpty()) << "who starts it again sees the welcome";
        wish(way.wish);
        EXPECT_FALSE(machine.welcomeWindow.page) << way.wish;
        EXPECT_TRUE(isStarted()) << way.wish;
        EXPECT_EQ(machine.settingsWindow.opened, way.opened) << way.wish;
        EXPECT_THAT(std::vector(machine.usage.messages.begin() + 3, machine.usage.messages.begin() + 6),
                    ElementsAre("app_first_install", "welcome_shown", "welcome_task_" + way.task));
    }
    startAgain();
    EXPECT_FALSE(machine.welcomeWindow.page) << "once";
}

TEST_F(AuxiliaryWindowsTest, theWelcomeGivesWayToSettingsAndToTheEnd) {
    startAnew();
    answer({"settings", "about"});
    EXPECT_FALSE(machine.welcomeWindow.page);
    EXPECT_TRUE(isStarted());
    EXPECT_THAT(machine.usage.messages, Contains("welcome_task_settings"));
    EXPECT_THAT(machine.settingsWindow.opened, ElementsAre("about"));

    startAnew();
    quitBySystem();
    EXPECT_THAT(machine.process.exits, ElementsAre(0));
    EXPECT_FALSE(isStarted());
}

TEST_F(AuxiliaryWindowsTest, whoDidNotStartItIsWelcomedWhenTheyCome) {
    launch();
    EXPECT_TRUE(isStarted());
    EXPECT_FALSE(machine.welcomeWindow.page);
    startAgain();
    EXPECT_TRUE(machine.welcomeWindow.page);
    wish(WelcomePage::notNowWish);
    startAgain();
    EXPECT_FALSE(machine.welcomeWindow.page);
    EXPECT_THAT(machine.settingsWindow.opened, ElementsAre(""));
}

TEST_F(AuxiliaryWindowsTest, aWelcomeThatCannotBeShownHoldsNothingUp) {
    machine.welcomeWindow.isMissing = true;
    startAnew();
    EXPECT_TRUE(isStarted());
    EXPECT_THAT(log.lines, Contains(HasSubstr("The welcome could not be shown.")));
    EXPECT_THAT(machine.usage.messages, Not(Contains("welcome_shown")));
}

TEST_F(AuxiliaryWindowsTest, theChangelogComesOnceForEachUpdateWhereItIsWanted) {
    AppSettings settings = twoColors();
    for (const bool isWanted : {true, false}) {
        settings.lastLaunchedAppVersion = "1.2.2";
        settings.general.showChangelogOnUpdate = isWanted;
        putSettings(settings);
        for (const bool isFirstStart : {true, false}) {
            delegate.reset();
            machine.changelogWindow = {};
            launch();
            EXPECT_EQ(machine.changelogWindow.isVisible(), isWanted && isFirstStart);
        }
    }
    EXPECT_EQ(std::ranges::count(machine.usage.messages, "changelog_shown"), 1);
}

TEST_F(AuxiliaryWindowsTest, theChangelogIsReadFromAboutInTheLanguageOfTheMoment) {
    launch();
    const auto press = [&] {
        machine.settingsWindow.content->navigate("about");
        machine.settingsWindow.content->act({"changelog"});
        machine.loop.settle();
    };
    press();
    const auto english = *machine.changelogWindow.page;
    EXPECT_EQ(english.title, "Quillmar Changelog");
    answer({"general", "set", "--language", "portuguese"});
    const auto portuguese = *machine.changelogWindow.page;
    EXPECT_EQ(portuguese.title, "Novidades do Quillmar");
    ASSERT_THAT(english.releases, Not(IsEmpty()));
    for (std::size_t i = 0; i < english.releases.size(); ++i)
        EXPECT_NE(english.releases[i], portuguese.releases[i]);
    machine.changelogWindow.wish(closeWish);
    machine.changelogWindow.isMissing = true;
    press();
    EXPECT_EQ(machine.alerts.shown.back().title, "Não é possível mostrar as novidades");
}

}  // namespace
}  // namespace quillmar
