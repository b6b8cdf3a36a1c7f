#pragma once
#include <functional>
#include <memory>

#include "async/Executor.h"
#include "async/MainLoop.h"
#include "platform/SystemEvents.h"

namespace quillmar {

/// The end of the session where its manager speaks XSMP and is named in `SESSION_MANAGER`, as XFCE's is.
/// Without that name, or where the manager does not answer, nothing is heard. Main thread.
class XsmpSessionEnd {
public:
    /// Both outlive this. The manager is waited for on `background`: one that never answers keeps that
    /// thread.
    XsmpSessionEnd(MainLoop& loop, Executor& background);
    XsmpSessionEnd(const XsmpSessionEnd&) = delete;
    XsmpSessionEnd& operator=(const XsmpSessionEnd&) = delete;
    ~XsmpSessionEnd();
    /// Calls back, from the main loop, when the session ends. Replaces the former handler; an empty one
    /// leaves the session.
    void setQuitHandler(std::function<void(SystemQuitReason)> handler);

private:
    class Client;
    MainLoop& loop_;
    Executor& background_;
    std::unique_ptr<Client> client_;
};

}  // namespace quillmar
