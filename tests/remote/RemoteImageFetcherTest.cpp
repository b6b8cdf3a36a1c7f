#include "remote/fetching/RemoteImageFetcher.h"

#include <sys/stat.h>

#include <fstream>

#include "async/TaskScope.h"
#include "fakes/FakeExecutors.h"
#include "fakes/FakeHTTPSession.h"
#include "fakes/FakePictureRendering.h"
#include "fakes/TaskOutcome.h"
#include "fakes/TemporaryFolder.h"
#include "fakes/VirtualLoop.h"
#include "remote/fetching/RemoteImageProviderError.h"
#include "storage/LastUsedStamp.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using namespace ::testing;

constexpr std::int64_t limit = 1048576;

struct RemoteImageFetcherTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    TemporaryFolder folder;
    fs::path cache = folder.path() / "Cache/Images";
    fs::path temporary = folder.path() / "run";
    FakeHTTPSession web{loop};
    FakePictureRendering pictures;
    HeldExecutor files;
    RemoteImageFetcher fetcher{
        web, files, pictures, clock, {.cache = cache, .temporary = temporary, .userAgent = "Quillmar/1"}};
    RemoteService service{"Bing", *Url::parse("https://www.bing.example")};
    TaskScope tasks{loop};

    void SetUp() override {
        files.runsAtOnce = true;
        fs::create_directories(temporary);
    }
    template <class T>
    std::string run(Task<T> work) {
        const auto outcome = outcomeOf(loop, tasks, std::move(work));
        return outcome->value ? fs::path(*outcome->value).filename().string() : outcome->text;
    }
    std::string downloaded(const std::string& url) {
        return run(fetcher.downloadImage(service, *Url::parse(url), limit));
    }
    std::string fetched(const std::string& url) {
        return run(fetcher.fetchMetadata(service, *Url::parse(url)));
    }
    /// Names of the files that a download has left anywhere.
    std::vector<std::string> leftFiles() const {
        std::vector<std::string> names;
        for (const fs::path& place : {cache, temporary}) {
            if (!fs::exists(place)) continue;
            for (const auto& entry : fs::directory_iterator(place)) names.push_back(entry.path().filename());
        }
        return names;
    }
};

const std::string refusal = "Quillmar could not download the image from Bing.";
const std::string tooLarge = "The provider image is larger than Quillmar's 1 MB download limit.";

TEST_F(RemoteImageFetcherTest, aPictureIsKeptUnderTheNameOfItsAddress) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a", "remote-af63dc4c8601ec8c.jpg"},
        {"https://h/th?id=1", "remote-8c302ba2f2381647.jpg"},
        {"https://h/a.PNG", "remote-44e4c86c4043cb43.png"},
        {"https://h/a.%2Fb", ".jpg"},
        {"https://h/a.thisisnokindofpicture", ".jpg"},
    };
    for (const auto& [url, name] : rows) {
        EXPECT_THAT(remoteImageFileName(*Url::parse(url)), EndsWith(name)) << url;
    }
}

TEST_F(RemoteImageFetcherTest, aPictureIsAskedForOnceAndStampedAtEveryUse) {
    web.serves("/a.png", {.body = std::string(200000, 'p'), .mimeType = "image/png"});
    const std::string name = downloaded("https://h.example/a.png");
    EXPECT_EQ(name, remoteImageFileName(*Url::parse("https://h.example/a.png")));
    EXPECT_EQ(fs::file_size(cache / name), 200000u);
    struct stat info{};
    ASSERT_EQ(::stat((cache / name).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    loop.advance(std::chrono::hours(5));
    EXPECT_EQ(downloaded("https://h.example/a.png"), name);
    EXPECT_THAT(web.requests, SizeIs(1));
    if (lastUsedStamp(cache / name)) EXPECT_EQ(lastUsedStamp(cache / name), clock.now());

    for (const char* bad : {"no picture", "<svg/>"}) {
        std::ofstream(cache / name) << bad;
        EXPECT_EQ(downloaded("https://h.example/a.png"), name) << "a damaged one is fetched again";
        EXPECT_EQ(fs::file_size(cache / name), 200000u);
    }
    EXPECT_THAT(leftFiles(), SizeIs(1));
    EXPECT_EQ(web.openBodies, 0);
}

TEST_F(RemoteImageFetcherTest, whatIsNoPictureWithinTheBoundsLeavesNothingBehind) {
    const auto limitBytes = static_cast<std::size_t>(limit);
    const std::vector<std::pair<FakeAnswer, std::string>> rows = {
        {{.status = 404}, refusal},
        {{.body = "<html>", .mimeType = "text/html"}, refusal},
        {{.body = "no picture", .mimeType = "image/jpeg"}, refusal},
        {{.body = ""}, refusal},
        {{.status = 300, .body = "p"}, refusal},
        {{.body = "<svg/>", .mimeType = "image/svg+xml"}, refusal},
        {{.body = "\xef\xbb\xbf\r\n <!-- -->"}, refusal},
        {{.body = std::string("\xff\xfe \0<\0s\0", 8)}, refusal},
        {{.body = std::string("\0<\0s", 4)}, refusal},
        {{.body = "\x1f\x8b packed"}, refusal},
        {{.body = std::string(70000, 'p'), .breaksOffAt = 66000}, refusal},
        {{.body = "p", .announcedLength = limit + 1}, tooLarge},
        {{.body = std::string(limitBytes + 1, 'p'), .hasLength = false}, tooLarge},
        {{.status = 302, .headers = {{"location", "file:///etc/hostname"}}}, refusal},
        {{.status = 301, .headers = {{"location", "https://h.example/again"}}}, refusal},
    };
    for (const auto& [answer, outcome] : rows) {
        web.serves("https://h.example/", answer);
        EXPECT_EQ(downloaded("https://h.example/x.jpg"), outcome)
            << answer.status << answer.body.substr(0, 20);
        EXPECT_THAT(leftFiles(), IsEmpty());
        EXPECT_EQ(web.openBodies, 0);
    }
    web.refuses("nobody.example");
    EXPECT_EQ(downloaded("https://nobody.example/x.jpg"), refusal);
    web.serves("https://h.example/", {.status = 299, .body = std::string("\0\0\0<ftypavif", 12)});
    EXPECT_THAT(downloaded("https://h.example/x.avif"), EndsWith(".avif"));
    web.serves("https://h.example/", {.body = std::string(limitBytes, 'p')});
    EXPECT_THAT(downloaded("https://h.example/x.jpg"), EndsWith(".jpg"))
        << "exactly the limit, without a type";
    fs::remove_all(temporary);
    EXPECT_EQ(downloaded("https://h.example/new.jpg"), refusal) << "a disk that refuses";
    EXPECT_EQ(web.openBodies, 0);
}

TEST_F(RemoteImageFetcherTest, cancelledOrAbandonedAtAnyStepItLeavesNothingHalfDone) {
    web.serves("/a.png", {.body = std::string(100000, 'p')});
    files.runsAtOnce = false;
    for (const bool isAbandoned : {false, true}) {
        for (int step = 0; step < 5; ++step) {
            auto owner = std::make_unique<TaskScope>(loop);
            const auto outcome = outcomeOf(
                loop, *owner, fetcher.downloadImage(service, *Url::parse("https://h.example/a.png"), limit));
            for (int i = 0; i < step; ++i) {
                files.releaseOne();
                loop.settle();
            }
            isAbandoned ? owner.reset() : owner->cancelAll();
            files.releaseAll();
            loop.settle();
            EXPECT_EQ(outcome->text, isAbandoned ? "waiting" : "cancelled") << step;
            EXPECT_EQ(web.openBodies, 0) << step;
            // Whole is what the last step has moved into place before it heard.
            const auto left = leftFiles();
            EXPECT_THAT(left, SizeIs(step == 4 ? 1 : 0)) << step;
            for (const std::string& name : left) EXPECT_EQ(fs::file_size(cache / name), 100000u);
            fs::remove_all(cache);
        }
    }
}

TEST_F(RemoteImageFetcherTest, whatAKilledProcessHasLeftIsClearedAwayAndNothingElse) {
    fs::create_directories(cache);
    for (const fs::path& name : {temporary / "Quillmar-1B4E28BA.download", temporary / "Other-1.download",
                                 cache / ".1B4E28BA.download", cache / "remote-1.download"}) {
        std::ofstream(name) << "half a pic";
    }
    tasks.spawn(fetcher.removeLeftovers());
    loop.settle();
    EXPECT_THAT(leftFiles(), UnorderedElementsAre("Other-1.download", "remote-1.download"));
}

TEST_F(RemoteImageFetcherTest, metadataIsReadWholeAndBelowItsLimit) {
    const auto limitBytes = static_cast<std::size_t>(RemoteImageFetching::maximumMetadataBytes);
    const std::string much = "Bing returned more metadata than Quillmar can safely process.";
    const std::vector<std::pair<FakeAnswer, std::string>> rows = {
        {{.body = "{}"}, "{}"},
        {{.status = 503, .body = "{}"}, "Bing returned HTTP 503."},
        {{.body = std::string(limitBytes - 1, ' ')}, std::string(limitBytes - 1, ' ')},
        {{.body = std::string(limitBytes, ' ')}, much},
        {{.body = std::string(limitBytes + 1, ' '), .hasLength = false}, much},
        {{.body = "", .announcedLength = RemoteImageFetching::maximumMetadataBytes + 1}, much},
        {{.body = "{}", .breaksOffAt = 1}, "Bing did not answer: Connection terminated"},
        {{.status = 299, .body = "{}"}, "{}"},
        {{.status = 199}, "Bing returned HTTP 199."},
        {{.status = 300, .headers = {{"location", "/there"}}}, "Bing returned HTTP 300."},
        {{.status = 304, .headers = {{"location", "/there"}}}, "Bing returned HTTP 304."},
        {{.status = 301, .headers = {{"location", "/there"}}}, "here"},
        {{.status = 303, .headers = {{"location", "/there"}}}, "here"},
    };
    web.pieceBytes = limitBytes;
    for (const auto& [answer, outcome] : rows) {
        web.serves("https://h.example/", answer);
        web.serves("https://h.example/there", {.body = "here"});
        EXPECT_TRUE(fetched("https://h.example/list") == outcome) << answer.status;
        EXPECT_EQ(web.openBodies, 0);
    }
}

TEST_F(RemoteImageFetcherTest, everyRequestSaysWhoAsksForWhatAndHowLongItWaits) {
    const Url url = *Url::parse("https://www.bing.example/list");
    run(fetcher.fetchMetadata(service, url, {{"User-Agent", "Mozilla/5.0"}}));
    web.serves("/list", {.status = 302, .headers = {{"location", "https://cdn.example/there"}}});
    run(fetcher.fetchMetadata(service, url, {{"Authorization", "key"}}));
    downloaded("https://www.bing.example/list");
    ASSERT_THAT(web.requests, SizeIs(5));
    for (std::size_t i = 0; i < 5; ++i) {
        const HTTPRequest& request = web.requests[i];
        const bool isImage = i > 2;
        EXPECT_THAT(request.headers, Contains(Pair("Accept", isImage ? StartsWith("image/")
                                                                     : StartsWith("application/json"))));
        EXPECT_EQ(request.headers.at("User-Agent"), i == 0 ? "Mozilla/5.0 Quillmar/1" : "Quillmar/1");
        EXPECT_EQ(request.headers.contains("Authorization"), i == 1) << "a key is for its service alone";
        EXPECT_EQ(request.requestTimeout, std::chrono::seconds(isImage ? 30 : 60));
        EXPECT_EQ(request.resourceTimeout, std::chrono::seconds(120));
    }
}

TEST_F(RemoteImageFetcherTest, tenRedirectsAreFollowedAndNoMore) {
    for (int hop = 0; hop <= 10; ++hop) {
        web.serves("/hop" + std::to_string(hop),
                   {.status = 302, .headers = {{"location", "/hop" + std::to_string(hop + 1)}}});
    }
    web.serves("/hop11", {.body = "here"});
    EXPECT_EQ(fetched("https://h.example/hop1"), "here");
    EXPECT_EQ(fetched("https://h.example/hop0"), "Bing redirects without an end.");
}

TEST_F(RemoteImageFetcherTest, theWayNeverLeadsFromAPublicServiceIntoThisMachine) {
    web.serves("https://www.bing.example/", {.status = 302, .headers = {{"location", "http://127.0.0.1/"}}});
    const std::string forbidden = "Bing leads to 127.0.0.1, which is no address of the Internet.";
    EXPECT_EQ(fetched("https://www.bing.example/list"), forbidden);
    EXPECT_EQ(downloaded("https://www.bing.example/a.jpg"), forbidden);
    web.serves("https://www.bing.example/",
               {.status = 302, .headers = {{"location", "http://cdn.example/"}}});
    fetched("https://www.bing.example/list");
    service.host = *Url::parse("http://localhost:8080");
    downloaded("http://127.0.0.1/b.jpg");
    std::vector<HTTPReach> reaches;
    for (const HTTPRequest& request : web.requests) reaches.push_back(request.reach);
    using enum HTTPReach;
    EXPECT_THAT(reaches, ElementsAre(anywhere, publicNetworks, anywhere, publicNetworks, anywhere));
}

}  // namespace
}  // namespace quillmar
