#include <sodium.h>

#include <fstream>

#include "base/Files.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeHTTPSession.h"
#include "fakes/FakeNotificationCenter.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/RecordedLog.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "updates/SoftwareUpdateController.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
namespace fs = std::filesystem;
using Keys = std::map<std::string, std::string, std::less<>>;

constexpr std::string_view developmentSeed = "Quillmar development updates key";

struct KeyPair {
    std::array<std::uint8_t, crypto_sign_PUBLICKEYBYTES> shown{};
    std::array<std::uint8_t, crypto_sign_SECRETKEYBYTES> secret{};

    explicit KeyPair(std::string_view seed) {
        ::crypto_sign_seed_keypair(shown.data(), secret.data(), asBytes(seed).data());
    }
    std::string publicKey() const { return base64Encoded(shown); }
    std::string signatureOf(std::string_view text) const {
        std::array<std::uint8_t, crypto_sign_BYTES> signature{};
        ::crypto_sign_detached(signature.data(), nullptr, asBytes(text).data(), text.size(), secret.data());
        return base64Encoded(signature);
    }
};

const KeyPair makers("the makers' key, of thirty-two b.");

TEST(SoftwareUpdateConfigurationTest, aBuildThatLacksSomethingLooksForNoUpdatesAndSaysWhy) {
    const std::string key = makers.publicKey();
    const std::string shortKey = base64Encoded(Bytes(31));
    struct Case {
        const char* enabled;
        const char* environment;
        const char* feed;
        std::string key;
        std::string_view problem;
    };
    for (const Case& c : {
             Case{"", "production", "https://a.example/feed", key, "disabled"},
             Case{"no", "production", "https://a.example/feed", key, "disabled"},
             Case{"true", "staging", "", "", "unknownEnvironment"},
             Case{"1", "production", "", "", "missingFeedURL"},
             Case{"1", "production", "http://localhost/feed", key, "unsupportedFeedURL"},
             Case{"1", "development", "http://a.example/feed", key, "unsupportedFeedURL"},
             Case{"1", "production", "https:///feed", key, "unsupportedFeedURL"},
             Case{"1", "production", "https://a.example/feed", "", "missingPublicKey"},
             Case{"1", "production", "https://a.example/feed", "no Base64", "invalidPublicKey"},
             Case{"1", "production", "https://a.example/feed", shortKey, "invalidPublicKey"},
             Case{"1", "production", "https://a.example/feed", KeyPair(developmentSeed).publicKey(),
                  "developmentKeyInProduction"},
             Case{"1", "development", "http://[::1]:80/feed", KeyPair(developmentSeed).publicKey(), ""},
             Case{"YES", "production", "HTTPS://a.example/feed", key, ""},
         }) {
        const auto found =
            SoftwareUpdateConfiguration::of(BundleInfo(Keys{{"QuillmarUpdateEnabled", c.enabled},
                                                            {"QuillmarUpdateEnvironment", c.environment},
                                                            {"SUFeedURL", c.feed},
                                                            {"SUPublicEDKey", c.key}}));
        EXPECT_EQ(found.problem ? enumName(*found.problem) : "", c.problem) << c.feed << " " << c.key;
    }
}

struct SoftwareUpdateTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    RecordedLog log{clock};
    TemporaryFolder folder;
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    FakeHTTPSession web{loop};
    InlineExecutor files;
    FakeNotificationCenter center;
    std::optional<SoftwareUpdateController> updates;
    TaskScope tasks{loop};
    const std::string program = "the program, version 1.3.0";
    const FakeAnswer good{.body = program};
    const std::string signature = " sparkle:edSignature=\"" + makers.signatureOf(program) + "\"";

    void start(const char* version = "1.2.0") {
        updates.emplace(
            SoftwareUpdateConfiguration::of(BundleInfo(Keys{{"QuillmarUpdateEnabled", "true"},
                                                            {"QuillmarUpdateEnvironment", "production"},
                                                            {"SUFeedURL", "https://a.example/feed"},
                                                            {"SUPublicEDKey", makers.publicKey()}})),
            SoftwareUpdateController::Services{.loop = loop,
                                               .clock = clock,
                                               .session = web,
                                               .files = files,
                                               .notificationCenter = center,
                                               .settingsModel = model,
                                               .currentVersion = version,
                                               .userAgent = "Quillmar",
                                               .memory = folder.path() / "state/updates",
                                               .downloads = folder.path() / "Updates"});
        outcomeOf(loop, tasks, updates->start());
    }
    static std::string item(const std::string& version, const std::string& enclosure) {
        return "<item><title>x</title><link>https://a.example/news</link><sparkle:shortVersionString>" +
               version + "</sparkle:shortVersionString><enclosure url=\"/q.deb\"" + enclosure + "/></item>";
    }
    static std::string feed(const std::string& items) {
        return "<?xml version=\"1.0\"?><rss xmlns:sparkle=\"x\"><channel>" + items + "</channel></rss>";
    }
    void serves(const std::string& items) {
        web.serves("/feed", {.body = feed(items)});
        web.serves("/q.deb", {.body = program});
    }
    /// What a check says: "up to date", a version, or why it failed.
    std::string checked() {
        const auto outcome = outcomeOf(loop, tasks, updates->checkForUpdates());
        loop.advance(2min);
        if (!outcome->value) return outcome->text;
        return *outcome->value ? (*outcome->value)->version : "up to date";
    }
    struct Fault {
        FakeAnswer feed;
        FakeAnswer file;
        const char* message;
    };
    void fails(const std::vector<Fault>& faults) {
        for (const auto& [list, file, message] : faults) {
            web.serves("/feed", list);
            web.serves("/q.deb", file);
            EXPECT_THAT(checked(), HasSubstr(message));
            EXPECT_THAT(updates->lastFailure().value_or(""), HasSubstr(message));
            EXPECT_THAT(downloads(), IsEmpty()) << message;
            EXPECT_FALSE(updates->available()) << message;
        }
        EXPECT_EQ(web.openBodies, 0);
    }
    static FakeAnswer sentTo(const char* place) { return {.status = 302, .headers = {{"location", place}}}; }
    static FakeAnswer listed(const std::string& attributes) {
        return {.body = feed(item("1.3.0", attributes))};
    }
    std::vector<std::string> downloads() const {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : fs::directory_iterator(folder.path() / "Updates", none))
            names.push_back(entry.path().filename());
        return names;
    }
};

TEST_F(SoftwareUpdateTest, theNewestVersionForThisSystemIsDownloadedAndVerified) {
    serves(item("1.2.9", signature) + item("1.3.0", signature + " length=\"26\"") +
           item("9.0.0", signature + " sparkle:os=\"macos\"") +
           "<item><sparkle:channel>beta</sparkle:channel><enclosure url=\"/b.deb\" "
           "sparkle:version=\"9.0.0\"/></item>" +
           item("latest", signature));
    start();
    EXPECT_EQ(checked(), "1.3.0");
    EXPECT_EQ(updates->available()->page->string(), "https://a.example/news");
    EXPECT_EQ(readFile(*updates->available()->file, 1000), program);
    EXPECT_THAT(downloads(), ElementsAre("q.deb"));
    const std::size_t asked = web.requests.size();
    EXPECT_EQ(checked(), "1.3.0");
    EXPECT_EQ(web.requests.size(), asked + 1) << "the file is there";
    std::ofstream(*updates->available()->file) << "something else";
    EXPECT_EQ(checked(), "1.3.0");
    EXPECT_EQ(readFile(*updates->available()->file, 1000), program);

    start("1.3.0");
    EXPECT_FALSE(updates->available()) << "it was installed";
    EXPECT_THAT(downloads(), IsEmpty());
    EXPECT_EQ(checked(), "up to date");
}

TEST_F(SoftwareUpdateTest, aListThatIsNoneIsSaidAndLeavesNothingBehind) {
    start();
    const std::string billion =
        "<!DOCTYPE r [<!ENTITY a \"aa\"><!ENTITY b \"&a;&a;\">]><rss><channel>&b;</channel></rss>";
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "<a>";
    const char* none = "What should be the list of versions is none";
    fails({
        {{.body = "<html>"}, good, none},
        {{.body = "{}"}, good, none},
        {{.body = ""}, good, none},
        {{.body = "<html></html>"}, good, "is none: <html>"},
        {{.body = billion}, good, none},
        {{.body = deep}, good, "nested too deeply"},
        {{.body = std::string(2 << 20, ' ')}, good, "longer than Quillmar can safely read"},
        {{.status = 503}, good, "returned HTTP 503"},
        {{.body = feed(""), .breaksOffAt = 5}, good, "could not be reached: Connection terminated"},
        {{.body = feed(""), .fallsSilentAt = 5}, good, "could not be reached: The request timed out."},
        {sentTo("http://a.example/feed"), good, "leads to http://a.example/feed, which is no secure address"},
        {sentTo("https://127.0.0.1/feed"), good, "leads to https://127.0.0.1/feed"},
        {sentTo("/feed"), good, "redirects without an end"},
    });
}

TEST_F(SoftwareUpdateTest, aFileThatIsNotTheMakersIsSaidAndLeavesNothingBehind) {
    start();
    const std::string other =
        " sparkle:edSignature=\"" + KeyPair("another key, also of thirty-two.").signatureOf(program) + "\"";
    const FakeAnswer sound = listed(signature);
    fails({
        {listed(""), good, "Version 1.3.0 bears no signature"},
        {listed(" sparkle:edSignature=\"AAAA\""), good, "Version 1.3.0 bears no signature"},
        {listed(other), good, "is not signed by Quillmar's makers"},
        {sound, {.body = program + "x"}, "is not signed by Quillmar's makers"},
        {sound, {.body = ""}, "is not signed by Quillmar's makers"},
        {listed(signature + " length=\"25\""), good, "not as long as was announced"},
        {listed(signature + " length=\"27\""), {.body = program, .hasLength = false}, "not as long as"},
        {listed(signature + " length=\"25\""), {.body = program, .hasLength = false}, "not as long as"},
        {sound, {.body = program, .announcedLength = 1 << 30}, "larger than Quillmar can safely"},
        {sound, {.status = 404}, "Version 1.3.0 could not be downloaded: HTTP 404"},
        {sound, sentTo("http://a.example/q.deb"), "which is no secure address"},
        {sound, {.body = program, .breaksOffAt = 9}, "could not be downloaded: Connection"},
    });
    serves(item("1.3.0", signature));
    EXPECT_EQ(checked(), "1.3.0");
    EXPECT_EQ(updates->lastFailure(), std::nullopt);
}

TEST_F(SoftwareUpdateTest, itLooksOnceADayTellsOfAVersionOnceAndNeverWhereItShallNot) {
    serves(item("1.3.0", signature));
    start();
    loop.advance(49h);
    EXPECT_THAT(web.requests, SizeIs(3)) << "a minute after the start, then daily, and no file";
    EXPECT_EQ(center.addCount, 1);
    EXPECT_EQ(center.shown.at("com.quillmar.update").title, "Quillmar 1.3.0 is available");
    start();
    loop.advance(1h);
    EXPECT_THAT(web.requests, SizeIs(3)) << "another start within the day";
    EXPECT_EQ(updates->available()->version, "1.3.0") << "what is known outlives the program";

    outcomeOf(loop, tasks, updates->setPreferences({.automaticallyDownloadsUpdates = true}));
    loop.advance(24h);
    EXPECT_THAT(downloads(), ElementsAre("q.deb"));
    EXPECT_EQ(center.addCount, 1);
    web.serves("/feed", {.status = 500});
    loop.advance(24h);
    const std::size_t asked = web.requests.size();
    EXPECT_THAT(updates->lastFailure().value_or(""), HasSubstr("HTTP 500"));
    loop.advance(2h);
    EXPECT_EQ(web.requests.size(), asked + 2) << "hourly after a failure";
    outcomeOf(loop, tasks, updates->setPreferences({.automaticallyChecksForUpdates = false}));
    loop.advance(24h * 9);
    start();
    loop.advance(24h * 9);
    EXPECT_EQ(web.requests.size(), asked + 2);
}

}  // namespace
}  // namespace quillmar
