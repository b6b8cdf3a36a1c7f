#include "linux/glib/AutostartEntry.h"

#include <gmock/gmock.h>

#include <fstream>

#include "base/Files.h"
#include "fakes/FakeExecutors.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using Status = LoginItemRegistrationStatus;

struct AutostartEntryTest : ::testing::Test {
    TemporaryFolder folder;
    fs::path program = folder.path() / "it's 100% $HOME/quillmar";
    fs::path file = folder.path() / "config/autostart/com.quillmar.Quillmar.desktop";
    VirtualLoop loop;
    InlineExecutor files;
    AutostartEntry entry{
        files,
        {{"XDG_CONFIG_HOME", folder.path() / "config"}, {"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"}},
        program};
    TaskScope tasks{loop};

    AutostartEntryTest() { install(program); }
    static void install(const fs::path& path) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "#!/bin/sh\n";
        fs::permissions(path, fs::perms::owner_all);
    }
    std::string text() const { return readFile(file, 4096); }
    void put(const std::string& lines) const {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Desktop Entry]\n" << lines;
    }
    Status status() { return outcomeOf(loop, tasks, entry.status())->value.value(); }
    std::string registered() { return outcomeOf(loop, tasks, entry.registerItem())->text; }
    std::string unregistered() { return outcomeOf(loop, tasks, entry.unregister())->text; }
};

TEST_F(AutostartEntryTest, theSessionStartsTheProgramFromWhereverItIsUntilItNoLongerShall) {
    EXPECT_EQ(status(), Status::notRegistered);
    EXPECT_EQ(registered(), "done");
    EXPECT_EQ(status(), Status::enabled);
    EXPECT_THAT(text(), HasSubstr("Exec=\"" + folder.path().string() + "/it's 100%% \\\\$HOME/quillmar\"\n"));
    fs::remove(program);
    EXPECT_EQ(status(), Status::notFound) << "the program was taken off";
    EXPECT_THAT(registered(), HasSubstr("There is no program"));
    EXPECT_EQ(unregistered(), "done");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(unregistered(), "done");
}

TEST_F(AutostartEntryTest, whatTheUsersToolsSayCountsAndTheRestOfTheirEntryIsKept) {
    install(folder.path() / "quillmar");
    const std::string exec = "Exec=" + (folder.path() / "quillmar").string() + " status\n";
    const std::pair<std::string, Status> cases[] = {
        {exec, Status::enabled},
        {exec + "Hidden=false\nX-GNOME-Autostart-enabled=true\n", Status::enabled},
        {exec + "Hidden=true\n", Status::notRegistered},
        {"Hidden=true\n", Status::notRegistered},
        {exec + "X-GNOME-Autostart-enabled=false\n", Status::notRegistered},
        {exec + "OnlyShowIn=XFCE;GNOME;\n", Status::enabled},
        {exec + "OnlyShowIn=XFCE;KDE;\n", Status::requiresApproval},
        {exec + "NotShowIn=GNOME;\n", Status::requiresApproval},
        {"Exec=/opt/gone/quillmar\n", Status::notFound},
        {"Exec=other\n", Status::notFound},
        {"", Status::notFound},
    };
    for (const auto& [lines, found] : cases) {
        put(lines);
        EXPECT_EQ(status(), found) << lines;
    }
    put("# mine\n" + exec + "Name[pt]=Papel\nX-GNOME-Autostart-Delay=5\nHidden=true\n");
    EXPECT_EQ(registered(), "done");
    EXPECT_EQ(status(), Status::enabled);
    for (const std::string& kept : {std::string("# mine"), exec, std::string("Name[pt]=Papel"),
                                    std::string("X-GNOME-Autostart-Delay=5")})
        EXPECT_THAT(text(), HasSubstr(kept));
    EXPECT_THAT(text(), Not(HasSubstr("Hidden")));
}

TEST_F(AutostartEntryTest, whatStandsInTheWayIsLeftAndNamed) {
    put("Exec=other\n");
    for (const std::string& outcome : {registered(), unregistered()})
        EXPECT_THAT(outcome, HasSubstr("Quillmar.desktop starts another program and stays as it is."));
    EXPECT_THAT(text(), HasSubstr("Exec=other"));
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_EQ(status(), Status::notFound);
    EXPECT_THAT(registered(), HasSubstr("Quillmar.desktop: Is a directory"));
    fs::remove_all(file.parent_path());
    std::ofstream(file.parent_path()) << "no folder";
    EXPECT_THAT(registered(), HasSubstr("Not a directory"));
    AutostartEntry nowhere(files, {{"HOME", "relative"}}, program);
    EXPECT_THAT(outcomeOf(loop, tasks, nowhere.registerItem())->text, HasSubstr("Neither XDG_CONFIG_HOME"));
}

}  // namespace
}  // namespace quillmar
