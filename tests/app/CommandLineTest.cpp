#include "app/CommandLine.h"

#include <sstream>

namespace quillmar {
namespace {

using Command = CommandLine::Command;

CommandLine parse(std::vector<std::string_view> arguments) { return CommandLine::parse(arguments); }

TEST(CommandLineTest, whatIsNotUnderstoodIsNamed) {
    EXPECT_EQ(parse({}).command, Command::run);
    EXPECT_EQ(parse({"displays"}).command, Command::listDisplays);
    EXPECT_FALSE(parse({"displays"}).asJson);
    EXPECT_TRUE(parse({"displays", "--json"}).asJson);
    EXPECT_EQ(parse({"walpaper"}).complaint, "There is no command \"walpaper\".");
    EXPECT_EQ(parse({"displays", "--jsn"}).complaint, "\"displays\" does not take \"--jsn\".");
    EXPECT_EQ(parse({"--version", "--json"}).command, Command::refuse);
}

TEST(CommandLineTest, displaysAreListedALineEach) {
    std::ostringstream out;
    printDisplays(out, {{"display:a", "Left", {0, 0, 1920, 1080}, {}, 2, true},
                        {"display:b", "Right one", {-1280, 56, 1280, 1024}, {}, 1.5, false}});
    EXPECT_EQ(out.str(),
              "* display:a  Left       1920x1080+0+0  scale 2\n"
              "  display:b  Right one  1280x1024-1280+56  scale 1.5\n");
}

}  // namespace
}  // namespace quillmar
