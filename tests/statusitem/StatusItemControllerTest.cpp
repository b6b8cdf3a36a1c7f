#include "statusitem/StatusItemController.h"

#include "fakes/FakeAlerts.h"
#include "fakes/FakeDisplays.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/FakeStatusIcon.h"
#include "fakes/RecordedLog.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using Action = StatusIconClickAction;

struct StatusItemTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    RecordedLog log{clock};
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    std::optional<AppSettingsModel> model;
    FakeStatusIcon icon;
    FakeAlerts alerts;
    FakeDisplays displays;
    TemporaryFolder folder;
    InlineExecutor files;
    PictureMemory memory{files, folder.path(), clock};
    std::vector<std::vector<std::string>> carriedOut;
    ControlReply reply;
    std::string done;  ///< "s" for each opening of Settings, "q" for each quit
    std::optional<StatusItemController> item;

    void begin() {
        model.emplace(loop, notifications, store, AppSettings{}, cacheFiles);
        item.emplace(StatusItemController::Services{
            .loop = loop,
            .notifications = notifications,
            .settingsModel = *model,
            .icon = icon,
            .alerts = alerts,
            .displays = displays,
            .pictures = memory,
            .carryOut = [this](ControlCall call) { return carryOut(std::move(call)); },
            .quit = [this] { done += "q"; },
            .openSettings = [this] { done += "s"; }});
        item->show();
    }
    Task<ControlReply> carryOut(ControlCall call) {
        carriedOut.push_back(std::move(call.arguments));
        co_return reply;
    }
    void beginReady() {
        store.onDisk.general.statusIconClickBehavior = {Action::openCustomMenu, Action::openSettings,
                                                        Action::disabled};
        begin();
        loop.settle();
    }
    std::string menu() { return outline(icon.answering->contextMenu()); }
};

/// Clicks and pauses, and what they come to at which time: "m" a menu opens, "s" Settings.
struct ClicksCase {
    const char* name;
    const char*
        clicks;  ///< l, r, m: the buttons; c: left with Control; .: 100 ms; p: the panel draws its menu
    const char* outcome;
};

TEST_F(StatusItemTest, clicksDoWhatTheSettingsSay) {
    beginReady();
    for (const auto& [name, clicks, outcome] : std::initializer_list<ClicksCase>{
             {"one acts when no second can follow", "l.....", "...m.."},
             {"a double click takes its place", "l..l.....", "..s....."},
             {"clicks far apart are two", "l.....l.....", "...m.....m.."},
             {"the third of three is a double click too", "l.l.l.....", ".s.s....."},
             {"the right button", "r.", "m."},
             {"Control, and nothing follows", "l.c.....", ".m....."},
             {"the middle button does nothing, and nothing follows", "l.m.....", "......"},
             {"another button between two clicks", "l.m.l.....", ".....m.."},
             {"a menu that the panel draws", "l.p.....", "......"},
         }) {
        std::string seen;
        for (const char* click = clicks; *click; ++click) {
            const std::size_t before = icon.menus.size();
            done.clear();
            if (*click == 'l' || *click == 'c') icon.click(FakeStatusIcon::Button::primary, *click == 'c');
            if (*click == 'r') icon.click(FakeStatusIcon::Button::secondary);
            if (*click == 'm') icon.click(FakeStatusIcon::Button::middle);
            if (*click == 'p') icon.answering->contextMenuWillShow();
            if (*click == '.') loop.advance(100ms);
            seen += std::string(icon.menus.size() - before, 'm') + done + (*click == '.' ? "." : "");
        }
        EXPECT_EQ(seen, outcome) << name;
        loop.advance(1s);
    }
}

TEST_F(StatusItemTest, aClickDoesWhatTheSettingsSaidWhenItWasMade) {
    beginReady();
    icon.click();
    model->update([](AppSettings& s) { s.general.statusIconClickBehavior.leftClick = Action::disabled; });
    loop.advance(400ms);
    EXPECT_THAT(icon.menus, SizeIs(1));
    model->update([](AppSettings& s) {
        s.general.statusIconClickBehavior.middleClick = Action::toggleAllScreensavers;
    });
    log.lines.clear();
    icon.click(FakeStatusIcon::Button::middle);
    EXPECT_THAT(log.lines, SizeIs(1));
}

TEST_F(StatusItemTest, theMenuSaysHowFarTheSettingsAre) {
    store.hold();
    store.loadFails("no");
    begin();
    EXPECT_EQ(menu(), "(Loading…), -, Quit");
    icon.click(FakeStatusIcon::Button::middle);
    icon.click();
    EXPECT_THAT(icon.menus, SizeIs(2)) << "any click, at once";
    store.letThrough();
    loop.settle();
    EXPECT_EQ(icon.menuChanges, 1);
    EXPECT_EQ(menu(), "Settings, -, Quit");
    icon.choose("Settings");
    icon.choose("Quit");
    EXPECT_EQ(done, "sq");
}

TEST_F(StatusItemTest, eachDisplayOffersWhatCanBeDoneWithItsPicture) {
    displays.present = {{.id = "display:a", .localizedName = "Left"}};
    store.onDisk.wallpaper.displays = {{"display:a", {SlideshowPresentationSettings{}}},
                                       {"display:b", {ImagePresentationSettings{}}}};
    begin();
    loop.settle();
    EXPECT_EQ(
        menu(),
        "Wallpaper[Next Picture, (Previous Picture), (Favourite), (Move to Trash), (Open Page), -, Pause], "
        "-, Settings, -, Quit");
    displays.present.push_back({.id = "display:b", .localizedName = "Right"});
    item->displaysDidChange();
    const auto file = [](const char* path) { return ShownPicture{.fileURL = Url::fromFilePath(path)}; };
    ShownPicture found = file("/2.jpg");
    found.credit.sourceURL = "https://museum.example/2";
    memory.shows("display:a", file("/1.jpg"));
    memory.shows("display:a", found);
    memory.shows("display:b", file("/chosen.jpg"));
    model->update([](AppSettings& s) { s.general.pauseRotations = true; });
    EXPECT_EQ(
        menu(),
        "Wallpaper[Left[Next Picture, Previous Picture, Favourite, Move to Trash, Open Page], "
        "Right[(Next Picture), (Previous Picture), Favourite, (Move to Trash), (Open Page)], -, Pause*], "
        "-, Settings, -, Quit");
    EXPECT_EQ(icon.menuChanges, 3) << "loaded, displays, paused";
    icon.choose("Previous Picture");
    icon.choose("Pause");
    loop.settle();
    EXPECT_THAT(carriedOut, ElementsAre(ElementsAre("wallpaper", "previous", "display:a"),
                                        ElementsAre("general", "set", "--pauseRotations=false")));
}

TEST_F(StatusItemTest, whatAnOldMenuOffersStillWorksAndAFailureIsSaidOnce) {
    displays.present = {{.id = "display:a", .localizedName = "Left"}};
    store.onDisk.wallpaper.displays = {{"display:a", {SlideshowPresentationSettings{}}}};
    begin();
    loop.settle();
    const int next = FakeStatusIcon::command(icon.answering->contextMenu(), "Next Picture");
    model->update([](AppSettings& s) { s.general.language = GeneralLanguage::portuguese; });
    EXPECT_EQ(FakeStatusIcon::command(icon.answering->contextMenu(), "Next Picture"), -1);
    reply = {.status = 1, .errors = "the folder is gone"};
    icon.answering->chosen(next);
    icon.answering->chosen(next);
    loop.settle();
    EXPECT_THAT(carriedOut, SizeIs(2));
    ASSERT_THAT(alerts.shown, SizeIs(1));
    EXPECT_EQ(alerts.shown[0].text, "the folder is gone");
}

TEST_F(StatusItemTest, theIconFollowsItsStyleAndNothingIsDueOnceItIsHidden) {
    beginReady();
    model->update([](AppSettings& s) { s.general.showColorfulStatusIcon = true; });
    EXPECT_EQ(icon.style, StatusIconStyle::colorful);
    icon.click();
    item->hide();
    loop.advance(1s);
    EXPECT_THAT(icon.menus, SizeIs(0));
    EXPECT_EQ(icon.answering, nullptr);
}

}  // namespace
}  // namespace quillmar
