// From exec to the pixels of all monitors: the early painter beside others, turn by turn, in medians.
// usage: early_paint PICTURE...   a picture for each monitor, from left to right
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include "linux/early/EarlyPainter.h"
#include "linux/x11/OutputMemory.h"
#include "linux/x11/X11Outputs.h"
#include "storage/LastShownRows.h"

namespace quillmar {
namespace {

using Command = std::vector<std::string>;
using Milliseconds = std::chrono::duration<double, std::milli>;
constexpr int rounds = 9;
constexpr std::chrono::seconds limit{20};
/// What hsetroot paints before each turn.
constexpr const char* blank = "#010203";
constexpr std::uint32_t blankPixel = 0x010203;

Environment environmentOfProcess() {
    Environment environment;
    for (const char* const* entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        environment.emplace(text.substr(0, text.find('=')), text.substr(text.find('=') + 1));
    }
    return environment;
}

pid_t started(const Command& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
        throw std::runtime_error(command[0] + " cannot be started");
    }
    return process;
}

void run(const Command& command) { waitpid(started(command), nullptr, 0); }

class Monitors {
public:
    Monitors() : outputs_(connectedOutputs(connection_.server())) {
        std::erase_if(outputs_, [](const auto& output) { return !output.area; });
        std::ranges::sort(outputs_, {}, [](const auto& output) { return output.area->x; });
    }
    const std::vector<ConnectedOutput>& outputs() const { return outputs_; }
    /// From exec until the last pixel of every monitor is no longer blank.
    Milliseconds timeOf(const Command& command) const {
        run({"hsetroot", "-solid", blank});
        const auto began = std::chrono::steady_clock::now();
        const pid_t process = started(command);
        while (!arePainted()) {
            if (std::chrono::steady_clock::now() - began > limit)
                throw std::runtime_error(command[0] + " painted nothing");
        }
        const Milliseconds elapsed = std::chrono::steady_clock::now() - began;
        waitpid(process, nullptr, 0);
        return elapsed;
    }

private:
    bool arePainted() const {
        return std::ranges::none_of(outputs_, [&](const ConnectedOutput& output) {
            const auto place = xcbRectangle({output.area->right() - 1, output.area->bottom() - 1, 1, 1});
            const X11Server& server = connection_.server();
            const auto image = xcbAnswer(&xcb_get_image_reply, server.connection,
                                         xcb_get_image(server.connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                       server.root(), place.x, place.y, 1, 1, ~0u));
            const auto pixel =
                image ? *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get())) : blankPixel;
            return (pixel & 0xffffff) == blankPixel;
        });
    }
    X11Connection connection_{""};
    std::vector<ConnectedOutput> outputs_;
};

/// Colours for every monitor, as if they had been shown last.
void keepRows(const Monitors& monitors, const std::filesystem::path& folder, const std::string& png) {
    auto identities = rememberedIdentities(outputIdentitiesFile(environmentOfProcess()));
    const auto uuids = identities.identify(pluggedMonitors(monitors.outputs()));
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        const PixelRect area = monitors.outputs()[i].area.value();
        PixelBuffer pixels({static_cast<int>(area.width), static_cast<int>(area.height)});
        pixels.fill({static_cast<std::uint8_t>(40 * i), 90, 160});
        LastShownRows::write(folder, uuids[i].lowercaseString(), png, pixels);
    }
}

void measure(const Command& pictures) {
    const Monitors monitors;
    const auto folder = std::filesystem::temp_directory_path() / fmt::format("early-{}", getpid());
    keepRows(monitors, folder, pictures.front());
    Command feh{"feh", "--no-fehbg", "--bg-fill"};
    Command xwallpaper{"xwallpaper"};
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        feh.push_back(pictures[i]);
        for (const char* option : {"--output", "", "--zoom", ""}) xwallpaper.emplace_back(option);
        xwallpaper[xwallpaper.size() - 3] = monitors.outputs().at(i).connector;
        xwallpaper.back() = pictures[i];
    }
    std::vector<std::pair<std::string, Command>> rows{
        {"feh", feh}, {"early painter", {"/proc/self/exe", "--paint", folder.string()}}};
    rows[1].second[0] = std::filesystem::read_symlink("/proc/self/exe");
    if (std::system("command -v xwallpaper >/dev/null") == 0) rows.emplace_back("xwallpaper", xwallpaper);
    std::vector<std::vector<double>> times(rows.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            times[i].push_back(monitors.timeOf(rows[i].second).count());
        }
    }
    std::filesystem::remove_all(folder);
    for (auto& samples : times) std::ranges::sort(samples);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double median = times[i][rounds / 2];
        fmt::print("{:14} {:7.1f} ms  {:5.2f} of feh\n", rows[i].first, median,
                   median / times[0][rounds / 2]);
    }
}

}  // namespace
}  // namespace quillmar

int main(int argc, char** argv) {
    const quillmar::Command arguments(argv + 1, argv + argc);
    if (arguments.size() == 2 && arguments[0] == "--paint") {
        return quillmar::paintLastShown(arguments[1], quillmar::environmentOfProcess()) > 0 ? 0 : 1;
    }
    quillmar::measure(arguments);
    return 0;
}
