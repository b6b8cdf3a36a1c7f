#include "settings/AppSettingsModelFixture.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::Optional;

struct AppSettingsEditTest : AppSettingsModelTest {
    std::vector<std::string> faults;
    std::vector<std::string> takeovers;  ///< what was ours until then
    EventBus::Observation faultObservation = notifications.observe<std::string>(
        settingsFileBroke, [this](const std::string& reason) { faults.push_back(reason); });
    EventBus::Observation takeoverObservation = notifications.observe<SettingsTakeover>(
        settingsWereTakenOver, [this](const SettingsTakeover& t) { takeovers.push_back(marks(t.former)); });

    void edit(const SettingsUpdate& mutation) {
        AppSettings theirs = store.onDisk;
        mutation(theirs);
        store.isEdited(theirs);
    }
    void follow() {
        tasks.spawn(model->followFile());
        loop.settle();
    }
};

TEST_F(AppSettingsEditTest, anEditIsTakenOverAndWhatWasUnsavedIsKeptBesideIt) {
    beginLoaded();
    edit(pause);
    follow();
    EXPECT_EQ(marks(model->settings()), "p");
    EXPECT_FALSE(model->unsavedFile());
    model->update(colourful);
    edit(launch);
    loop.advance(1s);
    EXPECT_EQ(marks(model->settings()), "pl") << "the save found it";
    EXPECT_EQ(marks(store.unsaved.value()), "pc");
    EXPECT_TRUE(model->unsavedFile());
    EXPECT_THAT(takeovers, ElementsAre("", "pc"));
    EXPECT_TRUE(store.saves.empty());
    EXPECT_FALSE(model->saveError());
}

TEST_F(AppSettingsEditTest, aTransactionThatMeetsAnEditIsMadeOnTopOfIt) {
    beginLoaded();
    edit(launch);
    EXPECT_THAT(outcome(commits(pause)), Optional(true));
    EXPECT_EQ(marks(store.onDisk), "pl");
    edit([](AppSettings& settings) { settings.general.pauseRotations = false; });
    EXPECT_THAT(outcome(tasks.start(model->replaceSettings(colourful))), Optional(true));
    EXPECT_EQ(marks(store.onDisk), "cl");
}

TEST_F(AppSettingsEditTest, aBrokenFileIsNeverWrittenOverUntilItIsMendedRemovedOrReplaced) {
    beginLoaded();
    for (const std::string way : {"mended", "removed", "replaced"}) {
        store.isBroken("line 3");
        follow();
        follow();
        EXPECT_THAT(model->loadError(), Optional(std::string("line 3")));
        model->update(pause);
        loop.advance(1s);
        EXPECT_THAT(outcome(commits(colourful)), Optional(false));
        EXPECT_EQ(marks(store.onDisk), "") << way;
        if (way == "mended") edit([](AppSettings&) {});
        if (way == "removed") store.isRemoved();
        if (way == "replaced")
            EXPECT_THAT(outcome(tasks.start(model->replaceSettings(AppSettings{}))), Optional(true));
        follow();
        EXPECT_TRUE(model->canPersist()) << way;
        loop.advance(1s);
        EXPECT_EQ(marks(store.onDisk), way == "removed" ? "p" : "") << way;
        edit([](AppSettings& settings) { settings = AppSettings{}; });
        follow();
    }
    EXPECT_THAT(faults, ElementsAre("line 3", "line 3", "line 3"));
    EXPECT_TRUE(model->replacedFile());
}

TEST_F(AppSettingsEditTest, changesDuringTheLookAreMadeOnTopOfTheEditAndNothingIsSavedMeanwhile) {
    beginLoaded();
    model->update(colourful);
    edit(launch);
    store.hold();
    tasks.spawn(model->followFile());
    loop.settle();
    model->update(pause);
    loop.advance(1h);
    store.letThrough();
    loop.advance(1s);
    EXPECT_THAT(savedMarks(), ElementsAre("pl"));
    for (int i = 0; i < 5; ++i) {  // looks do not put a save off
        model->update(colourful);
        loop.advance(100ms);
        follow();
        loop.advance(100ms);
        follow();
        loop.advance(100ms);
    }
    EXPECT_EQ(store.saves.size(), 6u);
}

}  // namespace
}  // namespace quillmar
