#include "diagnostics/DailyLogFileSink.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "base/Files.h"
#include "base/JsonRecord.h"
#include "fakes/FullDisk.h"
#include "fakes/LocalTimeZone.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"

namespace quillmar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DailyLogFileSinkTest : public testing::Test {
public:
    void appends(const std::string& message, const char* moment) {
        DiagnosticEntry entry;
        entry.timestamp = *parseISO8601(moment);
        entry.message = message;
        sink.append(entry);
    }
    /// The messages of a day's file, in order; a line that is no entry shows as "?".
    std::vector<std::string> messagesOf(const std::string& day) const {
        std::vector<std::string> messages;
        std::ifstream file(logs / ("Quillmar-" + day + ".log"));
        for (std::string line; std::getline(file, line);) {
            try {
                messages.push_back(json::decode<DiagnosticEntry>(line).message);
            } catch (const JsonRecordError&) {
                messages.push_back("?");
            }
        }
        return messages;
    }
    void exists(const std::string& name) const {
        std::filesystem::create_directories(logs);
        std::ofstream(logs / name) << name;
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(logs))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
    mode_t modeOf(const std::filesystem::path& path) const {
        struct stat status{};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mode & 0777;
    }

    LocalTimeZone zone{"TST-3"};
    TemporaryFolder folder;
    std::filesystem::path logs = folder.path() / "Support" / "Logs";
    VirtualLoop loop;
    VirtualWallClock clock{loop};  // 2026-05-04, noon in the zone
    DailyLogFileSink sink{logs, clock};
};

TEST_F(DailyLogFileSinkTest, aLineIsOneEntryInCompactJSONInAFileForItsOwnerAlone) {
    sink.prepare();
    sink.append({.timestamp = *parseISO8601("2026-05-04T09:30:00.5Z"),
                 .level = DiagnosticLevel::warning,
                 .category = "cache",
                 .message = "Zeile \"1\"\n2",
                 .errorDescription = "cause",
                 .metadata = {{"k", "v"}},
                 .appVersion = "1.2.3",
                 .operatingSystemVersion = "Linux"});
    appends("plain", "2026-05-04T09:30:01Z");
    EXPECT_EQ(readFile(logs / "Quillmar-2026-05-04.log", 4096),
              R"({"appVersion":"1.2.3","category":"cache","errorDescription":"cause","level":"warning",)"
              R"("message":"Zeile \"1\"\n2","metadata":{"k":"v"},"operatingSystemVersion":"Linux",)"
              R"("timestamp":"2026-05-04T09:30:00Z"})"
              "\n"
              R"({"appVersion":"","category":"","level":"information","message":"plain","metadata":{},)"
              R"("operatingSystemVersion":"","timestamp":"2026-05-04T09:30:01Z"})"
              "\n");
    EXPECT_EQ(modeOf(logs), 0700u);
    EXPECT_EQ(modeOf(logs / "Quillmar-2026-05-04.log"), 0600u);
}

TEST_F(DailyLogFileSinkTest, anEntryGoesIntoTheFileOfItsOwnLocalDayWheneverItIsWritten) {
    sink.prepare();
    appends("monday", "2026-05-04T20:59:00Z");
    appends("tuesday", "2026-05-04T21:01:00Z");
    appends("late monday", "2026-05-04T20:59:59Z");
    appends("tuesday again", "2026-05-04T21:02:00Z");
    sink.close();
    appends("after closing", "2026-05-04T21:03:00Z");
    EXPECT_THAT(messagesOf("2026-05-04"), ElementsAre("monday", "late monday"));
    EXPECT_THAT(messagesOf("2026-05-05"), ElementsAre("tuesday", "tuesday again", "after closing"));
}

TEST_F(DailyLogFileSinkTest, sevenDaysAndSevenFilesStay) {
    struct Case {
        std::vector<std::string> before, after;
    };
    const std::vector<Case> cases{
        {{"Quillmar-2026-04-27.log", "Quillmar-2026-04-28.log", "Quillmar-2026-05-04.log"},
         {"Quillmar-2026-04-28.log", "Quillmar-2026-05-04.log"}},
        // A name without a date is never too old, but counts where its name stands.
        {{"Quillmar-2026-04-01.log", "Quillmar-.log", "Quillmar-x.log", "Quillmar-2026-02-30.log"},
         {"Quillmar-.log", "Quillmar-2026-02-30.log", "Quillmar-x.log"}},
        {{"Quillmar-0.log", "Quillmar-2026-05-01.log", "Quillmar-2026-05-02.log", "Quillmar-2026-05-03.log",
          "Quillmar-a.log", "Quillmar-b.log", "Quillmar-c.log", "Quillmar-d.log", "Quillmar-e.log"},
         {"Quillmar-2026-05-02.log", "Quillmar-2026-05-03.log", "Quillmar-a.log", "Quillmar-b.log",
          "Quillmar-c.log", "Quillmar-d.log", "Quillmar-e.log"}},
        // Nothing else is touched.
        {{"Other-2020-01-01.log", "Quillmar-2020-01-01.txt", ".Quillmar-2020-01-01.log",
          "quillmar-2020-01-01.log"},
         {".Quillmar-2020-01-01.log", "Other-2020-01-01.log", "Quillmar-2020-01-01.txt",
          "quillmar-2020-01-01.log"}},
    };
    for (const Case& pruned : cases) {
        std::filesystem::remove_all(logs);
        for (const std::string& name : pruned.before) exists(name);
        sink.prepare();
        EXPECT_EQ(files(), pruned.after);
    }
}

TEST_F(DailyLogFileSinkTest, theFirstEntryOfADayRemovesTheFileOfEightDaysAgo) {
    for (const char* day : {"2026-04-28", "2026-04-29", "2026-05-04"})
        exists(std::string("Quillmar-") + day + ".log");
    sink.prepare();
    appends("tuesday", "2026-05-05T06:00:00Z");
    EXPECT_THAT(files(),
                ElementsAre("Quillmar-2026-04-29.log", "Quillmar-2026-05-04.log", "Quillmar-2026-05-05.log"));
}

TEST_F(DailyLogFileSinkTest, aTailIsTheEndOfTheNewestDaysFileAndAlwaysText) {
    EXPECT_EQ(sink.tail(100), std::nullopt);  // no folder yet
    exists("Quillmar-2026-05-03.log");
    std::ofstream(logs / "Quillmar-2026-05-04.log") << "abcüé";
    EXPECT_EQ(sink.tail(0), std::nullopt);
    EXPECT_EQ(sink.tail(65536), "abcüé");
    EXPECT_EQ(sink.tail(4), "üé");
    EXPECT_EQ(sink.tail(3), "\xef\xbf\xbdé");  // begins within a character
    sink.prepare();
    appends("newest", "2026-05-04T09:30:00Z");
    EXPECT_THAT(sink.tail(20).value(), testing::EndsWith("T09:30:00Z\"}\n"));
}

TEST_F(DailyLogFileSinkTest, aFullDiskCostsWholeLinesAndNothingElse) {
    sink.prepare();
    appends("first", "2026-05-04T09:00:00Z");
    {
        const FullDisk disk(std::filesystem::file_size(logs / "Quillmar-2026-05-04.log") + 20);
        EXPECT_THROW(appends("lost", "2026-05-04T09:00:01Z"), std::system_error);
        EXPECT_THROW(appends("lost too", "2026-05-04T09:00:02Z"), std::system_error);
    }
    appends("last", "2026-05-04T09:00:03Z");
    EXPECT_THAT(messagesOf("2026-05-04"), ElementsAre("first", "last"));
}

}  // namespace
}  // namespace quillmar
