#include "linux/gtk/GtkSession.h"

#include <X11/Xlib.h>
#include <gdk/gdkx.h>
#include <gtk/gtk.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "base/Localization.h"
#include "diagnostics/Log.h"
#include "linux/glib/PreferredLanguages.h"

namespace quillmar {

namespace {

class NoDisplayServer final : public AppLocalizableError {
public:
    std::string message(GeneralLanguage language) const override {
        return localized(
            "No display server could be reached. Quillmar needs a running X server or XWayland."_key,
            language);
    }
};

/// Ends the process at once: leaving in good order would talk to the display server again. Other connections
/// than the session's own answer for themselves.
int connectionLost(Display* display) {
    if (display != gdk_x11_get_default_xdisplay()) return 0;
    constexpr TextKey message = "The connection to the display server was lost."_key;
    logError(std::string(message.english()), "lifecycle");
    // The settings may be what is being written just now; the locale says the language too.
    const GeneralLanguage language = preferredLanguage(preferredLanguages());
    std::fprintf(stderr, "quillmar: %s\n", localized(message, language).c_str());
    std::fflush(stderr);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

GtkSession::GtkSession() {
    std::setlocale(LC_ALL, "");
    // Numbers in files have a point, whatever the user's language.
    std::setlocale(LC_NUMERIC, "C");
    gtk_disable_setlocale();
    g_set_prgname("quillmar");
    g_set_application_name("Quillmar");
    // Under Wayland this is its X server: placing windows on a monitor's desktop needs one.
    gdk_set_allowed_backends("x11");
    // Choosing visuals for OpenGL would load the whole driver, 30 MB that an idle agent never uses.
    g_setenv("GDK_GL", "disable", FALSE);
    if (!gtk_init_check(nullptr, nullptr)) {
        throw NoDisplayServer();
    }
    XSetIOErrorHandler(&connectionLost);
}

}  // namespace quillmar
