#pragma once
#include <functional>
#include <memory>

#include "async/MainLoop.h"
#include "platform/SystemEvents.h"

namespace quillmar {

/// The end of the session and of the machine as the system wants the program to end: a client of the session
/// manager `org.gnome.SessionManager`, which several desktops have, and the shutdown of logind; and when the
/// machine wakes up, of logind too. Where there is neither, nothing is heard. What is heard is heard from
/// `setQuitHandler` on.
class DBusSessionEnd final : public SystemEventsObserving {
public:
    explicit DBusSessionEnd(MainLoop& loop);
    DBusSessionEnd(const DBusSessionEnd&) = delete;
    DBusSessionEnd& operator=(const DBusSessionEnd&) = delete;
    ~DBusSessionEnd() override;
    void setQuitHandler(std::function<void(SystemQuitReason)> handler) override;
    void setWakeHandler(std::function<void()> handler) override { onWake_ = std::move(handler); }

private:
    class Client;
    MainLoop& loop_;
    std::function<void()> onWake_;
    std::unique_ptr<Client> client_;
};

}  // namespace quillmar
