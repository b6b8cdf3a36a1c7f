#pragma once
#include "fakes/FakeExecutors.h"
#include "fakes/FakeHTTPSession.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeNotificationCenter.h"
#include "loginitem/LoginItemService.h"
#include "updates/SoftwareUpdateController.h"

namespace quillmar {

/// What commands ask besides wallpapers: the session, and newer versions, of which this build knows nothing.
struct ProgramServices {
    ProgramServices(MainLoop& loop, const WallClock& clock, const AppSettingsModel& model)
        : web(loop),
          loginItem(session, model),
          updates({.problem = SoftwareUpdateConfiguration::Problem::disabled}, {.loop = loop,
                                                                                .clock = clock,
                                                                                .session = web,
                                                                                .files = files,
                                                                                .notificationCenter = center,
                                                                                .settingsModel = model}) {}

    FakeLoginItem session{LoginItemRegistrationStatus::enabled};
    InlineExecutor files;
    FakeHTTPSession web;
    FakeNotificationCenter center;
    LoginItemService loginItem;
    SoftwareUpdateController updates;
};

}  // namespace quillmar
