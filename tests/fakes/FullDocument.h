#pragma once
#include "base/Enum.h"
#include "settings/records/SettingsCodec.h"

namespace quillmar {

inline const Url someFile = Url::fromFilePath("/home/ana/Imagens/mar ção.png");
inline const Bytes someGrant = {0, 1, 254, 255};

/// Sets every optional field of a mode's settings, so that the whole document is written.
struct FillOptionals {
    void operator()(auto&) const {}
    void operator()(ImagePresentationSettings& s) const {
        s.imageURL = s.cachedImageURL = someFile;
        s.imageBookmark = someGrant;
    }
    void operator()(SlideshowPresentationSettings& s) const {
        s.folderURL = s.lastImageURL = someFile;
        s.folderBookmark = someGrant;
    }
    void operator()(WallhavenSettings& s) const {
        s.color = "660000";
        s.resolution = "1920x1080";
        s.exactResolutions = {"1280x720"};
        s.ratios = {"16x9", "21x9"};
    }
    void operator()(WindowsSpotlightSettings& s) const {
        s.lastSelection =
            WindowsSpotlightSelection{someFile, "Um farol", "pt-PT", parseISO8601("2026-05-04T09:30:00Z")};
    }
    void operator()(VideoPlaybackSettings& s) const { s.videoURL = s.cachedVideoURL = someFile; }
    void operator()(VideoPlaylistPlaybackSettings& s) const {
        s.folderURL = someFile;
        s.folderBookmark = someGrant;
    }
    void operator()(PDFPresentationSettings& s) const { s.pdfURL = s.cachedPDFURL = someFile; }
    void operator()(MatrixPresentationSettings& s) const {
        s.presetVersion = MatrixVersion::operator_;
        s.cameraDeviceID = s.cameraDeviceName = "Câmara";
        s.imageURL = s.cachedImageURL = s.videoURL = s.cachedVideoURL = someFile;
    }
    void operator()(AlarmClockScreensaverSettings& s) const {
        s.sound = {ScreensaverAlarmSound::custom, someFile, someGrant};
    }
};

/// One display for every kind, each with a saved mode of all the others.
template <class Entry, class Kind>
std::vector<Entry> displaysOfEveryKind() {
    using Mode = decltype(Entry::mode);
    std::map<Kind, Mode> all;
    for (const Kind kind : allCases<Kind>()) {
        Mode mode = Mode::defaultMode(kind);
        std::visit(FillOptionals{}, mode.value);
        all.emplace(kind, mode);
    }
    std::vector<Entry> displays;
    for (const auto& [kind, mode] : all) {
        Entry& entry = displays.emplace_back(Entry{.displayID = "display:" + std::string(enumName(kind))});
        entry.mode = mode;
        entry.savedModes = all;
        entry.savedModes.erase(Kind::disabled);
    }
    return displays;
}

/// A document with one display for every kind of wallpaper, Lock Screen and screensaver, each with every
/// other kind saved, and with every optional field set.
inline AppSettings fullDocument() {
    AppSettings settings = defaultSettings(BundleInfo({{"QuillmarSemanticVersion", "1.2.3"}}));
    settings.general.language = GeneralLanguage::portuguese;
    settings.wallpaper.displays = displaysOfEveryKind<DisplayWallpaperSettings, WallpaperModeKind>();
    settings.lockScreen.displays = displaysOfEveryKind<DisplayLockScreenSettings, LockScreenModeKind>();
    settings.screensaver.displays =
        displaysOfEveryKind<DisplayManagedScreensaverSettings, ManagedScreensaverModeKind>();
    settings.screensaver.displays[3].options.keyboardShortcut = {49, 1u << 20, "⌘Espaço"};
    settings.hotCorners.displays = {
        {"display:a", {.topRight = {HotCornerAction::openApplication, someFile, someGrant}}}};
    CustomMenuItem leaf{
        Uuid::random(), MenuItemType::shortcut, "Editor",    ShortcutTarget::application(someFile),
        someGrant,      "--new \"a b\"",        "/icon.png", someGrant};
    CustomMenuItem folder{Uuid::random(), MenuItemType::folder, "Fundo"};
    folder.children = {leaf, {Uuid::random(), MenuItemType::separator, ""}};
    leaf.target = ShortcutTarget::file(someFile);
    settings.customMenu.items.push_back(leaf);
    settings.customMenu.items[0].children.push_back(folder);
    return settings;
}

}  // namespace quillmar
