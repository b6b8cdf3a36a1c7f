#include "linux/xsmp/XsmpSessionEnd.h"

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "async/TaskScope.h"
#include "linux/glib/Readable.h"

namespace quillmar {
namespace {

/// A connection to the session manager. Dying, it tells the manager that this client leaves.
class Connection {
public:
    Connection() = default;
    explicit Connection(SmcConn opened) : connection_(opened) {}
    Connection(Connection&& other) noexcept : connection_(std::exchange(other.connection_, nullptr)) {}
    Connection& operator=(Connection&& other) noexcept {
        std::swap(connection_, other.connection_);
        return *this;
    }
    ~Connection() {
        if (connection_) SmcCloseConnection(connection_, 0, nullptr);
    }
    explicit operator bool() const { return connection_ != nullptr; }
    SmcConn get() const { return connection_; }
    int descriptor() const { return IceConnectionNumber(SmcGetIceConnection(connection_)); }
    /// What has arrived goes to the callbacks.
    void process() {
        const IceProcessMessagesStatus status =
            IceProcessMessages(SmcGetIceConnection(connection_), nullptr, nullptr);
        if (status == IceProcessMessagesIOError) Connection(std::move(*this));
        // The library has freed it by then.
        if (status == IceProcessMessagesConnectionClosed) connection_ = nullptr;
    }

private:
    SmcConn connection_ = nullptr;
};

constexpr unsigned long allCallbacks =
    SmcSaveYourselfProcMask | SmcDieProcMask | SmcSaveCompleteProcMask | SmcShutdownCancelledProcMask;

/// Settings are saved as they change, so the answer is always at hand. Whether the session really ends says
/// the manager afterwards.
void saveYourself(SmcConn connection, SmPointer, int, Bool, int, Bool) {
    SmcSaveYourselfDone(connection, True);
}
void nothing(SmcConn, SmPointer) {}

SmcCallbacks callbacks(SmcDieProc die, void* data) {
    SmcCallbacks all{};
    all.save_yourself = {&saveYourself, nullptr};
    all.die = {die, data};
    all.save_complete = {&nothing, nullptr};
    all.shutdown_cancelled = {&nothing, nullptr};
    return all;
}

void setText(SmcConn connection, const char* name, const char* type, std::string text) {
    SmPropValue value{static_cast<int>(text.size()), text.data()};
    SmProp property{const_cast<char*>(name), const_cast<char*>(type), 1, &value};
    SmProp* properties[] = {&property};
    SmcSetProperties(connection, 1, properties);
}

/// The protocol wants the first four. The login item alone decides whether the program starts with a session,
/// so the manager does not.
void introduce(SmcConn connection) {
    const std::string program = "quillmar";
    setText(connection, SmProgram, SmARRAY8, program);
    setText(connection, SmUserID, SmARRAY8, std::to_string(::getuid()));
    setText(connection, SmCloneCommand, SmLISTofARRAY8, program);
    setText(connection, SmRestartCommand, SmLISTofARRAY8, program);
    setText(connection, SmRestartStyleHint, SmCARD8, {char{SmRestartNever}});
}

/// Waits for the manager, on a thread of its own: the library knows no limit.
Connection opened() {
    SmcCallbacks all = callbacks(&nothing, nullptr);
    static char ownConnection;
    char* name = nullptr;
    char failure[256] = "";
    Connection connection(SmcOpenConnection(nullptr, &ownConnection, SmProtoMajor, SmProtoMinor, allCallbacks,
                                            &all, nullptr, &name, sizeof failure, failure));
    std::free(name);
    return connection;
}

/// The library's own handlers end the process, and a manager that died is met by a write.
void surviveFailures() {
    IceInitThreads();
    IceSetIOErrorHandler([](IceConn) {});
    IceSetErrorHandler([](IceConn, Bool, int, unsigned long, int, int, IcePointer) {});
    SmcSetErrorHandler([](SmcConn, Bool, int, unsigned long, int, int, SmPointer) {});
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace

class XsmpSessionEnd::Client {
public:
    using Handler = std::function<void(SystemQuitReason)>;

    Client(MainLoop& loop, Executor& background, Handler handler)
        : loop_(loop), handler_(std::move(handler)), tasks_(loop) {
        tasks_.spawn(follow(&background));
    }

private:
    Task<void> follow(Executor* background) {
        connection_ = co_await background->run(&opened);
        if (!connection_) co_return;
        ::fcntl(connection_.descriptor(), F_SETFD, FD_CLOEXEC);
        // Nothing is read before this, so no message has met the callbacks that say nothing.
        SmcCallbacks all = callbacks(&Client::die, this);
        SmcModifyCallbacks(connection_.get(), allCallbacks, &all);
        introduce(connection_.get());
        while (connection_) {
            co_await readable(connection_.descriptor());
            connection_.process();
        }
    }
    /// The connection stays: the manager waits for its end, which is that of the process, once all is saved.
    static void die(SmcConn, SmPointer data) {
        auto* client = static_cast<Client*>(data);
        client->told_ =
            Scheduled(client->loop_, [handler = client->handler_] { handler(SystemQuitReason::terminated); });
    }

    MainLoop& loop_;
    Handler handler_;
    Connection connection_;
    Scheduled told_;
    TaskScope tasks_;
};

XsmpSessionEnd::XsmpSessionEnd(MainLoop& loop, Executor& background) : loop_(loop), background_(background) {}
XsmpSessionEnd::~XsmpSessionEnd() = default;

void XsmpSessionEnd::setQuitHandler(std::function<void(SystemQuitReason)> handler) {
    client_.reset();
    if (!handler || !std::getenv("SESSION_MANAGER")) return;
    surviveFailures();
    client_ = std::make_unique<Client>(loop_, background_, std::move(handler));
}

}  // namespace quillmar
