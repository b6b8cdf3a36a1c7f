#include "linux/x11/X11Connection.h"

#include <X11/Xlib.h>

#include <stdexcept>

namespace quillmar {

X11Connection::X11Connection(const std::string& display)
    : display_(XOpenDisplay(display.empty() ? nullptr : display.c_str())) {
    if (!display_) throw std::runtime_error("No display server answered.");
    // Who paints the desktop next ends the connection of the one before, be it still open, together with its
    // pixmap. That is no reason to end the process, which is what the library would do: by then we have
    // painted.
    XSetIOErrorExitHandler(display_, [](Display*, void*) {}, nullptr);
}

X11Connection::~X11Connection() { XCloseDisplay(display_); }

X11Brush::X11Brush(Display* display, std::uint32_t pixmap)
    : display_(display), context_(XCreateGC(display, pixmap, 0, nullptr)) {}

X11Brush::~X11Brush() { XFreeGC(display_, context_); }

/// Xlib has one error handler for the whole process and gives it no data: the innermost trap is found here.
struct X11ErrorTrap::Handler {
    static inline X11ErrorTrap* innermost = nullptr;
    static inline XErrorHandler untrapped = nullptr;

    static int handle(Display* display, XErrorEvent* error) {
        for (X11ErrorTrap* trap = innermost; trap; trap = trap->outer_) {
            if (trap->display_ != display || error->serial < trap->firstSerial_) continue;
            trap->hasFailed_ = true;
            return 0;
        }
        return untrapped ? untrapped(display, error) : 0;
    }
};

X11ErrorTrap::X11ErrorTrap(Display* display)
    : display_(display), firstSerial_(NextRequest(display)), outer_(Handler::innermost) {
    if (!outer_) Handler::untrapped = XSetErrorHandler(&Handler::handle);
    Handler::innermost = this;
}

X11ErrorTrap::~X11ErrorTrap() {
    XSync(display_, False);
    Handler::innermost = outer_;
    if (!outer_) XSetErrorHandler(Handler::untrapped);
}

bool X11ErrorTrap::failed() {
    XSync(display_, False);
    return hasFailed_;
}

}  // namespace quillmar
