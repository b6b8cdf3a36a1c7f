// The clock of all changes over a virtual week, and how often each picture service is asked in a virtual day.
#include <fmt/format.h>

#include <ctime>
#include <iostream>

#include "fakes/FakeExecutors.h"
#include "fakes/FakeRemoteImageFetching.h"
#include "fakes/FakeServices.h"
#include "fakes/RotatingDisplays.h"
#include "remote/RemoteImageResolver.h"

namespace quillmar {
namespace {

using namespace std::chrono_literals;

/// Asks the services for what displays want to show, or takes it as shown.
struct Applier final : WallpaperApplying {
    RemoteImageProvider* services = nullptr;
    std::size_t count = 0;
    std::size_t failureCount = 0;
    Task<WallpaperApplyOutcome> apply(WallpaperApplyRequest request) override {
        ++count;
        if (!services) co_return WallpaperApplyOutcome{};
        WallpaperApplyOutcome outcome;
        try {
            const auto found = co_await services->resolveImage(
                request.mode, request.display, request.reason == WallpaperApplyReason::rotation,
                request.presentation);
            outcome.windowsSpotlightSelection = found.windowsSpotlightSelection;
        } catch (const std::exception&) {
            ++failureCount;
            throw;
        }
        co_return outcome;
    }
};

/// Displays with modes, rotating.
struct World : RotatingDisplays<Applier> {
    explicit World(const std::vector<WallpaperMode>& modes) {
        std::vector<DisplayWallpaperSettings> entries;
        for (const WallpaperMode& mode : modes) {
            auto& entry = entries.emplace_back();
            entry.displayID = fmt::format("display:{}", displays.present.size());
            entry.mode = mode;
            displays.present.push_back({.id = entry.displayID, .frame = {0, 0, 1920, 1080}});
        }
        starts(std::move(entries));
    }
};

constexpr auto week = 24h * 7;

std::vector<WallpaperMode> tenSlideshows() {
    SlideshowPresentationSettings slideshow;
    slideshow.rotationIntervalSeconds = 10;
    return std::vector<WallpaperMode>(10, WallpaperMode{slideshow});
}

double secondsOfCpuSince(std::clock_t began) { return double(std::clock() - began) / CLOCKS_PER_SEC; }

/// What the coordinator asks of the schedule in a week, without those who paint.
void measureSchedule() {
    const World world(tenSlideshows());
    const WallpaperSettings& settings = world.model->settings().wallpaper;
    WallpaperRotationSchedule schedule;
    WallTime now = world.clock.now();
    const WallTime end = now + week;
    std::size_t count = 0;
    const std::clock_t began = std::clock();
    while (true) {
        schedule.update(rotationDescriptors(settings), now, false);
        now = schedule.nextDate().value();
        if (now > end) break;
        for (const std::string& displayID : schedule.dueDisplayIDs(now)) {
            schedule.record(*rotationDescriptor(settings, displayID), now, true);
            ++count;
        }
    }
    std::cout << fmt::format(
        "the schedule of ten displays every 10 s for a week: {} turns, {:.2f} s of CPU\n", count,
        secondsOfCpuSince(began));
}

void measureWeek() {
    World world(tenSlideshows());
    Duration shortest = 1h;
    std::size_t mostPending = 0;
    const std::clock_t began = std::clock();
    const TimePoint end = world.loop.now() + week;
    while (world.loop.now() < end) {
        mostPending = std::max(mostPending, world.loop.pendingCount());
        const Duration next = world.loop.untilNext().value_or(1h);
        shortest = std::min(shortest, next);
        world.loop.advance(next);
    }
    std::cout << fmt::format(
        "the same with coordinators and loop: {} attempts, {:.2f} s of CPU, at most {} timer, none below "
        "{:.1f} s\n",
        world.applier.count, secondsOfCpuSince(began), mostPending,
        std::chrono::duration<double>(shortest).count());
}

void serve(FakeRemoteImageFetching& web) {
    web.answers("apod.example", {R"({"date":"2026-05-04","media_type":"image","url":"https://i/apod.jpg"})"});
    web.answers(
        "epic.example/api/natural",
        {R"([{"image":"a","date":"2026-05-03 01:00:00"},{"image":"b","date":"2026-05-03 03:00:00"}])"});
    web.answers("wallhaven.example", {R"({"data":[{"path":"https://i/w.jpg"}]})"});
    web.answers("unsplash.example",
                {R"({"urls":{"full":"https://i/u.jpg"},"links":{"download_location":"https://c/u"},
        "user":{}})"});
    web.answers("bing.example", {R"({"images":[{"url":"/th?id=1"}]})"});
    web.answers(
        "windowsspotlight.example",
        {R"({"batchrsp":{"items":[{"item":"{\"ad\":{\"landscapeImage\":{\"asset\":\"https://i/s.jpg\"}}}"}]}})"});
    web.answers("clevelandmuseum.example", {R"({"data":[{"id":1,"title":"A","share_license_status":"CC0",
        "images":{"web":{"url":"https://i/c.jpg"}}}]})"});
}

void countRequests(const std::string& name, WallpaperMode mode) {
    World world({std::move(mode)});
    FakeRemoteImageFetching web;
    serve(web);
    const RemoteServices services = fakeServices();
    InlineExecutor files;
    RemoteImageResolver resolver({.fetching = web,
                                  .services = services,
                                  .clock = world.clock,
                                  .files = files,
                                  .cacheFiles = world.cacheFiles,
                                  .cacheDirectory = "/cache",
                                  .randomIndex = [](std::size_t) { return std::size_t{0}; }});
    world.applier.services = &resolver;
    world.loop.advance(24h);
    std::cout << fmt::format("{:34} {:6} {:9} {:9} {:8}\n", name, world.applier.count, web.requests.size(),
                             web.downloads.size(), world.applier.failureCount);
}

}  // namespace
}  // namespace quillmar

int main() {
    using namespace quillmar;
    measureSchedule();
    measureWeek();
    std::cout << fmt::format("{:34} {:>6} {:>9} {:>9} {:>8}\n", "a day of", "turns", "metadata", "pictures",
                             "failures");
    countRequests("apod, latest", {APODSettings{}});
    countRequests("apod, a random day every 4 h", {APODSettings{.switchPeriodically = true}});
    countRequests("nasaEpic, latest", {NasaEpicSettings{}});
    countRequests("nasaEpic, film every 30 s",
                  {NasaEpicSettings{.presentation = NasaEpicPresentation::rotateThroughDays}});
    countRequests("wallhaven every 4 h", {WallhavenSettings{.switchAutomatically = true}});
    countRequests("unsplash every hour", {UnsplashSettings{.accessKey = "k", .switchAutomatically = true}});
    countRequests("bing", {BingSettings{}});
    countRequests("windowsSpotlight", {WindowsSpotlightSettings{}});
    countRequests("museums every hour", {MuseumsSettings{.sources = {MuseumsSource::clevelandMuseum},
                                                         .switchAutomatically = true}});
}
