#include "linux/x11/X11Pixels.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>

#include "linux/picture/PngReader.h"
#include "linux/x11/PixelFormat.h"
#include "linux/x11/X11Connection.h"

namespace quillmar {

namespace {

/// Pictures go to the server in strips of about this size: little memory, and no request that is too long.
constexpr std::size_t stripBytes = std::size_t{2} << 20;

struct ImageFree {
    void operator()(XImage* image) const { XDestroyImage(image); }
};
using Image = std::unique_ptr<XImage, ImageFree>;

PixelFormat formatOf(const XImage& image, const Visual& visual) {
    if (visual.c_class != TrueColor) {
        throw std::runtime_error("The X server's colours are of a kind that cannot be drawn.");
    }
    return PixelFormat(
        {image.bits_per_pixel / 8, image.byte_order == LSBFirst, static_cast<std::uint32_t>(visual.red_mask),
         static_cast<std::uint32_t>(visual.green_mask), static_cast<std::uint32_t>(visual.blue_mask)});
}

/// A few rows of pixels on their way to the server, in memory that it shares where it can. There are two
/// halves: the server takes the rows of one while the next are decoded into the other.
class Strip {
public:
    Strip(Display* display, int width, int rows)
        : display_(display),
          rows_(rows),
          visual_(DefaultVisual(display, DefaultScreen(display))),
          depth_(static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display)))) {
        if (!share(width, 2 * rows)) allocate(width, 2 * rows);
    }
    Strip(const Strip&) = delete;
    Strip& operator=(const Strip&) = delete;
    ~Strip() {
        if (!isShared_) return;
        XShmDetach(display_, &segment_);
        release();
    }

    PixelFormat format() const { return formatOf(*image_, *visual_); }
    std::span<std::uint8_t> row(int y) {
        const auto bytes = static_cast<std::size_t>(image_->bytes_per_line);
        return {reinterpret_cast<std::uint8_t*>(image_->data) + static_cast<std::size_t>(first_ + y) * bytes,
                bytes};
    }
    /// Sends the first `rows` rows; what `row` gives after it is free to be written.
    void put(Drawable target, GC context, int x, int y, int rows) {
        const auto width = static_cast<unsigned>(image_->width);
        const auto height = static_cast<unsigned>(rows);
        if (isShared_) {
            XSync(display_, False);  // done with the other half
            XShmPutImage(display_, target, context, image_.get(), 0, first_, x, y, width, height, False);
            XFlush(display_);
            first_ = rows_ - first_;
        } else {
            XPutImage(display_, target, context, image_.get(), 0, first_, x, y, width, height);
        }
    }

private:
    bool share(int width, int rows) {
        if (!XShmQueryExtension(display_)) return false;
        image_.reset(XShmCreateImage(display_, visual_, depth_, ZPixmap, nullptr, &segment_,
                                     static_cast<unsigned>(width), static_cast<unsigned>(rows)));
        if (!image_) return false;
        const auto bytes = static_cast<std::size_t>(image_->bytes_per_line) * static_cast<std::size_t>(rows);
        segment_.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (segment_.shmid < 0) return false;
        void* memory = shmat(segment_.shmid, nullptr, 0);
        segment_.shmaddr = memory == reinterpret_cast<void*>(-1) ? nullptr : static_cast<char*>(memory);
        segment_.readOnly = True;
        {
            X11ErrorTrap trap(display_);  // a server on another machine or in another container refuses
            if (segment_.shmaddr) XShmAttach(display_, &segment_);
            isShared_ = segment_.shmaddr && !trap.failed();
        }
        shmctl(segment_.shmid, IPC_RMID, nullptr);  // it goes when both have let go of it
        if (isShared_) {
            image_->data = segment_.shmaddr;
        } else {
            release();
        }
        return isShared_;
    }
    void release() {
        if (image_) image_->data = nullptr;
        if (segment_.shmaddr) shmdt(segment_.shmaddr);
        segment_.shmaddr = nullptr;
    }
    void allocate(int width, int rows) {
        image_.reset(XCreateImage(display_, visual_, depth_, ZPixmap, 0, nullptr,
                                  static_cast<unsigned>(width), static_cast<unsigned>(rows),
                                  BitmapPad(display_), 0));
        if (!image_) throw std::runtime_error("The X server's pixels are of a kind that cannot be drawn.");
        const auto bytes = static_cast<std::size_t>(image_->bytes_per_line) * static_cast<std::size_t>(rows);
        image_->data = static_cast<char*>(std::calloc(bytes, 1));  // XDestroyImage frees it
        if (!image_->data) throw std::bad_alloc();
    }

    Display* display_;
    int rows_;
    int first_ = 0;  ///< where the half begins that is being filled
    Visual* visual_;
    unsigned depth_;
    XShmSegmentInfo segment_{};
    bool isShared_ = false;
    Image image_;
};

/// Rows of a picture in the server's pixels, clipped to the width of where they go.
class RowSource {
public:
    RowSource(const std::filesystem::path& file, PixelFormat format, int width)
        : reader_(file, PngReader::PixelOrder::blueGreenRedUnused),
          format_(format),
          row_(static_cast<std::size_t>(reader_.width()) * 4),
          copied_(static_cast<std::size_t>(std::min(reader_.width(), width)) * 4) {}

    int height() const { return reader_.height(); }
    void readInto(std::span<std::uint8_t> packed) {
        if (format_.isPlain() && packed.size() >= row_.size()) {
            reader_.readRow(packed.first(row_.size()));
            return;
        }
        reader_.readRow(row_);
        format_.pack(std::span(row_).first(copied_), packed);
    }

private:
    PngReader reader_;
    PixelFormat format_;
    Bytes row_;
    std::size_t copied_;
};

int stripRows(int width, int height) {
    const std::size_t rows = stripBytes / (static_cast<std::size_t>(width) * 4);
    return std::clamp(static_cast<int>(rows), 1, height);
}

}  // namespace

void uploadPicture(Display* display, const std::filesystem::path& file, std::uint32_t pixmap,
                   const PixelRect& area) {
    X11ErrorTrap trap(display);
    const int batch = stripRows(area.width, area.height);
    Strip strip(display, area.width, batch);
    RowSource source(file, strip.format(), area.width);
    const X11Brush brush(display, pixmap);
    const int rows = std::min(source.height(), area.height);
    for (int y = 0; y < rows; y += batch) {
        const int count = std::min(batch, rows - y);
        for (int i = 0; i < count; ++i) source.readInto(strip.row(i));
        strip.put(pixmap, brush.get(), area.x, area.y + y, count);
    }
    XSetForeground(display, brush.get(), BlackPixel(display, DefaultScreen(display)));
    XFillRectangle(display, pixmap, brush.get(), area.x, area.y + rows, static_cast<unsigned>(area.width),
                   static_cast<unsigned>(area.height - rows));
    if (trap.failed()) throw std::runtime_error("The X server has no room for the picture.");
}

Bytes downloadedPicture(Display* display, std::uint32_t background, const PixelRect& area) {
    const auto width = static_cast<unsigned>(area.width);
    const auto height = static_cast<unsigned>(area.height);
    X11ErrorTrap trap(display);
    const Pixmap copy = XCreatePixmap(display, DefaultRootWindow(display), width, height,
                                      static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display))));
    const X11Brush brush(display, static_cast<std::uint32_t>(copy));
    // As a tile with the root window's origin: so it is right for a background of any size, and only this one
    // request can meet a pixmap that goes away.
    XSetTile(display, brush.get(), background);
    XSetTSOrigin(display, brush.get(), -area.x, -area.y);
    XSetFillStyle(display, brush.get(), FillTiled);
    XFillRectangle(display, copy, brush.get(), 0, 0, width, height);
    if (trap.failed()) return {};

    const std::size_t rowBytes = static_cast<std::size_t>(width) * 3;
    Bytes rgb(rowBytes * height);
    const int batch = stripRows(area.width, area.height);
    for (int y = 0; y < area.height; y += batch) {
        const int count = std::min(batch, area.height - y);
        const Image image(
            XGetImage(display, copy, 0, y, width, static_cast<unsigned>(count), AllPlanes, ZPixmap));
        if (!image) return {};
        const PixelFormat format = formatOf(*image, *DefaultVisual(display, DefaultScreen(display)));
        for (int i = 0; i < count; ++i) {
            const auto bytes = static_cast<std::size_t>(image->bytes_per_line);
            const auto* line =
                reinterpret_cast<const std::uint8_t*>(image->data) + static_cast<std::size_t>(i) * bytes;
            format.unpack({line, bytes},
                          std::span(rgb).subspan(static_cast<std::size_t>(y + i) * rowBytes, rowBytes));
        }
    }
    XFreePixmap(display, copy);
    return rgb;
}

}  // namespace quillmar
