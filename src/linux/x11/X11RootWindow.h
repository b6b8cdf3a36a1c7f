#pragma once
#include <cstdint>
#include <optional>

#include "linux/x11/DesktopImageTable.h"

struct _XDisplay;

namespace quillmar {

/// The X server is the caller's alone while it lives.
class X11ServerGrab {
public:
    explicit X11ServerGrab(_XDisplay* display);
    X11ServerGrab(const X11ServerGrab&) = delete;
    X11ServerGrab& operator=(const X11ServerGrab&) = delete;
    ~X11ServerGrab();

private:
    _XDisplay* display_;
};

/// The pixmap that whoever painted the desktop last says it shows; nothing when nobody has.
std::optional<std::uint32_t> rootPixmap(_XDisplay* display);

/// Which files that pixmap was painted from, as far as this program did it.
DesktopImageTable desktopImageTable(_XDisplay* display);

struct RootGeometry {
    PixelRect bounds;
    unsigned depth = 0;
    bool operator==(const RootGeometry&) const = default;
};

/// The root window as it is now; Xlib's own numbers are those of the connection's beginning.
RootGeometry rootGeometry(_XDisplay* display);

/// A pixmap for the whole root window, with no particular content.
std::uint32_t newRootPixmap(_XDisplay* display, const RootGeometry& root);

/// The desktop's pixmap when this program made it and it still fits the root window; nothing otherwise.
std::optional<std::uint32_t> ownRootPixmap(_XDisplay* display, const RootGeometry& root);

/// Copies `picture`, a pixmap of the size of `area`, into the desktop's own pixmap and shows it. Much cheaper
/// than another pixmap for the whole root window. The server must be grabbed. Throws `std::runtime_error`.
void repaintRootPixmap(_XDisplay* display, std::uint32_t pixmap, std::uint32_t picture,
                       const RootGeometry& root, const PixelRect& area, const std::filesystem::path& file);

/// Makes the pixmap, painted in `area` from `file`, the desktop: completes it with what the desktop shows
/// elsewhere, and says so to other programs and in the table. The connection must be the caller's own, with
/// the server grabbed: the pixmap stays when it closes. Throws `std::runtime_error`; the desktop is then
/// unchanged.
void showRootPixmap(_XDisplay* display, std::uint32_t pixmap, const RootGeometry& root, const PixelRect& area,
                    const std::filesystem::path& file);

}  // namespace quillmar
