#include "linux/x11/X11RootWindow.h"

#include <X11/Xatom.h>
#include <X11/Xlib-xcb.h>
#include <X11/Xlib.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <stdexcept>

#include "base/Uuid.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

namespace {

constexpr const char* rootPixmapProperty = "_XROOTPMAP_ID";
constexpr const char* killablePixmapProperty = "ESETROOT_PMAP_ID";
constexpr const char* tableProperty = "_QUILLMAR_DESKTOP_IMAGES";

using PropertyData = std::unique_ptr<unsigned char, decltype(&XFree)>;

std::optional<std::uint32_t> pixmapProperty(Display* display, const char* name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), XInternAtom(display, name, False), 0, 1, False,
                       XA_PIXMAP, &type, &format, &count, &left, &data);
    const PropertyData held(data, &XFree);
    if (type != XA_PIXMAP || format != 32 || count != 1) return std::nullopt;
    unsigned long pixmap = 0;  // Xlib hands out 32-bit properties as longs
    std::memcpy(&pixmap, data, sizeof pixmap);
    if (pixmap == None) return std::nullopt;
    return static_cast<std::uint32_t>(pixmap);
}

void setPixmapProperty(Display* display, const char* name, std::uint32_t pixmap) {
    const unsigned long value = pixmap;
    XChangeProperty(display, DefaultRootWindow(display), XInternAtom(display, name, False), XA_PIXMAP, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&value), 1);
}

void setTable(Display* display, const DesktopImageTable& table) {
    const std::string text = table.text();
    XChangeProperty(display, DefaultRootWindow(display), XInternAtom(display, tableProperty, False),
                    XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
}

/// Fills the pixmap outside of `area` with what the desktop shows now. Where that cannot be had it is black,
/// and the answer false.
bool copyDesktopAround(Display* display, std::optional<std::uint32_t> old, std::uint32_t pixmap,
                       const PixelRect& bounds, const PixelRect& area) {
    const auto length = [](int pixels) { return static_cast<unsigned short>(std::max(pixels, 0)); };
    const auto place = [](int pixels) { return static_cast<short>(pixels); };
    const int right = area.x + area.width;
    const int bottom = area.y + area.height;
    XRectangle around[] = {
        {0, 0, length(bounds.width), length(area.y)},
        {0, place(bottom), length(bounds.width), length(bounds.height - bottom)},
        {0, place(area.y), length(area.x), length(area.height)},
        {place(right), place(area.y), length(bounds.width - right), length(area.height)},
    };
    const X11Brush brush(display, pixmap);
    XSetForeground(display, brush.get(), BlackPixel(display, DefaultScreen(display)));
    bool isCopied = false;
    if (old) {
        // As a tile, as the server shows it, whatever the sizes of the two are by now.
        X11ErrorTrap gone(display);
        XSetTile(display, brush.get(), *old);
        isCopied = !gone.failed();
    }
    if (isCopied) XSetFillStyle(display, brush.get(), FillTiled);
    XFillRectangles(display, pixmap, brush.get(), around, static_cast<int>(std::size(around)));
    return isCopied;
}

RootGeometry drawableGeometry(Display* display, Drawable drawable) {
    Window root = None;
    int x = 0;
    int y = 0;
    unsigned width = 0;
    unsigned height = 0;
    unsigned border = 0;
    unsigned depth = 0;
    XGetGeometry(display, drawable, &root, &x, &y, &width, &height, &border, &depth);
    return {{0, 0, static_cast<int>(width), static_cast<int>(height)}, depth};
}

}  // namespace

X11ServerGrab::X11ServerGrab(Display* display) : display_(display) { XGrabServer(display); }

X11ServerGrab::~X11ServerGrab() {
    XUngrabServer(display_);
    XSync(display_, False);
}

std::optional<std::uint32_t> rootPixmap(Display* display) {
    return pixmapProperty(display, rootPixmapProperty);
}

DesktopImageTable desktopImageTable(Display* display) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), XInternAtom(display, tableProperty, False), 0,
                       std::numeric_limits<std::int16_t>::max(), False, AnyPropertyType, &type, &format,
                       &count, &left, &data);
    const PropertyData held(data, &XFree);
    if (format != 8 || left != 0) return {};
    return DesktopImageTable::parse({reinterpret_cast<const char*>(data), count});
}

RootGeometry rootGeometry(Display* display) { return drawableGeometry(display, DefaultRootWindow(display)); }

/// The id is one that no other program comes upon: the table knows a pixmap by its id, and the usual ids are
/// given out again from the lowest one as soon as their owner is gone.
std::uint32_t newRootPixmap(Display* display, const RootGeometry& root) {
    xcb_connection_t* connection = XGetXCBConnection(display);
    const xcb_setup_t* setup = xcb_get_setup(connection);
    std::uint32_t random = 0;
    std::memcpy(&random, Uuid::random().bytes().data(), sizeof random);
    const std::uint32_t mask = setup->resource_id_mask;
    const std::uint32_t upperHalf = mask & ~(mask >> 1);  // Xlib itself counts up from below
    const std::uint32_t pixmap = setup->resource_id_base | (random & mask) | upperHalf;
    xcb_create_pixmap(connection, static_cast<std::uint8_t>(root.depth), pixmap,
                      static_cast<xcb_drawable_t>(DefaultRootWindow(display)),
                      static_cast<std::uint16_t>(root.bounds.width),
                      static_cast<std::uint16_t>(root.bounds.height));
    return pixmap;
}

std::optional<std::uint32_t> ownRootPixmap(Display* display, const RootGeometry& root) {
    const auto pixmap = rootPixmap(display);
    if (!pixmap || desktopImageTable(display).pixmap != pixmap) return std::nullopt;
    X11ErrorTrap trap(display);
    const RootGeometry geometry = drawableGeometry(display, *pixmap);
    if (trap.failed() || geometry != root) return std::nullopt;
    return pixmap;
}

void repaintRootPixmap(Display* display, std::uint32_t pixmap, std::uint32_t picture,
                       const RootGeometry& root, const PixelRect& area, const std::filesystem::path& file) {
    const Window window = DefaultRootWindow(display);
    const auto width = static_cast<unsigned>(area.width);
    const auto height = static_cast<unsigned>(area.height);
    X11ErrorTrap trap(display);
    const X11Brush brush(display, pixmap);
    XCopyArea(display, picture, pixmap, brush.get(), 0, 0, width, height, area.x, area.y);
    // Said again: a server need not look at a background pixmap after it was set.
    XSetWindowBackgroundPixmap(display, window, pixmap);
    XClearArea(display, window, area.x, area.y, width, height, False);
    setPixmapProperty(display, rootPixmapProperty, pixmap);
    setPixmapProperty(display, killablePixmapProperty, pixmap);
    setTable(display, desktopImageTable(display).painted(pixmap, root.bounds, area, file));
    if (trap.failed()) throw std::runtime_error("The X server could not paint the desktop.");
}

void showRootPixmap(Display* display, std::uint32_t pixmap, const RootGeometry& root, const PixelRect& area,
                    const std::filesystem::path& file) {
    const Window window = DefaultRootWindow(display);
    const auto old = rootPixmap(display);
    const bool oldIsKillable = old && pixmapProperty(display, killablePixmapProperty) == old;
    DesktopImageTable table = desktopImageTable(display);
    if (table.pixmap != old) table = {};

    X11ErrorTrap trap(display);
    const bool isCopied = copyDesktopAround(display, old, pixmap, root.bounds, area);
    if (trap.failed()) throw std::runtime_error("The X server could not paint the desktop.");

    XSetCloseDownMode(display, RetainPermanent);
    XSetWindowBackgroundPixmap(display, window, pixmap);
    setPixmapProperty(display, rootPixmapProperty, pixmap);
    setPixmapProperty(display, killablePixmapProperty, pixmap);
    setTable(display, table.painted(pixmap, root.bounds, area, file));
    if (oldIsKillable) {
        X11ErrorTrap gone(display);  // whoever made it may have taken it along
        XKillClient(display, *old);
    }
    if (isCopied) {
        XClearArea(display, window, area.x, area.y, static_cast<unsigned>(area.width),
                   static_cast<unsigned>(area.height), False);
    } else {
        XClearWindow(display, window);
    }
}

}  // namespace quillmar
