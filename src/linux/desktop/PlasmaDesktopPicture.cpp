#include "linux/desktop/PlasmaDesktopPicture.h"

#include <fmt/format.h>

#include <vector>

#include "base/JsonRecord.h"
#include "diagnostics/Log.h"
#include "linux/dbus/BlockingBus.h"
#include "linux/desktop/DesktopFile.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Outputs.h"

namespace quillmar {

namespace {

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
    /// Nothing when something else draws the desktop, or when the picture is no single file.
    std::optional<std::filesystem::path> file() const {
        if (plugin != imagePlugin) return std::nullopt;
        const auto url = Url::parse(image);
        const auto path = url && url->isFileURL() ? url->filePath() : std::filesystem::path(image);
        return path ? existingFile(*path) : std::nullopt;
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

PlasmaPicture pictureAfter(const Bus& bus, const std::string& work, const Screen& screen) {
    const X11Connection connection("");
    const auto area = outputArea(connection.get(), screen.number);
    if (!area) throw std::runtime_error("The display is no longer connected.");
    const std::string script = fmt::format(frame, imagePlugin, work, area->x, area->y);
    const auto reply = callAndWait(bus, {busName, "/PlasmaShell", "org.kde.PlasmaShell", "evaluateScript",
                                         g_variant_new("(s)", script.c_str())});
    const char* text = "";
    if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(s)"))) g_variant_get(reply.get(), "(&s)", &text);
    auto answer = json::decode<PlasmaAnswer>(text);
    if (answer.desktops.empty()) throw std::runtime_error("The desktop does not know this display.");
    return std::move(answer.desktops.front());
}

PlasmaPicture presentPicture(const Bus& bus, const Screen& screen) { return pictureAfter(bus, "", screen); }

}  // namespace

bool PlasmaDesktopPicture::answers(const Bus& bus) {
    try {
        return bus && hasOwner(bus, busName);
    } catch (const std::runtime_error&) {
        logWarning("The session bus does not answer.", "wallpaper", std::current_exception());
        return false;
    }
}

void PlasmaDesktopPicture::setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                           const DesktopImageOptions& options) {
    requireReadable(file);
    const auto chosen = [&](const char* key, const std::string& ours) {
        const auto found = options.find(key);
        return found == options.end() ? ours : found->second;
    };
    const PlasmaPicture wanted{chosen(pluginKey, imagePlugin),
                               chosen(imageKey, Url::fromFilePath(file).string()),
                               chosen(fillKey, croppedAndScaled)};
    pictureAfter(bus_, fmt::format(writing, json::encode(wanted)), screen);
}

std::optional<std::filesystem::path> PlasmaDesktopPicture::desktopImage(const Screen& screen) {
    try {
        return presentPicture(bus_, screen).file();
    } catch (const std::runtime_error&) {
        logWarning("The present desktop picture could not be found out.", "wallpaper",
                   std::current_exception());
        return std::nullopt;
    }
}

std::optional<std::filesystem::path> PlasmaDesktopPicture::captureDesktopImage(const Screen& screen) {
    auto file = desktopImage(screen);
    return file ? file : root_.captureDesktopImage(screen);
}

/// A picture whose file is known is left out: it follows the file that is set.
DesktopImageOptions PlasmaDesktopPicture::desktopImageOptions(const Screen& screen) {
    const PlasmaPicture picture = presentPicture(bus_, screen);
    DesktopImageOptions options{{pluginKey, picture.plugin}, {fillKey, picture.fillMode}};
    if (!picture.file()) options.emplace(imageKey, picture.image);
    return options;
}

}  // namespace quillmar
