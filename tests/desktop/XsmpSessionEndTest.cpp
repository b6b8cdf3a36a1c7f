#include "linux/xsmp/XsmpSessionEnd.h"

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "async/ThreadPool.h"
#include "desktop/Desktop.h"
#include "linux/glib/GlibMainLoop.h"

namespace quillmar {
namespace {

/// A session manager in a process of its own: it ends a session that it first called off, and then ends with
/// status 0 if its client answered each time and stayed until it was told to go.
class SessionManager {
public:
    SessionManager() {
        char failure[256];
        const auto anyone = [](char*) -> Bool { return True; };
        EXPECT_TRUE(SmsInitialize("tests", "1", &joined, nullptr, anyone, sizeof failure, failure));
        EXPECT_TRUE(IceListenForConnections(&count_, &listeners_, sizeof failure, failure)) << failure;
        listener_ = *std::find_if(listeners_, listeners_ + count_,
                                  [](IceListenObj each) { return addressOf(each).starts_with("local/"); });
        ::setenv("SESSION_MANAGER", addressOf(listener_).c_str(), 1);
        process_ = ::fork();
        if (process_ == 0) serve();
    }
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;
    ~SessionManager() {
        ::unsetenv("SESSION_MANAGER");
        IceFreeListenObjs(count_, listeners_);
    }
    int status() const {
        int status = -1;
        ::waitpid(process_, &status, 0);
        return status;
    }

private:
    static std::string addressOf(IceListenObj listener) {
        const std::unique_ptr<char, decltype(&::free)> address(IceGetListenConnectionString(listener),
                                                               &::free);
        return address.get();
    }
    static inline int saves;

    static Status joined(SmsConn, SmPointer, unsigned long* mask, SmsCallbacks* calls, char**) {
        *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
                SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
                SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
                SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
        *calls = {};
        calls->register_client.callback = [](SmsConn client, SmPointer, char*) -> Status {
            const bool isTold = SmsRegisterClientReply(client, SmsGenerateClientID(client)) != 0;
            SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
            return isTold;
        };
        calls->save_yourself_done.callback = [](SmsConn client, SmPointer, Bool) {
            if (++saves == 3) return SmsDie(client);
            saves == 2 ? SmsShutdownCancelled(client) : SmsSaveComplete(client);
            SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleNone, False);
        };
        calls->set_properties.callback = [](SmsConn, SmPointer, int number, SmProp** all) {
            while (number > 0) SmFreeProperty(all[--number]);
            std::free(all);
        };
        calls->close_connection.callback = [](SmsConn, SmPointer, int, char**) {
            ::_exit(saves == 3 ? 0 : 1);
        };
        return 1;
    }
    [[noreturn]] void serve() {
        ::alarm(100);
        IceSetHostBasedAuthProc(listener_, [](char*) -> Bool { return True; });
        IceAcceptStatus status{};
        IceConn client = IceAcceptConnection(listener_, &status);
        while (client && IceProcessMessages(client, nullptr, nullptr) == IceProcessMessagesSuccess) {
        }
        ::_exit(2);
    }

    int count_ = 0;
    IceListenObj* listeners_ = nullptr;
    IceListenObj listener_ = nullptr;
    pid_t process_ = -1;
};

TEST(XsmpSessionEndTest, aSessionThatIsCalledOffGoesOnAndOneThatEndsIsAWishToQuit) {
    const SessionManager manager;
    ThreadPool pool(1);
    GlibMainLoop loop;
    {
        XsmpSessionEnd sessionEnd(loop, pool);
        int quits = 0;
        sessionEnd.setQuitHandler([&](SystemQuitReason) { ++quits; });
        EXPECT_TRUE(turnUntil([&] { return quits == 1; }));
    }
    EXPECT_EQ(manager.status(), 0);
}

}  // namespace
}  // namespace quillmar
