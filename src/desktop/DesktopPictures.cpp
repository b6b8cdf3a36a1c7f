#include "desktop/DesktopPictures.h"

#include "async/TimeLimit.h"
#include "desktop/SpannedDesktop.h"
#include "diagnostics/Log.h"
#include "modes/WallpaperApplicationError.h"
#include "platform/DesktopPictureError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = WallpaperApplicationError;

/// A person waits for the answer, and there is an older one.
constexpr std::chrono::milliseconds longestQuestion{500};
/// While a picture of ours is set a desktop answers only after that, and what it shows until then is known.
constexpr std::chrono::milliseconds longestQuestionMeanwhile{20};

}  // namespace

/// Counts while it lives.
class DesktopPictures::Setting {
public:
    explicit Setting(DesktopPictures& owner) : owner_(owner) { ++owner_.beingSet_; }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
    ~Setting() { --owner_.beingSet_; }

private:
    DesktopPictures& owner_;
};

DesktopPictures::DesktopPictures(Services services)
    : services_(std::move(services)),
      lastShown_(services_.folder / "last-shown.json", services_.executor),
      former_(services_.folder / "Former", services_.folder.parent_path(), services_.executor),
      tasks_(services_.loop) {}

DesktopPictures::~DesktopPictures() = default;

Task<DesktopPicturing*> DesktopPictures::desktop() {
    if (!desktop_) {
        const DesktopMethods methods = co_await services_.choosing.methods();
        if (desktop_) co_return desktop_;  // somebody else asked at the same time
        if (methods.spanned) {
            spanned_ =
                std::make_unique<SpannedDesktop>(SpannedDesktop::Services{.desktop = *methods.spanned,
                                                                          .root = methods.screens,
                                                                          .screens = services_.screens,
                                                                          .rendering = services_.rendering,
                                                                          .encoding = services_.encoding,
                                                                          .executor = services_.executor,
                                                                          .folder = services_.folder});
        }
        desktop_ = spanned_ ? spanned_.get() : &methods.screens;
        forgetsWithSession_ = !spanned_ && desktop_->takesPixels();
    }
    co_return desktop_;
}

Task<bool> DesktopPictures::takesPixels() { co_return (co_await desktop())->takesPixels(); }

Screen DesktopPictures::screenOf(const std::string& displayID) const {
    auto screen = services_.displays.screen(displayID);
    if (!screen) throw Error(Error::Case::unavailableDisplay, displayID);
    return *std::move(screen);
}

Task<bool> DesktopPictures::isShown(std::string displayID, fs::path file) {
    DesktopPicturing* picturing = co_await desktop();
    const auto screen = services_.displays.screen(displayID);
    if (!screen) co_return false;
    const PresentDesktopImage present = co_await picturing->desktopImage(*screen);
    co_return present.file == file && !present.isForgotten;
}

Task<void> DesktopPictures::set(std::string displayID, DesktopImage image) {
    co_await uncancelled(show(std::move(displayID), std::move(image), {}));
}

Task<void> DesktopPictures::show(std::string displayID, DesktopImage image, DesktopImageOptions options) {
    const auto hold = co_await order_[displayID].acquire();
    givenBack_.erase(displayID);
    co_await showInTurn(displayID, std::move(image), std::move(options));
}

Task<void> DesktopPictures::showInTurn(std::string displayID, DesktopImage image,
                                       DesktopImageOptions options) {
    const Setting setting(*this);
    DesktopPicturing* picturing = co_await desktop();
    // Looked up only now: the display may have gone meanwhile.
    const Screen screen = screenOf(displayID);
    CacheFileLease lease(services_.cacheFiles, image.file);
    if (picturing->takesPixels()) {
        const bool hasIt = !image.pixels && options.empty() && co_await isShown(displayID, image.file);
        if (!hasIt) {
            // One picture for all screens is given back as the file that it is, such as a list of pictures
            // for the times of the day.
            const bool isGivenBack = spanned_ && !options.empty();
            if (!image.pixels && !isGivenBack) image.pixels = co_await pixelsOf(image.file, screen);
            co_await picturing->setDesktopImage(image, screen, std::move(options));
        }
    } else {
        if (image.pixels) co_await services_.writer.write(image.file, image.pixels);
        co_await showOrPutBack(picturing, image, screen, std::move(options));
    }
    remember(displayID, screen, std::move(lease), image.file);
    if (forgetsWithSession_) co_await lastShown_.note(screen, image.file);
}

/// A desktop that is told of a picture in several steps may have taken some of them when it refuses one.
Task<void> DesktopPictures::showOrPutBack(DesktopPicturing* desktop, DesktopImage image, Screen screen,
                                          DesktopImageOptions options) {
    const PresentDesktopImage before = co_await desktop->desktopImage(screen);
    const DesktopImageOptions optionsBefore = co_await desktop->desktopImageOptions(screen);
    std::exception_ptr failure;
    try {
        co_await desktop->setDesktopImage(std::move(image), screen, std::move(options));
        co_return;
    } catch (const std::exception&) {
        failure = std::current_exception();
    }
    try {
        co_await desktop->setDesktopImage({before.file.value_or(fs::path()), nullptr}, screen, optionsBefore);
    } catch (const std::exception&) {
        logWarning("The former desktop picture could not be put back.", "wallpaper",
                   std::current_exception());
    }
    std::rethrow_exception(failure);
}

/// Of a file that was shown before: as it is where it has the screen's size still, else at the top left.
Task<SharedPixels> DesktopPictures::pixelsOf(fs::path file, Screen screen) {
    const PixelSize size{static_cast<int>(screen.area.width), static_cast<int>(screen.area.height)};
    SharedPixels pixels = co_await services_.rendering.load(file, size);
    if (!pixels) {
        pixels = co_await services_.rendering.render(file, [size](PixelSize source) {
            return PictureComposition{.canvas = size, .destination = {0, 0, source.width, source.height}};
        });
    }
    co_return pixels;
}

void DesktopPictures::remember(const std::string& displayID, const Screen& screen, CacheFileLease lease,
                               fs::path file) {
    const auto now = services_.displays.screen(displayID);
    if (!now || now->number != screen.number) return;
    leases_.insert_or_assign(displayID, std::move(lease));
    lastKnown_.insert_or_assign(displayID, file);
    mustShow_.insert_or_assign(displayID, std::move(file));
    if (shownHandler_) shownHandler_(displayID);
}

std::optional<fs::path> DesktopPictures::mustShow(const std::string& displayID) const {
    const auto found = mustShow_.find(displayID);
    return found == mustShow_.end() ? std::nullopt : std::optional(found->second);
}

Task<bool> DesktopPictures::forgetsWithSession() {
    co_await desktop();
    co_return forgetsWithSession_;
}

Task<DesktopSnapshot> DesktopPictures::capture(std::string displayID) {
    const auto hold = co_await order_[displayID].acquire();
    DesktopPicturing* picturing = co_await desktop();
    const Screen screen = screenOf(displayID);
    if (const auto shown = mustShow_.find(displayID); shown != mustShow_.end()) {
        co_await services_.writer.settled(shown->second);
    }
    auto image = co_await picturing->captureDesktopImage(screen);
    if (!image) throw Error(Error::Case::desktopSnapshotUnavailable, displayID);
    CacheFileLease lease(services_.cacheFiles, *image);
    co_return DesktopSnapshot{std::move(displayID), *std::move(image),
                              co_await picturing->desktopImageOptions(screen), std::move(lease)};
}

Task<void> DesktopPictures::restore(DesktopSnapshot snapshot) {
    co_await uncancelled(show(snapshot.displayID, {snapshot.image, nullptr}, snapshot.options));
}

Task<void> DesktopPictures::keepFormer(std::string displayID, fs::path image, DesktopImageOptions options) {
    return former_.keep(std::move(displayID), std::move(image), std::move(options));
}

Task<void> DesktopPictures::giveBack(std::string displayID) {
    try {
        co_await uncancelled(giveBackInTurn(displayID));
    } catch (const std::exception&) {
        logWarning("A display could not be given back its former picture.", "wallpaper",
                   std::current_exception(), {{"display_id", displayID}});
    }
}

Task<void> DesktopPictures::giveBackInTurn(std::string displayID) {
    const auto hold = co_await order_[displayID].acquire();
    givenBack_.insert(displayID);
    if (shownHandler_) shownHandler_(displayID);
    const auto given = mustShow(displayID);
    // What the user has set by other means meanwhile stays.
    if (!given || !co_await isShown(displayID, *given)) co_return;
    const auto former = co_await former_.find(displayID);
    const auto file = former ? former->fileURL.filePath() : std::nullopt;
    if (file) co_await showInTurn(displayID, {*file, nullptr}, former->options);
    co_await former_.forget(displayID);
}

Task<void> DesktopPictures::removeForgottenFormer() {
    FilePaths files;
    for (auto& [id, file] : co_await shown()) files.insert(std::move(file));
    co_await former_.removeForgotten(std::move(files));
}

Task<void> DesktopPictures::recall(std::string displayID) {
    try {
        co_await uncancelled(recallInTurn(displayID));
    } catch (const std::exception&) {
        logWarning("The last desktop picture could not be shown again.", "wallpaper",
                   std::current_exception());
    }
}

Task<void> DesktopPictures::recallInTurn(std::string displayID) {
    const auto hold = co_await order_[displayID].acquire();
    const auto screen = services_.displays.screen(displayID);
    if (!screen) co_return;
    DesktopPicturing* picturing = co_await desktop();
    const PresentDesktopImage present = co_await picturing->desktopImage(*screen);
    auto image = present.file;
    const bool isLost = present.isForgotten || (forgetsWithSession_ && !image);
    if (isLost && forgetsWithSession_) image = co_await lastShown_.pictureOf(*screen);
    if (!image) co_return;
    if (isLost) {
        co_await showInTurn(displayID, {*std::move(image), nullptr}, {});
    } else {
        remember(displayID, *screen, CacheFileLease(services_.cacheFiles, *image), *image);
    }
}

Task<void> DesktopPictures::repaintForgotten() {
    for (const DisplayInfo& display : services_.displays.displays()) {
        try {
            co_await uncancelled(repaintIfForgotten(display.id));
        } catch (const std::exception&) {
            logWarning("A display could not be given its picture again.", "wallpaper",
                       std::current_exception(), {{"display_id", display.id}});
        }
    }
}

Task<void> DesktopPictures::repaintIfForgotten(std::string displayID) {
    const auto hold = co_await order_[displayID].acquire();
    const auto screen = services_.displays.screen(displayID);
    const auto wanted = mustShow_.find(displayID);
    if (!screen || wanted == mustShow_.end()) co_return;
    DesktopPicturing* picturing = co_await desktop();
    const PresentDesktopImage present = co_await picturing->desktopImage(*screen);
    // Where others take the whole desktop a file is ours: that of a display which was at this place
    // meanwhile.
    const bool isAnothers = forgetsWithSession_ && present.file && present.file != wanted->second;
    if (!present.isForgotten && !isAnothers) co_return;
    co_await showInTurn(displayID, {wanted->second, nullptr}, {});
}

Task<std::map<std::string, fs::path>> DesktopPictures::shown() {
    // One question at a time: to a desktop that does not answer they would pile up.
    if (!asking_ || asking_.isFinished()) asking_ = tasks_.start(askForShown());
    co_await endedWithin(asking_, beingSet_ > 0 ? longestQuestionMeanwhile : longestQuestion);
    std::map<std::string, fs::path> files;
    for (const DisplayInfo& display : services_.displays.displays()) {
        if (const auto known = lastKnown_.find(display.id); known != lastKnown_.end()) files.insert(*known);
    }
    co_return files;
}

Task<void> DesktopPictures::askForShown() {
    DesktopPicturing* picturing = nullptr;
    try {
        picturing = co_await desktop();
        obstacle_ = nullptr;
    } catch (const DesktopPictureError&) {
        obstacle_ = std::current_exception();
        co_return;
    }
    for (const ConnectedDisplay& display : services_.displays.connectedDisplays()) {
        const PresentDesktopImage present = co_await picturing->desktopImage(display.screen);
        if (present.file) {
            lastKnown_.insert_or_assign(display.info.id, *present.file);
        } else if (!mustShow_.contains(display.info.id)) {
            lastKnown_.erase(display.info.id);
        }
    }
}

}  // namespace quillmar
