#include "panes/wallpaper/WallpaperPane.h"

#include "fakes/FullDocument.h"
#include "panes/WallpaperPaneFixture.h"
#include "panes/wallpaper/ModeFields.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Control = decltype(SettingsRow::control);

/// What is done to a control to change what it holds; nothing for one that only a dialog changes.
SettingsIntent anotherValueOf(const SettingsRow& row) {
    SettingsIntent intent{row.id};
    if (const auto* toggle = std::get_if<SettingsRow::Toggle>(&row.control)) intent.value = !toggle->isOn;
    if (const auto* choice = std::get_if<SettingsRow::Choice>(&row.control))
        intent.value = (choice->chosen + 1) % choice->choices.size();
    if (const auto* entry = std::get_if<SettingsRow::Entry>(&row.control)) intent.value = entry->text + "x";
    if (const auto* number = std::get_if<SettingsRow::Number>(&row.control)) intent.value = number->value + 1;
    if (const auto* length = std::get_if<SettingsRow::Duration>(&row.control))
        intent.value = length->seconds + 1;
    if (const auto* color = std::get_if<SettingsRow::Color>(&row.control))
        intent.value = color->palette.empty() ? "#123456" : color->palette.back();
    return intent;
}

/// Collects the keys of a record's fields.
struct FieldNames {
    std::vector<std::string> names;
    FieldNames& required(std::string_view key, const auto&) { return optional(key, 0); }
    FieldNames& optional(std::string_view key, const auto&) {
        names.emplace_back(key);
        return *this;
    }
};

struct WallpaperPaneTest : WallpaperPaneFixture {};

TEST_F(WallpaperPaneTest, everyFieldOfEveryRecordHasRowsThatChangeItAndNothingElse) {
    for (const WallpaperModeKind kind : allCases<WallpaperModeKind>()) {
        if (natureOf(kind) == PresentationNature::live) continue;
        WallpaperMode whole = WallpaperMode::defaultMode(kind);
        std::visit(FillOptionals{}, whole.value);
        FieldNames fields;
        std::visit(
            [&]<class T>(const T& settings) {
                if constexpr (!std::is_same_v<T, std::monostate>) T::describe(settings, fields);
            },
            whole.value);
        std::set<std::string> left(fields.names.begin(), fields.names.end());
        for (const std::string_view own : programFields()) left.erase(std::string(own));
        for (const FieldGroupText& group : fieldGroups(kind)) {
            for (const FieldText& text : group.fields) {
                WallpaperMode mode = whole;
                const auto wishes = [&](std::string_view field, auto isWanted) {
                    for (const auto& shown :
                         editorGroups(mode, GeneralLanguage::english, [](auto&) { return false; })) {
                        for (const SettingsRow& each : shown.rows) {
                            if (each.id.substr(0, each.id.find('.')) == field && isWanted(each)) return;
                        }
                    }
                };
                // What it needs is brought about by the needed field's own rows.
                for (int tries = 0; text.need && tries < 8; ++tries) {
                    bool isThere = false;
                    wishes(text.field, [&](const SettingsRow&) { return isThere = true; });
                    if (isThere) break;
                    wishes(text.need->field, [&](const SettingsRow& each) {
                        const bool isSet = each.id.contains('.');
                        if (isSet && !each.id.ends_with(text.need->value)) return false;
                        return change(mode, anotherValueOf(each));
                    });
                }
                wishes(text.field, [&](const SettingsRow& each) {
                    const WallpaperMode before = mode;
                    const bool isFile = std::holds_alternative<SettingsRow::Action>(each.control);
                    EXPECT_NE(isFile, change(mode, anotherValueOf(each)))
                        << enumName(kind) << "." << each.id << " has no control";
                    EXPECT_EQ(isFile, mode == before) << each.id;
                    EXPECT_FALSE(change(mode, {each.id, std::monostate{}})) << each.id;
                    left.erase(std::string(text.field));
                    return false;
                });
            }
        }
        EXPECT_THAT(left, IsEmpty()) << enumName(kind) << " cannot be edited whole";
    }
}

TEST_F(WallpaperPaneTest, aProblemStandsAtItsFieldAndNothingIsApplied) {
    struct Case {
        const char* kind;
        std::vector<SettingsIntent> wishes;
        const char* row;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"solidColor", {{"hexColor", "blue"}}, "hexColor", "blue is not a valid"},
        {"image", {}, "imageURL", "Choose an image"},
        {"slideshow", {}, "folderURL", "Choose an image folder"},
        {"bing", {{"backgroundHexColor", "#12"}}, "backgroundHexColor", "#12 is not a valid"},
        {"unsplash", {}, "accessKey", "Enter an Unsplash access key"},
        {"unsplash", {{"accessKey", "k"}, {"filter", std::size_t{1}}}, "username", "Enter a topic"},
        {"wallhaven", {{"includeGeneral", false}}, "includeGeneral", "at least one Wallhaven category"},
        {"wallhaven", {{"includeNSFW", true}}, "apiKey", "Enter a Wallhaven API key"},
        {"museums", {{"sources.smithsonian", true}}, "smithsonianAPIKey", "Enter a Smithsonian"},
    };
    for (const auto& [kind, wishes, name, message] : cases) {
        wish("mode", kind);
        for (const SettingsIntent& each : wishes) wish(each.row, each.value);
        EXPECT_THAT(row(name).error, HasSubstr(message)) << kind;
        EXPECT_THAT(pane->content().preview->text, HasSubstr(message)) << kind;
        EXPECT_FALSE(isEnabled("apply")) << kind;
        wish("apply");
        EXPECT_TRUE(isEnabled("revert")) << kind;
        wish("revert");
    }
    EXPECT_THAT(store.saves, IsEmpty());
    EXPECT_EQ(desktop.setCount, 0);
    choose(2);
    wish("mode", "unsplash");
    choose(1);
    EXPECT_EQ(row("showProblem").title, "Screen 2 cannot be applied as it is");
    wish("showProblem");
    EXPECT_TRUE(display(2).isSelected);
}

TEST_F(WallpaperPaneTest, aDraftIsAppliedTakenBackOrKeptAndTheWayBackForgetsNothing) {
    EXPECT_TRUE(display(1).isSelected) << "the main display";
    EXPECT_EQ(display(2).bounds, (PixelRect{1920, 56, 1280, 1024}));
    wish("mode", "solidColor");
    wish("hexColor", "#102030");
    EXPECT_TRUE(display(1).hasUnsavedDraft);
    EXPECT_EQ(display(1).accessibleName, "Screen 1, main display, chosen, has changes that are not applied");
    wish("copy");
    choose(2);
    EXPECT_EQ(row("hexColor").control, Control(SettingsRow::Color{.text = "#102030"}));
    wish("hexColor", "#405060");
    desktop.refuses(2, "no room");
    wish("apply");
    EXPECT_THAT((std::vector{color(1), color(2)}), ElementsAre("#102030", ""));
    EXPECT_FALSE(display(1).hasUnsavedDraft);
    EXPECT_TRUE(display(2).hasUnsavedDraft && display(2).hasFailed)
        << "what failed is kept to be tried again";
    EXPECT_THAT(row("retry").subtitle, HasSubstr("no room"));
    desktop.accepts(2);
    wish("retry");
    EXPECT_EQ(color(2), "#405060");
    EXPECT_EQ(row("retry").id, "none");
    EXPECT_FALSE(isEnabled("apply"));

    store.nextSaveFails("the disk is full");
    wish("mode", "disabled");
    alerts.answerNextWith(0);
    wish("apply");
    EXPECT_THAT(alerts.shown.back().text, HasSubstr("could not save"));
    EXPECT_TRUE(display(2).hasUnsavedDraft);
    wish("apply");
    EXPECT_EQ(saved(2).savedModes.count(WallpaperModeKind::solidColor), 1u);
    wish("mode", "solidColor");
    EXPECT_EQ(row("hexColor").control, Control(SettingsRow::Color{.text = "#405060"}));
    wish("revert");
    EXPECT_FALSE(display(2).hasUnsavedDraft);
}

TEST_F(WallpaperPaneTest, whatIsChangedElsewhereIsSaidAndOverwrittenOnlyWhenAgreedTo) {
    wish("mode", "solidColor");
    wish("hexColor", "#111122");
    isEditedElsewhere(1, "#999999");
    EXPECT_EQ(row("reload").title, "Changed elsewhere");
    EXPECT_EQ(row("hexColor").control, Control(SettingsRow::Color{.text = "#111122"}));
    enum Button : std::size_t { cancel, replace };
    alerts.answerNextWith(cancel);
    wish("apply");
    EXPECT_EQ(color(1), "#999999");
    alerts.answerNextWith(replace);
    wish("apply");
    EXPECT_EQ(color(1), "#111122");
    EXPECT_EQ(row("reload").id, "none");

    // Another is faster while the change waits for its turn.
    wish("hexColor", "#222222");
    desktop.hold();
    pane->act({"apply"});
    isEditedElsewhere(2, "#333333");
    desktop.letThrough();
    loop.settle();
    EXPECT_THAT((std::vector{color(1), color(2)}), ElementsAre("#222222", "#333333"));
    wish("hexColor", "#444444");
    isEditedElsewhere(1, "#555555");
    wish("reload");
    EXPECT_EQ(row("hexColor").control, Control(SettingsRow::Color{.text = "#555555"}));
    EXPECT_FALSE(isEnabled("apply"));
}

TEST_F(WallpaperPaneTest, whatASlideshowIsAtIsNobodysChange) {
    chooser.answer = home.path();
    own("1.png"), own("2.png");
    wish("mode", "slideshow");
    wish("folderURL");
    wish("apply");
    const auto show = [&] { return std::get<SlideshowPresentationSettings>(saved(1).mode.value); };
    EXPECT_TRUE(show().folderBookmark);
    wish("shuffle", true);
    wish("next");
    loop.advance(std::chrono::seconds(1));
    const auto at = show().lastImageURL;
    EXPECT_EQ(at, Url::fromFilePath(home.path() / "2.png"));
    EXPECT_EQ(row("reload").id, "none");
    wish("apply");
    EXPECT_TRUE(show().shuffle);
    EXPECT_TRUE(show().lastImageURL);
}

TEST_F(WallpaperPaneTest, aPictureIsCopiedBeforeTheDraftHasItAndACopyThatNobodyNamesGoes) {
    wish("mode", "image");
    chooser.answer = own("a.png");
    wish("imageURL");
    EXPECT_EQ(row("imageURL").subtitle, (home.path() / "a.png").string());
    EXPECT_EQ(copies(), 1);
    chooser.answer = own("b.png");
    wish("imageURL");
    EXPECT_EQ(copies(), 1) << "the first one is named by nobody";
    wish("apply");
    const auto image = std::get<ImagePresentationSettings>(saved(1).mode.value);
    EXPECT_TRUE(image.imageBookmark && image.cachedImageURL && image.imageURL);

    chooser.answer = home.path() / "gone.png";
    wish("imageURL");
    EXPECT_THAT(row("imageURL").error, HasSubstr("could not read the selected file"));
    EXPECT_FALSE(display(1).hasUnsavedDraft) << "a file that was not taken changes nothing";
    chooser.answer = own("c.png");
    wish("imageURL");
    EXPECT_EQ(row("imageURL").error, "");
    EXPECT_EQ(copies(), 2);
    wish("revert");
    EXPECT_EQ(copies(), 1);
}

TEST_F(WallpaperPaneTest, aDisplayThatIsUnpluggedKeepsItsDraftApart) {
    choose(2);
    wish("mode", "solidColor");
    screens.unplug(2);
    pane->displaysDidChange();
    loop.settle();
    EXPECT_TRUE(display(2).isSelected && display(2).hasUnsavedDraft);
    EXPECT_EQ(display(2).accessibleName, "Screen 2, chosen, not connected, has changes that are not applied");
    EXPECT_FALSE(pane->content().preview);
    wish("apply");
    EXPECT_EQ(color(2), "#111111") << "it is kept for when it is back";
    EXPECT_EQ(desktop.setCount, 0);
}

TEST_F(WallpaperPaneTest, aDisplayThatIsGoneWithItsDraftIsLeft) {
    choose(2);
    wish("mode", "solidColor");
    screens.unplug(2);
    pane->displaysDidChange();
    wish("revert");
    EXPECT_TRUE(display(1).isSelected) << "the other is on no map";
}

TEST_F(WallpaperPaneTest, whoLeavesWhileAPictureIsCopiedMeansItToo) {
    for (const char* name : {"text", "picture"}) {
        wish("mode", "image");
        chooser.answer = own(name);
        if (name == std::string("text")) std::ofstream(*chooser.answer) << "no picture";
        rendering.hold();
        wish("imageURL");
        std::optional<bool> isApplied;
        tasks.spawn([](auto apply, auto& result) -> Task<void> { result = co_await apply(); }(
                                                     pane->unsavedDraft().apply, isApplied));
        loop.settle();
        EXPECT_FALSE(isApplied);
        rendering.letThrough();
        loop.settle();
        EXPECT_EQ(isApplied, name == std::string("picture"));
    }
    EXPECT_EQ(saved(1).mode.kind(), WallpaperModeKind::image);
}

TEST_F(WallpaperPaneTest, picturesAreDrawnSmallAndLateOnesAreDropped) {
    EXPECT_EQ(display(1).thumbnail.pixels->size(), (PixelSize{512, 288}));
    wish("mode", "image");
    chooser.answer = own("a.png");
    wish("imageURL");
    wish("layout", std::size_t{1});
    EXPECT_TRUE(pane->content().preview->isBusy);
    rendering.hold();
    loop.advance(DraftPreview::pause);
    wish("layout", std::size_t{0});
    rendering.letThrough();
    loop.advance(DraftPreview::pause);
    const SettingsPreview preview = *pane->content().preview;
    EXPECT_FALSE(preview.isBusy);
    EXPECT_EQ(preview.picture.version, 1u) << "the tiles came too late";
    EXPECT_EQ(preview.picture.pixels->size(), (PixelSize{640, 360}));
    EXPECT_EQ(rendering.lastComposition.destination, (PixelRect{253, 130, 133, 100}));
    rendering.failure = PictureRenderingError::Case::unreadable;
    wish("layout", std::size_t{3});
    loop.advance(DraftPreview::pause);
    EXPECT_THAT(pane->content().preview->text, HasSubstr("cannot read the selected image"));
    pane->didDisappear();
    EXPECT_FALSE(display(1).thumbnail.pixels);
}

TEST_F(WallpaperPaneTest, aServiceIsAskedInTheBackgroundAndItsFailureCanBeTriedAgain) {
    wish("mode", "bing");
    wallpaper->remoteImages.hold();
    wish("apply");
    EXPECT_EQ(pane->content().progress, "Asking Bing…");
    wish("market", std::size_t{3});  // the pane goes on meanwhile
    wallpaper->remoteImages.image = own("today.jpg");
    wallpaper->remoteImages.letThrough();
    loop.settle();
    EXPECT_EQ(pane->content().progress, "");
    EXPECT_EQ(saved(1).mode.kind(), WallpaperModeKind::bing);
    EXPECT_TRUE(display(1).hasUnsavedDraft) << "what was changed meanwhile is a draft of its own";
    wish("revert");
    wallpaper->rotation.start();
    wallpaper->remoteImages.failure = std::make_exception_ptr(
        WallpaperApplicationError(WallpaperApplicationError::Case::remoteImagesInTrash));
    wish("next");
    EXPECT_THAT(row("retry").subtitle, HasSubstr("in the trash"));
    EXPECT_THAT(row("retry").subtitle, HasSubstr("Next attempt: 4 May 2026"));
    wallpaper->remoteImages.failure = nullptr;
    wish("retry");
    EXPECT_EQ(row("retry").id, "none");
    wish("pause", true);
    EXPECT_TRUE(store.onDisk.general.pauseRotations);
}

TEST_F(WallpaperPaneTest, whatTheSettingsNameStandsThereAndIsOnlyLookedAtWhileTheyCannotBeRead) {
    store.onDisk.wallpaper.displays = displaysOfEveryKind<DisplayWallpaperSettings, WallpaperModeKind>();
    store.onDisk.wallpaper.displays.push_back(
        {.displayID = id(1), .mode = WallpaperMode::defaultMode(WallpaperModeKind::video)});
    begin();
    EXPECT_EQ(pane->content().arrangement->absent.size(), allCases<WallpaperModeKind>().size());
    const auto gallery = std::get<SettingsRow::Gallery>(row("mode").control);
    EXPECT_EQ(gallery.chosen, "video");
    EXPECT_EQ(gallery.cards.size(), 12u) << "the live kinds that nobody names are not offered";
    EXPECT_EQ(row("unavailable").title, "This wallpaper mode is not available yet.");
    store.loadFails("general: missing key");
    begin();
    wish("mode", "bing");
    EXPECT_FALSE(display(1).hasUnsavedDraft || row("mode").isEnabled || isEnabled("apply"));
}

}  // namespace
}  // namespace quillmar
