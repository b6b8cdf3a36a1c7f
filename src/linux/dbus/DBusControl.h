#pragma once
#include <memory>

#include "platform/ControlChannel.h"

namespace quillmar {

/// Commands for the running program on the session bus: method `Run` of the interface
/// `com.quillmar.Quillmar.Control`, and its signal `Changed`, at the object "/com/quillmar/Quillmar/Control"
/// of the name `com.quillmar.Quillmar`, which the running instance owns. Without a bus nobody calls.
class DBusControl final : public ControlServing {
public:
    explicit DBusControl(MainLoop& loop);
    DBusControl(const DBusControl&) = delete;
    DBusControl& operator=(const DBusControl&) = delete;
    ~DBusControl() override;

    void serve(std::function<Task<ControlReply>(ControlCall)> handler) override;
    Task<void> tell(ControlEvent event) override;

private:
    class Server;
    MainLoop& loop_;
    std::unique_ptr<Server> server_;
};

}  // namespace quillmar
