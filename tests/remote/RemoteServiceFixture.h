#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "async/TaskScope.h"
#include "base/RandomIndex.h"
#include "fakes/FakeRemoteImageFetching.h"
#include "fakes/FakeServices.h"
#include "fakes/VirtualLoop.h"
#include "remote/services/RemotePicture.h"

namespace quillmar {

/// An answer of Windows Spotlight, with the texts in the ad's own document.
inline std::string spotlightAnswer(const std::string& texts, const std::string& asset = "https://i/new.jpg") {
    const std::string ad =
        R"({\"ad\": {\"landscapeImage\": {\"asset\": \")" + asset + R"(\"})" + texts + "}}";
    return R"({"batchrsp": {"items": [{"item": ")" + ad + R"("}]}})";
}

/// A service under test: services that answer from memory, virtual time that begins at 9 o'clock UTC on
/// 2026-05-04, and chosen chance.
struct RemoteServiceFixture : ::testing::Test {
    struct Outcome {
        RemotePicture picture;
        std::string failure;  ///< empty when there is a picture
    };
    using Table = std::vector<std::pair<std::string, std::string>>;
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    FakeRemoteImageFetching web;
    RemoteServices services = fakeServices();
    std::vector<std::size_t> draws;   ///< what chance gives, in order
    std::vector<std::size_t> bounds;  ///< what it was drawn below
    RandomIndex random = [this](std::size_t bound) {
        bounds.push_back(bound);
        return draws.at(bounds.size() - 1);
    };

    static Task<void> keep(Task<RemotePicture> work, Outcome* outcome) {
        try {
            outcome->picture = co_await std::move(work);
        } catch (const std::exception& error) {
            outcome->failure = error.what();
        }
    }
    Outcome resolved(Task<RemotePicture> work, Duration within = {}) {
        TaskScope tasks(loop);
        Outcome outcome;
        tasks.spawn(keep(std::move(work), &outcome));
        loop.advance(within);
        return outcome;
    }
    std::string failure(Task<RemotePicture> work) { return resolved(std::move(work)).failure; }
    /// Paths and queries of the metadata that was asked for since the last call.
    std::vector<std::string> asked() {
        std::vector<std::string> texts;
        for (const auto& request : std::exchange(web.requests, {})) {
            texts.push_back(request.url.substr(request.url.find(".example") + 8));
        }
        return texts;
    }
    std::vector<std::string> downloaded() { return std::exchange(web.downloads, {}); }
};

}  // namespace quillmar
