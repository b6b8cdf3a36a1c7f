#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>

#include "base/Enum.h"
#include "base/JsonError.h"
#include "fakes/FullDocument.h"
#include "fakes/TemporaryFolder.h"
#include "settings/records/SettingsCodec.h"
#include "settings/records/SettingsSchemaError.h"

using namespace testing;

namespace quillmar {
namespace {

using Json = nlohmann::json;

TEST(RecordsTest, aDocumentOfEverythingSurvivesByteForByte) {
    const AppSettings settings = fullDocument();
    const std::string text = encodeSettings(settings);
    const AppSettings back = decodeSettings(text);
    EXPECT_TRUE(back == settings);
    EXPECT_EQ(encodeSettings(back), text);
    EXPECT_EQ(Json::parse(text).dump(2) + "\n", text);  // sorted at every level
}

TEST(RecordsTest, everyKeyIsRequiredUnlessItsRecordAllowsAbsence) {
    // Nothing optional is set in a default document, so each of its keys must be missed.
    AppSettings settings = defaultSettings(BundleInfo());
    settings.wallpaper.displays = {{"a", WallpaperMode::defaultMode(WallpaperModeKind::matrix)}};
    settings.screensaver.displays = {{"a", {CountdownTimerScreensaverSettings{}}}};
    settings.hotCorners.displays = {{"a", {}}};
    const Json document = Json::parse(encodeSettings(settings));
    int removed = 0;
    const std::function<void(const Json::json_pointer&)> removeEach = [&](const Json::json_pointer& at) {
        const Json& node = document.at(at);
        if (!node.is_structured()) return;
        for (const auto& item : node.items()) {
            if (node.is_array()) {
                removeEach(at / static_cast<std::size_t>(std::stoul(item.key())));
                continue;
            }
            // An item's target may be absent; its children may not.
            if (item.key() == "target") continue;
            Json broken = document;
            broken.at(at).erase(item.key());
            EXPECT_THROW(decodeSettings(broken.dump()), JsonRecordError) << (at / item.key()).to_string();
            ++removed;
            removeEach(at / item.key());
        }
    };
    removeEach(Json::json_pointer());
    EXPECT_GT(removed, 150);
}

TEST(RecordsTest, anotherVersionIsRefusedBeforeAnythingElse) {
    for (const char* text : {R"({"schemaVersion":2,"general":[]})", R"({"schemaVersion":0})",
                             R"({"schemaVersion":9000000000})"}) {
        EXPECT_THROW(decodeSettings(text), SettingsSchemaError) << text;
    }
    const SettingsSchemaError error(2, 1);
    EXPECT_STREQ(error.what(),
                 "This settings file uses schema 2, but this build of Quillmar requires schema 1.");
    EXPECT_EQ(error.message(GeneralLanguage::portuguese),
              "Este ficheiro de definições usa o esquema 2, mas esta versão do Quillmar requer o esquema 1.");
}

TEST(RecordsTest, aFirstDocumentHasTheStatedDefaults) {
    const Json document = Json::parse(encodeSettings(defaultSettings(BundleInfo())));
    EXPECT_EQ(document["lastLaunchedAppVersion"], "Unknown");
    EXPECT_EQ(
        document["general"].dump(),
        R"({"appTheme":"automatic","language":"english","launchAtLogin":true,"pauseRotations":false,)"
        R"("showChangelogOnUpdate":true,"showColorfulStatusIcon":false,"showRemoteErrorNotifications":false,)"
        R"("statusIconClickBehavior":{"doubleClick":"toggleAllScreensavers","leftClick":"openCustomMenu",)"
        R"("magicMouse":{"centerClickAreaSize":"regular","centerClickEnabled":false,)"
        R"("threeFingerClickOrTapEnabled":false},"middleClick":"disabled"}})");
    EXPECT_EQ(document["wallpaper"].dump(), R"({"displays":[]})");
}

TEST(CustomMenuDefaultsTest, onlyInstalledApplicationsAreOffered) {
    const TemporaryFolder folder;
    for (const char* entry : {"firefox-esr.desktop", "chromium.desktop", "thunar.desktop"}) {
        std::ofstream(folder.path() / entry) << "[Desktop Entry]\n";
    }
    const BundleInfo bundle({{"QuillmarHomePage", "https://quillmar.com/"}});
    const auto items = defaultCustomMenu(bundle, folder.path()).items;
    std::vector<std::string> shown;
    for (const CustomMenuItem& item : items) {
        shown.push_back(item.title);
        for (const CustomMenuItem& child : item.children) shown.push_back(child.target->url().displayPath());
    }
    const std::string path = folder.path().string();
    EXPECT_THAT(shown,
                ElementsAre("Apps", path + "/thunar.desktop", path + "/firefox-esr.desktop", "", "Places",
                            path, "", "Web", "https://quillmar.com/", "https://www.google.com/"));
}

TEST(HotCornerSettingsTest, theActionOfACornerFollowsTheScope) {
    HotCornerSettings settings;
    settings.primaryDisplay.topLeft.action = HotCornerAction::openSettings;
    settings.combinedDesktop.bottomRight.action = HotCornerAction::showDesktop;
    settings.displays = {{"a", {.bottomLeft = {HotCornerAction::openCustomMenu}}},
                         {"a", {.bottomLeft = {HotCornerAction::lockWorkstation}}}};
    const auto action = [&](HotCornerScope scope, const char* id, HotCornerPosition position) {
        settings.scope = scope;
        return settings.action(id, position).action;
    };
    using enum HotCornerScope;
    using enum HotCornerPosition;
    EXPECT_EQ(action(primaryDisplay, "any", topLeft), HotCornerAction::openSettings);
    EXPECT_EQ(action(combinedDesktop, "any", bottomRight), HotCornerAction::showDesktop);
    EXPECT_EQ(action(combinedDesktop, "any", topRight), HotCornerAction::disabled);
    EXPECT_EQ(action(allDisplays, "a", bottomLeft), HotCornerAction::openCustomMenu);
    EXPECT_EQ(action(allDisplays, "b", bottomLeft), HotCornerAction::disabled);
}

}  // namespace
}  // namespace quillmar
