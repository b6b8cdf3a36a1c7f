#include "app/CommandLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ostream>

namespace quillmar {
namespace {

/// What the running program carries out.
constexpr auto programCommands =
    std::to_array<std::string_view>({"backup", "general", "wallpaper", "status", "quit"});

}  // namespace

CommandLine CommandLine::parse(std::span<const std::string_view> arguments) {
    if (arguments.empty()) return {};
    const auto refuse = [](std::string complaint) {
        return CommandLine{.command = Command::refuse, .complaint = std::move(complaint)};
    };
    CommandLine line;
    const std::string_view first = arguments.front();
    if (first == "--version") {
        line.command = Command::showVersion;
    } else if (first == "--help" || first == "-h") {
        line.command = Command::showHelp;
    } else if (first == "displays") {
        line.command = Command::listDisplays;
    } else if (std::ranges::find(programCommands, first) != programCommands.end()) {
        line.command = Command::askRunningProgram;
        line.arguments.assign(arguments.begin(), arguments.end());
        return line;
    } else {
        return refuse(fmt::format("There is no command \"{}\".", first));
    }
    for (const std::string_view argument : arguments.subspan(1)) {
        if (line.command != Command::listDisplays || argument != "--json") {
            return refuse(fmt::format("\"{}\" does not take \"{}\".", first, argument));
        }
        line.asJson = true;
    }
    return line;
}

void printHelp(std::ostream& out) {
    out << "Usage: quillmar [COMMAND]\n"
           "\n"
           "Without a command Quillmar starts and gives every display its own desktop.\n"
           "A second start brings the running one to the front.\n"
           "\n"
           "Commands:\n"
           "  displays [--json]       list the connected displays: ID, name, place, scale\n"
           "  wallpaper [--json]      say what each display is set to and shows\n"
           "  wallpaper set DISPLAY|all KIND...\n"
           "                          give a display another wallpaper: colour #RRGGBB, image FILE,\n"
           "                          slideshow FOLDER, apod, nasa-epic, bing, spotlight, unsplash,\n"
           "                          wallhaven, museums, mode JSON, disabled\n"
           "  wallpaper next [DISPLAY|all]\n"
           "                          show the next picture\n"
           "  status [--json]         say besides when each display changes next and what failed last\n"
           "  general [--json]        list the general settings\n"
           "  general set OPTION...   change some of them: --pauseRotations, --language portuguese,\n"
           "                          --showRemoteErrorNotifications=false ...\n"
           "  backup export FILE      write the settings to a backup file\n"
           "  backup inspect FILE     say what a backup file holds\n"
           "  backup restore FILE     replace the settings by those of a backup file\n"
           "  backup reset            replace the settings by the defaults\n"
           "  quit                    end the running program\n"
           "  --version               print the version\n"
           "  --help                  print this help\n"
           "\n"
           "export and restore take --sections with a list of general, wallpaper, lockScreen,\n"
           "screensaver, hotCorners, customMenu; without it they take all. A restore or reset\n"
           "reaches the running program, or the settings file where none runs.\n"
           "\n"
           "Settings lie in $XDG_DATA_HOME/Quillmar/settings.json, by default\n"
           "~/.local/share/Quillmar/settings.json.\n";
}

void printDisplays(std::ostream& out, const std::vector<DisplayInfo>& displays) {
    if (displays.empty()) {
        out << "No display is connected.\n";
        return;
    }
    std::size_t nameWidth = 0;
    for (const DisplayInfo& display : displays) nameWidth = std::max(nameWidth, display.localizedName.size());
    for (const DisplayInfo& display : displays) {
        const CGRectCodable& frame = display.frame;
        out << fmt::format("{} {}  {:<{}}  {:g}x{:g}{:+g}{:+g}  scale {:g}\n", display.isMain ? '*' : ' ',
                           display.id, display.localizedName, nameWidth, frame.width, frame.height, frame.x,
                           frame.y, display.scaleFactor);
    }
}

}  // namespace quillmar
