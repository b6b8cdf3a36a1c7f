#include "linux/desktop/PlasmaDesktopPicture.h"

#include <fmt/format.h>

#include <vector>

#include "base/JsonRecord.h"
#include "linux/desktop/DesktopCall.h"

namespace quillmar {

namespace {

using Case = DesktopPictureError::Case;

constexpr const char* busName = "org.kde.plasmashell";
constexpr const char* imagePlugin = "org.kde.image";
constexpr const char* pluginKey = "wallpaperPlugin";
constexpr const char* imageKey = "Image";
constexpr const char* fillKey = "FillMode";
constexpr const char* croppedAndScaled = "2";

/// What a desktop shows, in the words of its settings.
struct PlasmaPicture {
    std::string plugin;
    std::string image;  ///< a URL or a path
    std::string fillMode;

    static void describe(auto& self, auto& io) {
        io.required(pluginKey, self.plugin).required(imageKey, self.image).required(fillKey, self.fillMode);
    }
    /// Whether it is there or not; empty when something else draws the desktop.
    std::filesystem::path path() const {
        if (plugin != imagePlugin) return {};
        const auto url = Url::parse(image);
        return url && url->isFileURL() ? url->filePath().value_or("") : std::filesystem::path(image);
    }
};

struct PlasmaAnswer {
    std::vector<PlasmaPicture> desktops;
    static void describe(auto& self, auto& io) { io.required("desktops", self.desktops); }
};

/// Tells of the monitor's desktops, of one in every activity that shows one, after `each` had its way with
/// them. The monitor is known by its top left corner alone: there its size is counted in points, its place in
/// pixels.
constexpr std::string_view frame = R"(var answer = [];
function each(desktop) {{
    {1}
}}
desktops().forEach(function (desktop) {{
    if (desktop.screen < 0) return;
    var place = screenGeometry(desktop.screen);
    if (place.x !== {2} || place.y !== {3}) return;
    desktop.currentConfigGroup = ["Wallpaper", "{0}", "General"];
    each(desktop);
    answer.push({{
        wallpaperPlugin: String(desktop.wallpaperPlugin),
        Image: String(desktop.readConfig("Image", "")),
        FillMode: String(desktop.readConfig("FillMode", ""))
    }});
}});
print(JSON.stringify({{desktops: answer}}));
)";

/// The settings go first: the plugin shows what it finds when it is chosen.
constexpr std::string_view writing = R"(var wanted = {0};
    desktop.writeConfig("Image", wanted.Image);
    desktop.writeConfig("FillMode", wanted.FillMode);
    desktop.wallpaperPlugin = wanted.wallpaperPlugin;)";

constexpr const char* desktopName = "Plasma";

/// What a desktop shows after `work`, part of a script, was done on the screen's desktops.
Task<PlasmaPicture> pictureAfter(Bus bus, std::string work, Screen screen) {
    const std::string script = fmt::format(frame, imagePlugin, work, screen.area.x, screen.area.y);
    std::shared_ptr<GVariant> reply;
    try {
        reply = co_await callDesktop(bus,
                                     {busName, "/PlasmaShell", "org.kde.PlasmaShell", "evaluateScript",
                                      g_variant_new("(s)", script.c_str())},
                                     desktopName, screen.connector);
    } catch (const BusRefusal& error) {
        throw refusal(error, desktopName, screen.connector);
    }
    const char* text = "";
    if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(s)"))) g_variant_get(reply.get(), "(&s)", &text);
    PlasmaAnswer answer;
    try {
        answer = json::decode<PlasmaAnswer>(text);
    } catch (const std::runtime_error& error) {
        throw DesktopPictureError(Case::refused, desktopName, screen.connector, error.what());
    }
    if (answer.desktops.empty()) throw DesktopPictureError(Case::disconnected, desktopName, screen.connector);
    co_return std::move(answer.desktops.front());
}

Task<PlasmaPicture> presentPicture(Bus bus, Screen screen) {
    return pictureAfter(std::move(bus), "", std::move(screen));
}

}  // namespace

Task<bool> PlasmaDesktopPicture::answers(Bus bus) {
    return hasOwner(std::move(bus), busName, desktopAnswerMilliseconds);
}

Task<void> PlasmaDesktopPicture::setDesktopImage(DesktopImage image, Screen screen,
                                                 DesktopImageOptions options) {
    const TaskLock::Hold turn = co_await order_.acquire();
    co_await requireReadable(pool_, image.file, desktopName, screen.connector);
    const auto chosen = [&](const char* key, const std::string& ours) {
        const auto found = options.find(key);
        return found == options.end() ? ours : found->second;
    };
    const PlasmaPicture wanted{chosen(pluginKey, imagePlugin),
                               chosen(imageKey, Url::fromFilePath(image.file).string()),
                               chosen(fillKey, croppedAndScaled)};
    co_await pictureAfter(bus_, fmt::format(writing, json::encode(wanted)), screen);
}

Task<PresentDesktopImage> PlasmaDesktopPicture::desktopImage(Screen screen) {
    const TaskLock::Hold turn = co_await order_.acquire();
    const PlasmaPicture picture = co_await presentPicture(bus_, screen);
    co_return PresentDesktopImage{.file = co_await existingFile(pool_, picture.path())};
}

Task<std::optional<std::filesystem::path>> PlasmaDesktopPicture::captureDesktopImage(Screen screen) {
    auto present = co_await desktopImage(screen);
    if (present.file) co_return present.file;
    co_return co_await root_.captureDesktopImage(screen);
}

/// A picture whose file is known is left out: it follows the file that is set.
Task<DesktopImageOptions> PlasmaDesktopPicture::desktopImageOptions(Screen screen) {
    const TaskLock::Hold turn = co_await order_.acquire();
    const PlasmaPicture picture = co_await presentPicture(bus_, screen);
    DesktopImageOptions options{{pluginKey, picture.plugin}, {fillKey, picture.fillMode}};
    const auto file = co_await existingFile(pool_, picture.path());
    if (!file) options.emplace(imageKey, picture.image);
    co_return options;
}

}  // namespace quillmar
