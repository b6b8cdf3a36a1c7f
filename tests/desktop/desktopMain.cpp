#include <gdk/gdkx.h>
#include <gmock/gmock.h>
#include <gtk/gtk.h>
#include <sched.h>
#include <signal.h>
#include <unistd.h>

#include <iostream>

#include "async/TaskScope.h"
#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"
#include "linux/dbus/DBusRunningInstances.h"
#include "linux/glib/GlibMainLoop.h"
#include "linux/gtk/GtkSession.h"
#include "linux/x11/X11DesktopPicture.h"

namespace quillmar {
namespace {

/// An instance that others can find, until one has found it.
int playInstance() {
    GlibMainLoop loop;
    DBusRunningInstances instances;
    instances.publish([&] {
        std::cout << "activated" << std::endl;
        loop.quit();
    });
    loop.run();
    return 0;
}

/// A process that has the instances' name and never answers.
int playDeafInstance() {
    g_bus_own_name(
        G_BUS_TYPE_SESSION, "com.quillmar.Quillmar", G_BUS_NAME_OWNER_FLAGS_NONE, nullptr,
        [](GDBusConnection*, const gchar*, gpointer) {
            std::cout << "deaf" << std::endl;
            // All of it: the bus's own thread would answer for a main loop that is only busy.
            raise(SIGSTOP);
        },
        nullptr, nullptr, nullptr);
    while (true) g_main_context_iteration(nullptr, TRUE);
}

/// An instance in a session without a bus.
int playLonelyInstance() {
    g_setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
    GlibMainLoop loop;
    DBusRunningInstances instances;
    instances.publish([] {});
    TaskScope scope(loop);
    scope.spawn([](DBusRunningInstances* others, GlibMainLoop* main) -> Task<void> {
        std::cout << (co_await others->activateOther() ? "found" : "alone") << std::endl;
        main->quit();
    }(&instances, &loop));
    loop.run();
    return 0;
}

/// A program with a window; says the window's id.
int playWindow() {
    const GtkSession session;
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show(window);
    std::cout << GDK_WINDOW_XID(gtk_widget_get_window(window)) << std::endl;
    GlibMainLoop loop;
    loop.run();
    return 0;
}

int playBlindSession() {
    g_setenv("DISPLAY", ":nowhere", TRUE);
    try {
        const GtkSession session;
    } catch (const std::runtime_error& error) {
        std::cout << error.what() << std::endl;
    }
    return 0;
}

/// Paints without memory in common with the X server, as from inside a container.
int playContainer(const std::string& file, const std::string& screenNumber) {
    Screen screen;
    screen.number = static_cast<std::uint32_t>(std::stoul(screenNumber));
    if (unshare(CLONE_NEWIPC) != 0) return 77;
    X11DesktopPicture("").setDesktopImage(file, screen, {});
    return 0;
}

}  // namespace

std::optional<int> playRole(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return std::nullopt;
    const std::string& role = arguments[0];
    if (role == "instance") return playInstance();
    if (role == "deaf-instance") return playDeafInstance();
    if (role == "lonely-instance") return playLonelyInstance();
    if (role == "window") return playWindow();
    if (role == "blind-session") return playBlindSession();
    if (role == "container") return playContainer(arguments.at(1), arguments.at(2));
    if (role == "plasma-shell") return playPlasmaShell();
    return std::nullopt;
}

}  // namespace quillmar

int main(int argc, char** argv) {
    if (const auto status = quillmar::playRole({argv + 1, argv + argc})) return *status;
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
