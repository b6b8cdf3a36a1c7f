#include "app/RemoteErrorNotificationService.h"

#include "async/TaskScope.h"
#include "fakes/FakeNotificationCenter.h"
#include "fakes/FakeSettingsStore.h"
#include "fakes/RecordedLog.h"
#include "fakes/VirtualLoop.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Status = RemoteNotificationAuthorizationStatus;

struct RemoteErrorNotificationServiceTest : ::testing::Test {
    VirtualLoop loop;
    VirtualWallClock clock{loop};
    RecordedLog log{clock};
    EventBus notifications;
    FakeSettingsStore store;
    CacheFileProtection cacheFiles;
    AppSettingsModel model{loop, notifications, store, AppSettings{}, cacheFiles};
    FakeNotificationCenter center;
    RemoteErrorNotificationService service{center, model, &logNotificationDiagnostic};
    TaskScope tasks{loop};

    void run(Task<void> task) {
        tasks.spawn(std::move(task));
        loop.settle();
    }
    void fails(const std::string& display, WallpaperMode mode, const std::string& message) {
        run(service.notify(std::make_exception_ptr(std::runtime_error(message)), {.id = display}, mode));
    }
};

TEST_F(RemoteErrorNotificationServiceTest, eachDisplayShowsItsLastFailure) {
    fails("A", {BingSettings{}}, "Bing returned HTTP 500.");
    fails("A", {MuseumsSettings{}}, "no network");
    fails("B", {NasaEpicSettings{}}, "no network");
    ASSERT_THAT(center.shown, SizeIs(2));
    EXPECT_EQ(center.shown.at("remote-wallpaper-error-A").title, "Couldn’t update Museums");
    EXPECT_EQ(
        center.shown.at("remote-wallpaper-error-B"),
        (RemoteNotificationRequest{"remote-wallpaper-error-B", "Couldn’t update NASA EPIC", "no network"}));
    const RemoteImageProviderError rijksmuseum(RemoteImageProviderError::Case::httpStatus, "Rijksmuseum",
                                               503);
    run(service.notify(std::make_exception_ptr(rijksmuseum), {.id = "A"}, {MuseumsSettings{}}));
    EXPECT_EQ(center.shown.at("remote-wallpaper-error-A").title, "Couldn’t update Rijksmuseum");
    const RemoteImageProviderError none(RemoteImageProviderError::Case::noUsableImage, "the enabled museums");
    run(service.notify(std::make_exception_ptr(none), {.id = "A"}, {MuseumsSettings{}}));
    EXPECT_EQ(center.shown.at("remote-wallpaper-error-A").title, "Couldn’t update Museums");
    model.update([](AppSettings& settings) { settings.general.language = GeneralLanguage::portuguese; });
    fails("A", {MuseumsSettings{}}, "no network");
    EXPECT_EQ(center.shown.at("remote-wallpaper-error-A").title, "Não foi possível atualizar Museus");
}

TEST_F(RemoteErrorNotificationServiceTest, withoutLeaveNothingIsShownAndNothingIsNoted) {
    center.addError = "the server is gone";
    fails("A", {BingSettings{}}, "no network");
    const auto failure = service.lastDeliveryFailure();
    for (const Status status : {Status::denied, Status::notDetermined, Status::unknown}) {
        center.status = status;
        center.addError.clear();
        fails("A", {BingSettings{}}, "no network");
        EXPECT_EQ(service.authorizationStatus(), status);
    }
    EXPECT_EQ(center.addCount, 1);
    EXPECT_EQ(service.lastDeliveryFailure(), failure);
    for (const Status status : {Status::authorized, Status::provisional, Status::ephemeral}) {
        center.status = status;
        fails("A", {BingSettings{}}, "no network");
    }
    EXPECT_EQ(center.addCount, 4);
}

TEST_F(RemoteErrorNotificationServiceTest, aTroubleWithNotificationsIsLoggedOnceForEachDisplayAndService) {
    center.addError = "the server is gone";
    for (const char* display : {"A", "A", "B"}) fails(display, {BingSettings{}}, "no network");
    center.addError = "the server is mute";
    fails("A", {BingSettings{}}, "no network");
    EXPECT_EQ(service.lastDeliveryFailure(),
              (RemoteNotificationDeliveryFailure{"A", "Bing", "the server is mute"}));
    EXPECT_THAT(log.lines, SizeIs(3));
    EXPECT_EQ(log.lines.at(0),
              "warning [notifications] A remote error notification could not be scheduled. display_id=A "
              "error=the server is gone provider=Bing");
    center.addError.clear();
    fails("B", {BingSettings{}}, "no network");
    EXPECT_TRUE(service.lastDeliveryFailure()) << "it was of another display";
    fails("A", {BingSettings{}}, "no network");
    EXPECT_FALSE(service.lastDeliveryFailure());
    center.addError = "the server is mute";
    fails("A", {BingSettings{}}, "no network");
    EXPECT_THAT(log.lines, SizeIs(4)) << "a new trouble after a success";
}

TEST_F(RemoteErrorNotificationServiceTest, leaveIsAskedForWhereItIsOpenAndARefusalIsLoggedOnce) {
    center.status = Status::notDetermined;
    center.requestError = "not now";
    run(service.ensureAuthorization());
    run(service.ensureAuthorization());
    EXPECT_EQ(service.authorizationRequestErrorDescription(), "not now");
    EXPECT_THAT(log.lines, ElementsAre("warning [notifications] Notification authorization could not be "
                                       "requested. error=not now"));
    center.requestError.clear();
    run(service.ensureAuthorization());
    EXPECT_EQ(service.authorizationStatus(), Status::authorized);
    EXPECT_EQ(service.authorizationRequestErrorDescription(), std::nullopt);
    run(service.ensureAuthorization());
    EXPECT_EQ(center.requestCount, 3);
}

}  // namespace
}  // namespace quillmar
