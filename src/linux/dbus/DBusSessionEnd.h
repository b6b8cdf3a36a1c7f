#pragma once
#include <functional>
#include <memory>

#include "async/MainLoop.h"
#include "platform/SystemEvents.h"

namespace quillmar {

/// The end of the session and of the machine as the system wants the program to end: a client of the session
/// manager `org.gnome.SessionManager`, which several desktops have, and the shutdown of logind. Where there
/// is neither, nothing is heard.
class DBusSessionEnd {
public:
    explicit DBusSessionEnd(MainLoop& loop);
    DBusSessionEnd(const DBusSessionEnd&) = delete;
    DBusSessionEnd& operator=(const DBusSessionEnd&) = delete;
    ~DBusSessionEnd();
    void setQuitHandler(std::function<void(SystemQuitReason)> handler);

private:
    class Client;
    MainLoop& loop_;
    std::unique_ptr<Client> client_;
};

}  // namespace quillmar
