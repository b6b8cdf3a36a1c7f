#include "commandline/CommandLine.h"

#include "commandline/Completion.h"
#include "commandline/Help.h"
#include "commandline/WallpaperModeArguments.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

WallpaperModeArguments modeOf(Words words) {
    words.insert(words.begin(), {"wallpaper", "set", "main"});
    return parseWallpaperMode(CommandLine::parse(words), "/home/ana");
}

/// The complaint about a line, in its two lines.
std::string complaintAbout(const Words& words) {
    try {
        judge(CommandLine::parse(words));
        return "understood";
    } catch (const UsageError& error) {
        return error.complaint(GeneralLanguage::english);
    }
}

TEST(CommandLineTest, whatIsNotUnderstoodIsSaidWithTheHelpToRead) {
    const std::vector<std::pair<Words, std::string>> rows = {
        {{"walpaper"}, "There is no command \"walpaper\".\nSee \"quillmar help\".\n"},
        {{"displays", "--jsn"}, "\"displays\" does not take \"--jsn\".\nSee \"quillmar help displays\".\n"},
        {{"--version", "--json"}, "\"--version\" does not take \"--json\".\nSee \"quillmar help\".\n"},
        {{"help", "backup", "burn"}, "There is no command \"backup burn\".\nSee \"quillmar help\".\n"},
        {{"backup"},
         "\"backup\" needs one of its commands: export, inspect, restore, reset.\nSee \"quillmar help "
         "backup\".\n"},
        {{"wallpaper", "sat"}, "\"wallpaper\" has no command \"sat\".\nSee \"quillmar help wallpaper\".\n"},
        {{"backup", "export", "f", "--sections", "general,sound"},
         "\"--sections\" is one of general, wallpaper, lockScreen, screensaver, hotCorners, customMenu.\nSee "
         "\"quillmar help backup export\".\n"},
        {{"wallpaper", "set", "main", "colour", "red", "green"},
         "\"colour\" does not take \"green\".\nSee \"quillmar help wallpaper set colour\".\n"}};
    for (const auto& [words, complaint] : rows) EXPECT_EQ(complaintAbout(words), complaint);
}

TEST(CommandLineTest, whatIsWrongIsSaidInOneSentence) {
    const std::vector<std::pair<Words, std::string>> rows = {
        {{"displays", "--json=no"}, "\"--json\" takes no value."},
        {{"general", "set"}, "No setting was named."},
        {{"general", "set", "--pauseRotations", "true"}, "\"general set\" does not take \"true\"."},
        {{"general", "set", "--pauseRotations=on"}, "\"--pauseRotations\" is true or false."},
        {{"general", "set", "--language"}, "\"--language\" needs a value."},
        {{"general", "set", "--statusIconClickBehavior=x"},
         "\"general set\" does not take \"--statusIconClickBehavior\"."},
        {{"backup", "export", ""}, "\"backup export\" needs a file."},
        {{"wallpaper", "set", "all"}, "\"wallpaper set\" needs what the display should show."},
        {{"wallpaper", "set", "all", "picture"}, "There is no kind of wallpaper \"picture\"."},
        {{"wallpaper", "set", "all", "image"}, "\"image\" needs a file."},
        {{"wallpaper", "set", "all", "image", "a", "--layout", "zoom"},
         "\"--layout\" is one of center, tile, stretch, fit, fill."},
        {{"wallpaper", "set", "all", "slideshow", "a", "--interval", "1h"}, "\"--interval\" needs a number."},
        {{"wallpaper", "set", "all", "mode", "{\"solidColor\":{\"_0\":{}}}"},
         "The mode cannot be read: solidColor._0.hexColor: missing key"},
        {{"wallpaper", "set", "all", "apod", "MY-KEY"}, "\"apod\" takes nothing but options."},
        {{"wallpaper", "set", "all", "apod", "--apikey=MY-KEY"}, "\"apod\" does not take \"--apikey\"."},
        {{"wallpaper", "set", "all", "bing", "--apiKeyFile", "f"},
         "\"bing\" does not take \"--apiKeyFile\"."},
        {{"wallpaper", "set", "all", "nasa-epic", "--recentDays", "2.5"},
         "\"--recentDays\" needs a whole number."},
        {{"wallpaper", "set", "all", "spotlight", "--lastSelection", "x"},
         "\"spotlight\" does not take \"--lastSelection\"."},
        {{"wallpaper", "set", "all", "slideshow", "--", "--odd"}, "understood"},
        {{"wallpaper", "set", "all", "color", "#112233"}, "understood"},
        {{"wallpaper", "set", "all", "color", "puce"}, "puce is not a valid six-digit hex color."},
        {{"wallpaper", "set", "all", "slideshow", "a", "--interval", "0"},
         "Set the slideshow interval between one second and 23:59:59."},
        {{"wallpaper", "set", "all", "unsplash", "--topicSlug", "sea"}, "understood"},
        {{"general", "set", "--pauseRotations=false"}, "understood"}};
    for (const auto& [words, sentence] : rows) {
        const std::string complaint = complaintAbout(words);
        EXPECT_EQ(complaint.substr(0, complaint.find('\n')), sentence);
    }
}

TEST(CommandLineTest, optionsOfAKindSetTheFieldsThatTheyAreCalledAs) {
    EXPECT_EQ(std::get<APODSettings>(modeOf({"apod"}).mode.value), APODSettings{});
    EXPECT_EQ(std::get<WallhavenSettings>(
                  modeOf({"wallhaven", "--includeAnime", "--includeGeneral=false", "--sorting", "toplist",
                          "--color", "660000", "--ratios", "16x9,4x3", "--interval", "60"})
                      .mode.value),
              (WallhavenSettings{.includeGeneral = false,
                                 .includeAnime = true,
                                 .sorting = WallhavenSorting::toplist,
                                 .color = "660000",
                                 .ratios = {"16x9", "4x3"},
                                 .rotationIntervalSeconds = 60}));
    const auto image = std::get<ImagePresentationSettings>(
        modeOf({"image", "--layout=fill", "../\xFF.png", "--background", "#010203"}).mode.value);
    EXPECT_EQ(image.imageURL, Url::fromFilePath("/home/\xFF.png"));
    EXPECT_EQ(image.layout, ImagePresentationLayout::fill);
    EXPECT_EQ(image.backgroundHexColor, "#010203");
    EXPECT_EQ(modeOf({"unsplash", "--accessKeyFile", "key"}).keyFile, "/home/ana/key");
    EXPECT_TRUE(modeOf({"unsplash", "--accessKey="}).namesKey);
}

TEST(CommandLineTest, everyCommandAndKindHasAHelpOfItsOwn) {
    const auto help = [](Words words) {
        return helpText(CommandLine::parse(words).helpOn, GeneralLanguage::english);
    };
    EXPECT_THAT(help({"--help"}), HasSubstr("  backup inspect FILE         say what a backup file holds\n"));
    EXPECT_THAT(help({"backup", "-h"}), HasSubstr("backup restore FILE [--sections LIST]"));
    EXPECT_THAT(help({"wallpaper", "set", "all", "museums", "--interval", "x", "--help"}),
                HasSubstr("--categories paintings,photography,drawingsAndPrints,sculpture,...\n"));
    EXPECT_THAT(help({"help", "wallpaper", "set"}), HasSubstr("slideshow FOLDER [OPTION...]"));
    for (const CommandRow& row : commands())
        EXPECT_THAT(helpText(row.words, GeneralLanguage::portuguese), HasSubstr("quillmar " + row.words));
}

TEST(CompletionTest, aListAndAnOptionGoOnFromWhatIsThere) {
    EXPECT_THAT(complete(Words{"backup", "export", "f", "--sections", "general,h"}).words,
                ElementsAre("general,hotCorners"));
    EXPECT_THAT(complete(Words{"wallpaper", "set", "main", "unsplash", "--accessKey"}).words,
                ElementsAre("--accessKeyFile"))
        << "keys are best read from a file";
    EXPECT_THAT(complete(Words{"help", "wallpaper", "s"}).words, ElementsAre("set"));
}

}  // namespace
}  // namespace quillmar
