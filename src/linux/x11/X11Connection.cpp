#include "linux/x11/X11Connection.h"

#include <X11/Xauth.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace quillmar {

namespace {

struct DisplayName {
    std::string host;
    int display = 0;
    int screen = 0;
};

std::optional<DisplayName> parsedName(const char* display) {
    char* host = nullptr;
    DisplayName name;
    if (!xcb_parse_display(display, &host, &name.display, &name.screen)) return std::nullopt;
    const XcbReply<char> held(host);
    name.host = host;
    return name;
}

FileDescriptor connectedTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return {};
    std::memcpy(address.sun_path, path.data(), path.size());
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    if (!socket || ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        return {};
    }
    return socket;
}

/// The socket of a server on this machine; none for another.
FileDescriptor localSocket(const DisplayName& name) {
    if (!name.host.empty() && name.host != "unix") return {};
    const std::string path = "/tmp/.X11-unix/X" + std::to_string(name.display);
    FileDescriptor socket = connectedTo(std::string(1, '\0') + path);
    return socket ? std::move(socket) : connectedTo(path);
}

using Authority = std::unique_ptr<Xauth, decltype(&XauDisposeAuth)>;

/// The cookie that the server on this machine wants to see; null where it wants none.
Authority authorityFor(int display) {
    static constexpr char method[] = "MIT-MAGIC-COOKIE-1";
    char host[256] = {};
    if (::gethostname(host, sizeof host - 1) != 0) return {nullptr, &XauDisposeAuth};
    const std::string number = std::to_string(display);
    char* methods[] = {const_cast<char*>(method)};
    const int lengths[] = {sizeof method - 1};
    return {
        XauGetBestAuthByAddr(FamilyLocal, static_cast<unsigned short>(std::strlen(host)), host,
                             static_cast<unsigned short>(number.size()), number.c_str(), 1, methods, lengths),
        &XauDisposeAuth};
}

xcb_connection_t* openedOn(FileDescriptor socket, int display) {
    const Authority authority = authorityFor(display);
    xcb_auth_info_t info{};
    if (authority) {
        info = {authority->name_length, authority->name, authority->data_length, authority->data};
    }
    return xcb_connect_to_fd(socket.release(), authority ? &info : nullptr);
}

bool isUnixSocket(int socket) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    return ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
           address.ss_family == AF_UNIX;
}

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
    return screens.data;
}

}  // namespace

void X11Interruption::interrupt() {
    const std::lock_guard lock(mutex_);
    isInterrupted_ = true;
    if (socket_) ::shutdown(socket_.get(), SHUT_RDWR);
}

bool X11Interruption::isLeftWithin(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return left_.wait_for(lock, limit, [this] { return !socket_; });
}

/// A copy, since the library closes its own when it likes, and another file gets the number then.
void X11Interruption::enter(int socket) {
    const std::lock_guard lock(mutex_);
    socket_ = FileDescriptor(::fcntl(socket, F_DUPFD_CLOEXEC, 0));
    if (isInterrupted_ && socket_) ::shutdown(socket_.get(), SHUT_RDWR);
}

void X11Interruption::leave() {
    const std::lock_guard lock(mutex_);
    socket_.reset();
    left_.notify_all();
}

X11Connection::X11Connection(const std::string& display, std::shared_ptr<X11Interruption> interruption)
    : interruption_(std::move(interruption)) {
    const char* name = display.empty() ? nullptr : display.c_str();
    const auto parsed = parsedName(name);
    if (!parsed) throw X11Failure(DesktopPictureError::Case::noAnswer);
    FileDescriptor socket = localSocket(*parsed);
    // Opening waits for the server too, so the socket must be known before.
    if (socket && interruption_) interruption_->enter(socket.get());
    server_.connection = socket ? openedOn(std::move(socket), parsed->display) : xcb_connect(name, nullptr);
    if (xcb_connection_has_error(server_.connection)) {
        if (interruption_) interruption_->leave();
        xcb_disconnect(server_.connection);
        throw X11Failure(DesktopPictureError::Case::noAnswer);
    }
    const int descriptor = xcb_get_file_descriptor(server_.connection);
    if (interruption_) interruption_->enter(descriptor);
    isLocal_ = isUnixSocket(descriptor);
    server_.screen = screenOf(server_.connection, parsed->screen);
}

X11Connection::~X11Connection() {
    if (interruption_) interruption_->leave();
    xcb_disconnect(server_.connection);
}

bool X11Connection::hasFailed() const {
    const auto answer = xcbAnswer(&xcb_get_input_focus_reply, get(), xcb_get_input_focus(get()));
    bool hasFailed = !answer;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
        hasFailed |= event->response_type == 0;
    }
    return hasFailed;
}

void X11Connection::requireAlive() const {
    if (xcb_connection_has_error(get())) throw X11Failure(DesktopPictureError::Case::noAnswer);
}

X11Brush::X11Brush(const X11Server& server, xcb_drawable_t drawable)
    : connection_(server.connection), context_(xcb_generate_id(server.connection)) {
    const std::uint32_t values[] = {server.screen->black_pixel, 0};
    xcb_create_gc(connection_, context_, drawable, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES, values);
}

}  // namespace quillmar
