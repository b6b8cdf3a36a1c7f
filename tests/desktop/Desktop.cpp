#include "desktop/Desktop.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XRes.h>
#include <X11/extensions/Xrandr.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "base/Files.h"
#include "base/Uuid.h"
#include "linux/gtk/GtkSession.h"
#include "linux/x11/X11Outputs.h"

namespace quillmar {

int runProgram(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void openGtkSession() { static const GtkSession session; }

bool turnUntil(const std::function<bool()>& condition) {
    // The condition may be of the world outside, which wakes nobody up here.
    int ticksLeft = 2000;
    const auto tick = +[](gpointer left) -> gboolean {
        --*static_cast<int*>(left);
        return G_SOURCE_CONTINUE;
    };
    const guint timer = g_timeout_add(10, tick, &ticksLeft);
    bool holds = condition();
    while (!holds && ticksLeft > 0) {
        g_main_context_iteration(nullptr, TRUE);
        holds = condition();
    }
    g_source_remove(timer);
    return holds;
}

OwnConnection::OwnConnection(const char* name) {
    const Owned<char> address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    bus_ = Ref<GDBusConnection>::adopt(g_dbus_connection_new_for_address_sync(
        address.get(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    const Owned<GVariant> owned(g_dbus_connection_call_sync(
        bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, 0), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
}

OwnConnection::~OwnConnection() {
    // What was called meanwhile would be answered later, connection or not.
    for (const guint object : offered_) g_dbus_connection_unregister_object(bus_.get(), object);
    g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

void OwnConnection::offer(const char* path, const char* descriptionXml, GDBusInterfaceMethodCallFunc called,
                          void* data) {
    const GDBusInterfaceVTable methods{called, nullptr, nullptr, {}};
    const Owned<GDBusNodeInfo> description(g_dbus_node_info_new_for_xml(descriptionXml, nullptr));
    offered_.push_back(g_dbus_connection_register_object(bus_.get(), path, description->interfaces[0],
                                                         &methods, data, nullptr, nullptr));
}

OtherProcess::OtherProcess(std::vector<std::string> role) {
    role.insert(role.begin(), "/proc/self/exe");
    std::vector<char*> arguments;
    for (std::string& argument : role) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    close(ends[1]);
    output_ = ends[0];
}

OtherProcess::~OtherProcess() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        wait();
    }
    close(output_);
}

std::string OtherProcess::line() {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line += c;
    return line;
}

int OtherProcess::wait() {
    int status = 0;
    waitpid(std::exchange(process_, 0), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void PpmEncoding::writePng(const PixelBuffer& picture, const std::filesystem::path& target) const {
    const auto [width, height] = picture.size();
    std::string text = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
    const auto pixels = picture.bytes();
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        for (const std::size_t channel : {2u, 1u, 0u}) text += static_cast<char>(pixels[i + channel]);
    }
    writeFileAtomically(target, text);
}

SharedPixels ppmPixels(const std::filesystem::path& file) {
    const std::string text = readFile(file, std::size_t{1} << 30);
    PixelSize size;
    if (std::sscanf(text.c_str(), "P6 %d %d", &size.width, &size.height) != 2) return nullptr;
    auto pixels = std::make_shared<PixelBuffer>(size);
    const auto bytes = pixels->bytes();
    const char* in = text.data() + (text.size() - bytes.size() / 4 * 3);
    for (std::size_t i = 0; i < bytes.size(); i += 4, in += 3) {
        for (const std::size_t channel : {0u, 1u, 2u}) {
            bytes[i + channel] = static_cast<std::uint8_t>(in[2 - channel]);
        }
    }
    return pixels;
}

SharedPixels solidPixels(int width, int height, RgbColor color) {
    auto pixels = std::make_shared<PixelBuffer>(PixelSize{width, height});
    pixels->fill(color);
    return pixels;
}

struct Desktop::Connection {
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { XCloseDisplay(display); }
    Display* display = XOpenDisplay(nullptr);
    Window root = DefaultRootWindow(display);
    X11Connection x{""};
};

Desktop::Desktop()
    : connection_(std::make_unique<Connection>()),
      folder_(std::filesystem::temp_directory_path() / ("quillmar-desktop-" + Uuid::random().string())) {
    std::filesystem::create_directories(folder_);
    reset();
}

Desktop::~Desktop() {
    reset();
    std::filesystem::remove_all(folder_);
}

void Desktop::reset() {
    setEdid("DUMMY0", {});
    setEdid("DUMMY1", {});
    arrange(
        "--output DUMMY0 --mode 1920x1080 --pos 0x0 --primary --output DUMMY1 --mode 1280x1024 --pos 1920x0 "
        "--output DUMMY2 --off --output DUMMY3 --off");
}

void Desktop::arrange(const std::string& arguments) {
    ASSERT_EQ(runProgram("xrandr " + arguments + " && xrandr -q >/dev/null"), 0);
}

void Desktop::setEdid(const std::string& connector, const Bytes& edid) {
    const Atom property = XInternAtom(connection_->display, "EDID", False);
    const RROutput output = screen(connector).number;
    // It may be absent already.
    const XErrorHandler former = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    if (edid.empty()) {
        XRRDeleteOutputProperty(connection_->display, output, property);
    } else {
        XRRChangeOutputProperty(connection_->display, output, property, XA_INTEGER, 8, PropModeReplace,
                                edid.data(), static_cast<int>(edid.size()));
    }
    XSync(connection_->display, False);
    XSetErrorHandler(former);
}

Screen Desktop::screen(const std::string& connector) const {
    Screen screen;
    for (const ConnectedOutput& output : connectedOutputs(connection_->x.server())) {
        if (output.connector != connector) continue;
        screen.number = output.number;
        screen.area = output.area.value_or(PixelRect{});
    }
    screen.connector = connector;
    return screen;
}

RgbColor Desktop::pixel(int x, int y) const { return pixels(x, y, 1, 1).front(); }

std::vector<RgbColor> Desktop::pixels(int x, int y, int width, int height) const {
    std::vector<RgbColor> colors;
    XImage* image = XGetImage(connection_->display, connection_->root, x, y, static_cast<unsigned>(width),
                              static_cast<unsigned>(height), AllPlanes, ZPixmap);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const unsigned long pixel = XGetPixel(image, column, row);
            colors.push_back({static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
                              static_cast<std::uint8_t>(pixel)});
        }
    }
    XDestroyImage(image);
    return colors;
}

std::pair<unsigned long, int> Desktop::memory() const {
    XResClient* clients = nullptr;
    int count = 0;
    XResQueryClients(connection_->display, &count, &clients);
    unsigned long total = 0;
    for (int i = 0; i < count; ++i) {
        unsigned long bytes = 0;
        XResQueryClientPixmapBytes(connection_->display, clients[i].resource_base, &bytes);
        total += bytes;
    }
    XFree(clients);
    return {total, count};
}

int Desktop::serverProcess() const {
    ucred server{};
    socklen_t length = sizeof server;
    getsockopt(xcb_get_file_descriptor(connection_->x.get()), SOL_SOCKET, SO_PEERCRED, &server, &length);
    return server.pid;
}

std::filesystem::path Desktop::solidPicture(int width, int height, RgbColor color) const {
    const auto file = folder_ / (Uuid::random().string() + ".ppm");
    PpmEncoding().writePng(*solidPixels(width, height, color), file);
    return file;
}

}  // namespace quillmar
