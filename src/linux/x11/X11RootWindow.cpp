#include "linux/x11/X11RootWindow.h"

#include <sys/random.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace quillmar {

namespace {

constexpr std::string_view rootPixmapProperty = "_XROOTPMAP_ID";
constexpr std::string_view killablePixmapProperty = "ESETROOT_PMAP_ID";
constexpr std::string_view tableProperty = "_QUILLMAR_DESKTOP_IMAGES";

xcb_atom_t atom(const X11Server& server, std::string_view name) {
    const auto answer = xcbAnswer(
        &xcb_intern_atom_reply, server.connection,
        xcb_intern_atom(server.connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    return answer ? answer->atom : xcb_atom_t{XCB_NONE};
}

XcbReply<xcb_get_property_reply_t> property(const X11Server& server, std::string_view name, xcb_atom_t type,
                                            std::uint32_t length) {
    return xcbAnswer(
        &xcb_get_property_reply, server.connection,
        xcb_get_property(server.connection, 0, server.root(), atom(server, name), type, 0, length));
}

std::optional<std::uint32_t> pixmapProperty(const X11Server& server, std::string_view name) {
    const auto answer = property(server, name, XCB_ATOM_PIXMAP, 1);
    if (!answer || answer->type != XCB_ATOM_PIXMAP || answer->format != 32 || answer->value_len != 1) {
        return std::nullopt;
    }
    const std::uint32_t pixmap = *static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
    if (pixmap == XCB_NONE) return std::nullopt;
    return pixmap;
}

void announce(const X11Server& server, std::uint32_t pixmap, const DesktopImageTable& table) {
    // Said again: a server need not look at a background pixmap after it was set.
    xcb_change_window_attributes(server.connection, server.root(), XCB_CW_BACK_PIXMAP, &pixmap);
    for (const std::string_view name : {rootPixmapProperty, killablePixmapProperty}) {
        xcb_change_property(server.connection, XCB_PROP_MODE_REPLACE, server.root(), atom(server, name),
                            XCB_ATOM_PIXMAP, 32, 1, &pixmap);
    }
    const std::string text = table.text();
    xcb_change_property(server.connection, XCB_PROP_MODE_REPLACE, server.root(), atom(server, tableProperty),
                        atom(server, "UTF8_STRING"), 8, static_cast<std::uint32_t>(text.size()), text.data());
}

void clear(const X11Server& server, const PixelRect& area) {
    const auto [x, y, width, height] = xcbRectangle(area);
    xcb_clear_area(server.connection, 0, server.root(), x, y, width, height);
}

/// What of the bounds lies in no part.
std::vector<xcb_rectangle_t> around(const PixelRect& bounds,
                                    const std::vector<DesktopImageTable::Entry>& parts) {
    std::vector<PixelRect> rest{bounds};
    for (const auto& [part, file] : parts) {
        std::vector<PixelRect> left;
        for (const PixelRect& whole : rest) {
            const std::int64_t top = std::clamp(part.y, whole.y, whole.bottom());
            const std::int64_t bottom = std::clamp(part.bottom(), whole.y, whole.bottom());
            const std::int64_t west = std::clamp(part.x, whole.x, whole.right());
            const std::int64_t east = std::clamp(part.right(), whole.x, whole.right());
            left.push_back({whole.x, whole.y, whole.width, top - whole.y});
            left.push_back({whole.x, bottom, whole.width, whole.bottom() - bottom});
            left.push_back({whole.x, top, west - whole.x, bottom - top});
            left.push_back({east, top, whole.right() - east, bottom - top});
        }
        std::erase_if(left, [](const PixelRect& rect) { return rect.width == 0 || rect.height == 0; });
        rest = std::move(left);
    }
    std::vector<xcb_rectangle_t> rectangles;
    for (const PixelRect& rect : rest) rectangles.push_back(xcbRectangle(rect));
    return rectangles;
}

/// Fills the pixmap around the parts with what the desktop shows now. Where that cannot be had it is black,
/// and the answer false.
bool copyDesktopAround(const X11Server& server, std::optional<std::uint32_t> old, std::uint32_t pixmap,
                       const std::vector<xcb_rectangle_t>& rectangles) {
    xcb_connection_t* connection = server.connection;
    const X11Brush brush(server, pixmap);
    bool isCopied = false;
    if (old) {
        // As a tile, as the server shows it, whatever the sizes of the two are by now.
        const std::uint32_t values[] = {XCB_FILL_STYLE_TILED, *old};
        const XcbReply<xcb_generic_error_t> isGone(xcb_request_check(
            connection,
            xcb_change_gc_checked(connection, brush.get(), XCB_GC_FILL_STYLE | XCB_GC_TILE, values)));
        isCopied = !isGone;
        const std::uint32_t solid = XCB_FILL_STYLE_SOLID;
        if (isGone) xcb_change_gc(connection, brush.get(), XCB_GC_FILL_STYLE, &solid);
    }
    xcb_poly_fill_rectangle(connection, pixmap, brush.get(), static_cast<std::uint32_t>(rectangles.size()),
                            rectangles.data());
    return isCopied;
}

std::optional<RootGeometry> drawableGeometry(const X11Server& server, xcb_drawable_t drawable) {
    const auto answer =
        xcbAnswer(&xcb_get_geometry_reply, server.connection, xcb_get_geometry(server.connection, drawable));
    if (!answer) return std::nullopt;
    return RootGeometry{{0, 0, answer->width, answer->height}, answer->depth};
}

void throwIfFailed(const X11Connection& connection) {
    if (!connection.hasFailed()) return;
    connection.requireAlive();
    throw X11Failure(DesktopPictureError::Case::noRoom);
}

}  // namespace

X11ServerGrab::X11ServerGrab(const X11Connection& connection) : connection_(connection) {
    xcb_grab_server(connection.get());
}

X11ServerGrab::~X11ServerGrab() {
    xcb_ungrab_server(connection_.get());
    connection_.hasFailed();  // from here on somebody else may end the connection
}

std::optional<std::uint32_t> rootPixmap(const X11Server& server) {
    return pixmapProperty(server, rootPixmapProperty);
}

DesktopImageTable desktopImageTable(const X11Server& server) {
    const auto answer =
        property(server, tableProperty, XCB_ATOM_ANY, std::numeric_limits<std::int16_t>::max());
    if (!answer || answer->format != 8 || answer->bytes_after != 0) return {};
    return DesktopImageTable::parse(
        {static_cast<const char*>(xcb_get_property_value(answer.get())), answer->value_len});
}

RootGeometry rootGeometry(const X11Server& server) {
    const auto geometry = drawableGeometry(server, server.root());
    if (!geometry) throw X11Failure(DesktopPictureError::Case::noAnswer);
    return *geometry;
}

bool isPixmap(const X11Server& server, std::uint32_t pixmap) {
    return drawableGeometry(server, pixmap).has_value();
}

/// The id is one that no other program comes upon: the table knows a pixmap by its id, and the usual ids are
/// given out again from the lowest one as soon as their owner is gone.
std::uint32_t newRootPixmap(const X11Server& server, const RootGeometry& root) {
    const xcb_setup_t* setup = xcb_get_setup(server.connection);
    std::uint32_t random = 0;
    if (::getrandom(&random, sizeof random, 0) != sizeof random) random = 0;
    const std::uint32_t mask = setup->resource_id_mask;
    const std::uint32_t upperHalf = mask & ~(mask >> 1);  // the library itself counts up from below
    const std::uint32_t pixmap = setup->resource_id_base | (random & mask) | upperHalf;
    xcb_create_pixmap(server.connection, root.depth, pixmap, server.root(),
                      static_cast<std::uint16_t>(root.bounds.width),
                      static_cast<std::uint16_t>(root.bounds.height));
    return pixmap;
}

std::optional<std::uint32_t> ownRootPixmap(const X11Server& server, const RootGeometry& root) {
    const auto pixmap = rootPixmap(server);
    if (!pixmap || desktopImageTable(server).pixmap != pixmap) return std::nullopt;
    if (drawableGeometry(server, *pixmap) != root) return std::nullopt;
    return pixmap;
}

void showRepainted(const X11Connection& connection, std::uint32_t pixmap, const RootGeometry& root,
                   const DesktopImageTable::Entry& part) {
    const X11Server& server = connection.server();
    announce(server, pixmap, desktopImageTable(server).painted(pixmap, root.bounds, part));
    clear(server, part.area);
    throwIfFailed(connection);
}

void showRootPixmap(const X11Connection& connection, std::uint32_t pixmap, const RootGeometry& root,
                    const std::vector<DesktopImageTable::Entry>& parts) {
    const X11Server& server = connection.server();
    const auto old = rootPixmap(server);
    const bool oldIsKillable = old && pixmapProperty(server, killablePixmapProperty) == old;
    DesktopImageTable table = desktopImageTable(server);
    if (table.pixmap != old) table = {};
    const auto rest = around(root.bounds, parts);
    const bool isCopied = copyDesktopAround(server, old, pixmap, rest);
    throwIfFailed(connection);

    xcb_set_close_down_mode(server.connection, XCB_CLOSE_DOWN_RETAIN_PERMANENT);
    for (const DesktopImageTable::Entry& part : parts) {
        table = table.painted(pixmap, root.bounds, part);
    }
    announce(server, pixmap, table);
    // An error here: whoever made it may have taken it along.
    if (oldIsKillable) xcb_kill_client(server.connection, *old);
    if (isCopied || rest.empty()) {
        for (const DesktopImageTable::Entry& part : parts) clear(server, part.area);
    } else {
        clear(server, root.bounds);
    }
    connection.hasFailed();
    connection.requireAlive();
}

}  // namespace quillmar
