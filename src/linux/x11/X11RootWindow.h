#pragma once
#include <cstdint>
#include <optional>
#include <vector>

#include "linux/x11/DesktopImageTable.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

/// The X server is the caller's alone while it lives.
class X11ServerGrab {
public:
    explicit X11ServerGrab(const X11Connection& connection);
    X11ServerGrab(const X11ServerGrab&) = delete;
    X11ServerGrab& operator=(const X11ServerGrab&) = delete;
    ~X11ServerGrab();

private:
    const X11Connection& connection_;
};

/// The pixmap that whoever painted the desktop last says it shows; nothing when nobody has.
std::optional<std::uint32_t> rootPixmap(const X11Server& server);

/// Which files that pixmap was painted from, as far as this program did it.
DesktopImageTable desktopImageTable(const X11Server& server);

struct RootGeometry {
    PixelRect bounds;
    std::uint8_t depth = 0;
    bool operator==(const RootGeometry&) const = default;
};

/// The root window as it is now; the connection's own numbers are those of its beginning.
RootGeometry rootGeometry(const X11Server& server);

/// Whether there is a pixmap of that name.
bool isPixmap(const X11Server& server, std::uint32_t pixmap);

/// A pixmap for the whole root window, with no particular content.
std::uint32_t newRootPixmap(const X11Server& server, const RootGeometry& root);

/// The desktop's pixmap when this program made it and it still fits the root window; nothing otherwise.
std::optional<std::uint32_t> ownRootPixmap(const X11Server& server, const RootGeometry& root);

/// Shows what was just drawn over a part of the desktop's own pixmap. Much cheaper than another pixmap for
/// the whole root window. The server must be grabbed. Throws `X11Failure`.
void showRepainted(const X11Connection& connection, std::uint32_t pixmap, const RootGeometry& root,
                   const DesktopImageTable::Entry& part);

/// Makes the pixmap, painted in `parts`, the desktop: completes it with what the desktop shows elsewhere, and
/// says so to other programs and in the table. The connection must be the caller's own, with the server
/// grabbed: the pixmap stays when it closes. Throws `X11Failure`; the desktop is then unchanged.
void showRootPixmap(const X11Connection& connection, std::uint32_t pixmap, const RootGeometry& root,
                    const std::vector<DesktopImageTable::Entry>& parts);

}  // namespace quillmar
