#pragma once
#include <xcb/shm.h>

#include "base/PixelBuffer.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

/// Pixels as the X server gets them: blue, green, red, unused, rows from the top without gaps, in a file that
/// can be mapped. The server looks at them until the picture that was made of them is gone.
struct PixelSource {
    PixelSize size;
    int descriptor = -1;
    std::uint32_t offset = 0;  ///< of the first row in the file; divisible by 4
};

/// A picture that the X server has at hand, to be drawn in one request. The server shares the memory where
/// its pixels are of the same kind; else they are repacked and sent into a pixmap.
class X11Picture {
public:
    /// Throws `X11Failure` when the server has no room or cannot show such pixels.
    X11Picture(const X11Connection& connection, const PixelSource& source);
    X11Picture(const X11Picture&) = delete;
    X11Picture& operator=(const X11Picture&) = delete;
    ~X11Picture();

    /// Draws it over `area` of a drawable of the root window's depth: at the area's top left, clipped to it,
    /// and black where it does not reach.
    void draw(xcb_drawable_t target, const PixelRect& area) const;

private:
    bool share();
    void send();

    const X11Connection& connection_;
    PixelSource source_;
    xcb_shm_seg_t segment_ = XCB_NONE;
    xcb_pixmap_t pixmap_ = XCB_NONE;
};

/// What a root window with that background pixmap shows in `area`. Null when the pixmap is gone or is none.
SharedPixels downloadedPicture(const X11Connection& connection, std::uint32_t background,
                               const PixelRect& area);

}  // namespace quillmar
