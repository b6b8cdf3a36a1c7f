#include <gio/gio.h>
#include <gmock/gmock.h>
#include <signal.h>

#include <iostream>

#include "desktop/Desktop.h"
#include "desktop/FakePlasmaShell.h"

namespace quillmar {
namespace {

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

}  // namespace

std::optional<int> playRole(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return std::nullopt;
    const std::string& role = arguments[0];
    if (role == "deaf-instance") return playDeafInstance();
    if (role == "plasma-shell") return playPlasmaShell();
    return std::nullopt;
}

}  // namespace quillmar

int main(int argc, char** argv) {
    if (const auto status = quillmar::playRole({argv + 1, argv + argc})) return *status;
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
