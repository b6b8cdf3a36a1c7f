#include "async/EventBus.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;

constexpr NotificationName<int> changed{"SettingsDidChange"};
constexpr NotificationName<int> other{"FaviconDidChange"};

TEST(EventBusTest, observersHearTheirNotificationInOrderUntilTheyGo) {
    EventBus center;
    std::vector<std::string> heard;
    auto first =
        center.observe<int>(changed, [&](int value) { heard.push_back("a" + std::to_string(value)); });
    auto second =
        center.observe<int>(changed, [&](int value) { heard.push_back("b" + std::to_string(value)); });
    center.post(changed, 1);
    center.post(other, 2);
    first.cancel();
    center.post(changed, 3);
    EXPECT_THAT(heard, ElementsAre("a1", "b1", "b3"));
}

TEST(EventBusTest, observersMayComeAndGoDuringANotification) {
    EventBus center;
    std::vector<std::string> heard;
    EventBus::Observation late;
    EventBus::Observation victim;
    auto first = center.observe<int>(changed, [&](int) {
        heard.push_back("first");
        victim.cancel();
        late = center.observe<int>(changed, [&](int) { heard.push_back("late"); });
    });
    victim = center.observe<int>(changed, [&](int) { heard.push_back("victim"); });
    center.post(changed, 1);
    EXPECT_THAT(heard, ElementsAre("first"));
    first.cancel();
    center.post(changed, 2);
    EXPECT_THAT(heard, ElementsAre("first", "late"));
}

TEST(EventBusTest, anObservationMayOutliveItsCentre) {
    EventBus::Observation observation;
    {
        EventBus center;
        observation = center.observe<int>(changed, [](int) {});
    }
    observation.cancel();
}

}  // namespace
}  // namespace quillmar
