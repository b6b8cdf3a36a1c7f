#include "commandline/CommandTable.h"

#include <algorithm>

#include "base/Enum.h"
#include "commandline/WallpaperModeArguments.h"
#include "settings/backup/SettingsBackupDocument.h"
#include "settings/records/GeneralSettings.h"
#include "settings/records/SettingsSection.h"
#include "settings/records/SoftwareUpdatePreferences.h"

namespace quillmar {
namespace {

OptionRow json() { return {.name = "json", .text = "as JSON, for scripts"_key}; }

OptionRow sections() {
    OptionRow row{.name = "sections",
                  .value = "LIST",
                  .word = WordKind::sections,
                  .text = "only these sections of the settings, with commas between"_key};
    for (const std::string_view name : enumNames(SettingsBackupSection{})) row.choices.push_back(name);
    return row;
}

OperandRow someDisplay() { return {"DISPLAY|all", "the display"_key, WordKind::display, true}; }

OperandRow someSection() {
    OperandRow row{.name = "SECTION", .what = "a section"_key, .isOptional = true};
    for (const std::string_view name : enumNames(SettingsSection{})) row.choices.push_back(name);
    return row;
}

OperandRow backupFile() { return {"FILE", "a file"_key, WordKind::file}; }

std::vector<CommandRow> lookingCommands() {
    return {
        {.words = "displays",
         .options = {json()},
         .summary = "list the connected displays: ID, name, place, scale"_key,
         .details =
             "The main display has a star. Sizes and places are in points; places are counted from the "
             "bottom left corner of the main display, upwards."_key},
        {.words = "status",
         .options = {json()},
         .summary = "say besides when each display changes next and what failed last"_key},
        {.words = "watch",
         .options = {json()},
         .summary = "say the same now, and then each change as it happens"_key,
         .details = "It ends with the program. In JSON each change is an object on one line."_key},
        {.words = "wallpaper",
         .options = {json()},
         .summary = "say what each display is set to and shows"_key,
         .details = "In JSON the keys of picture services stand as \"[redacted]\"."_key},
        {.words = "wallpaper set",
         .operands = {{"DISPLAY|all", "the display"_key, WordKind::display},
                      {"KIND", "what the display should show"_key, WordKind::kind}},
         .summary = "give a display, or all of them, another wallpaper"_key,
         .details =
             "DISPLAY is an ID, a name or \"main\". The wallpaper is saved and shown before the command "
             "ends; what fails on a display is taken back there."_key,
         .takesKinds = true},
    };
}

std::vector<CommandRow> pictureCommands() {
    return {
        {.words = "wallpaper next",
         .operands = {someDisplay()},
         .summary = "show the next picture, by default on all displays"_key},
        {.words = "wallpaper previous",
         .operands = {someDisplay()},
         .summary = "show the picture before, by default on all displays"_key,
         .details =
             "The settings stay as they are. \"next\" goes back to the later pictures, and from the last one "
             "to a new one. 200 pictures of each display are remembered."_key},
        {.words = "wallpaper info",
         .operands = {someDisplay()},
         .options = {json()},
         .summary = "say what a picture is, by whom, and where it comes from"_key},
        {.words = "wallpaper open",
         .operands = {someDisplay()},
         .summary = "open the web page of the main display's picture, or of another one's"_key,
         .details = "Of a picture without a page the file is opened."_key},
        {.words = "wallpaper favourite",
         .operands = {someDisplay()},
         .summary = "copy the main display's picture, or another one's, to your own pictures"_key,
         .details =
             "It comes into the folder \"Quillmar\" among your pictures, with its title, author, source and "
             "licence where these are known."_key},
        {.words = "wallpaper trash",
         .operands = {someDisplay()},
         .summary = "keep the main display's picture, or another one's, from coming again"_key,
         .details =
             "The display goes on to the next picture. The file stays where it is, and can still be "
             "set by its name; a line less in the file \"trash\" lets it come again after the next start."_key},
    };
}

std::vector<CommandRow> settingsCommands() {
    return {
        {.words = "settings",
         .operands = {someSection()},
         .summary = "open the Settings window, at a section of it if one is named"_key,
         .details = "SECTION is general, backup or about. Where Quillmar does not run, it is started."_key},
        {.words = "general",
         .options = {json()},
         .summary = "list the settings that hold for all displays"_key},
        {.words = "general set",
         .options = recordOptions<GeneralSettings>(),
         .summary = "change some of these settings"_key,
         .details = "The options are called as \"quillmar general\" lists them."_key},
        {.words = "backup export",
         .operands = {backupFile()},
         .options = {sections()},
         .summary = "write the settings to a backup file"_key,
         .details = "FILE \"-\" is the standard output."_key},
        {.words = "backup inspect",
         .operands = {backupFile()},
         .summary = "say what a backup file holds"_key},
        {.words = "backup restore",
         .operands = {backupFile()},
         .options = {sections()},
         .summary = "replace the settings by those of a backup file"_key,
         .details = "Reaches the running program, or the settings file where none runs."_key},
        {.words = "backup reset", .summary = "replace the settings by the defaults"_key},
        {.words = "update",
         .options = {json()},
         .summary = "look for a newer version of Quillmar now, and download it"_key,
         .details =
             "The download is kept only when its makers have signed it. Quillmar says where it lies and "
             "never installs it."_key},
        {.words = "update set",
         .options = recordOptions<SoftwareUpdatePreferences>(),
         .summary = "change what Quillmar does about newer versions by itself"_key},
        {.words = "quit", .summary = "end the running program, after the last change is saved"_key},
        {.words = "help",
         .operands = {{"COMMAND", "a command"_key, WordKind::command, true}},
         .summary = "say how a command is called"_key},
    };
}

}  // namespace

const OptionRow* CommandRow::option(std::string_view name) const {
    const auto found = std::ranges::find_if(
        options, [&](const OptionRow& row) { return row.name == name || row.field == name; });
    return found == options.end() ? nullptr : &*found;
}

const std::vector<CommandRow>& commands() {
    static const std::vector<CommandRow> rows = [] {
        std::vector<CommandRow> all = lookingCommands();
        std::ranges::move(pictureCommands(), std::back_inserter(all));
        std::ranges::move(settingsCommands(), std::back_inserter(all));
        return all;
    }();
    return rows;
}

const CommandRow* findCommand(const std::vector<CommandRow>& rows, std::string_view words) {
    const auto found = std::ranges::find(rows, words, &CommandRow::words);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace quillmar
