#include "linux/x11/X11Picture.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <system_error>

#include "base/Bytes.h"
#include "linux/x11/PixelFormat.h"

namespace quillmar {

namespace {

/// Pixels that are not shared travel in strips of about this size: little memory, and no request that is too
/// long.
constexpr std::size_t stripBytes = std::size_t{2} << 20;

const xcb_format_t* formatOfDepth(const xcb_setup_t* setup, std::uint8_t depth) {
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
         xcb_format_next(&formats)) {
        if (formats.data->depth == depth) return formats.data;
    }
    return nullptr;
}

const xcb_visualtype_t* rootVisual(const X11Server& server) {
    for (auto depths = xcb_screen_allowed_depths_iterator(server.screen); depths.rem > 0;
         xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == server.screen->root_visual) return visuals.data;
        }
    }
    return nullptr;
}

/// How the server wants pictures for its root window.
struct ServerPixels {
    explicit ServerPixels(const X11Server& server) : ServerPixels(server, xcb_get_setup(server.connection)) {}
    std::size_t rowBytes(std::int64_t width) const {
        const auto bits = static_cast<std::size_t>(width * format.bytesPerPixel() * 8);
        return (bits + pad - 1) / pad * pad / 8;
    }
    /// Whether rows without gaps, four bytes a pixel, are just what the server has.
    bool isPlain() const { return format.isPlain() && pad <= 32; }

    PixelFormat format;
    std::size_t pad;  ///< bits that a row is a multiple of

private:
    ServerPixels(const X11Server& server, const xcb_setup_t* setup)
        : format(layoutOf(server, setup)),
          pad(formatOfDepth(setup, server.screen->root_depth)->scanline_pad) {}
    static PixelFormat::Layout layoutOf(const X11Server& server, const xcb_setup_t* setup) {
        const xcb_format_t* format = formatOfDepth(setup, server.screen->root_depth);
        const xcb_visualtype_t* visual = rootVisual(server);
        if (!format || !visual || visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR) {
            throw X11Failure(DesktopPictureError::Case::refused, "no TrueColor");
        }
        return {format->bits_per_pixel / 8, setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST,
                visual->red_mask, visual->green_mask, visual->blue_mask};
    }
};

int stripRows(xcb_connection_t* connection, std::size_t rowBytes, std::int64_t height) {
    const std::size_t longest = std::size_t{xcb_get_maximum_request_length(connection)} * 4 - 64;
    return std::clamp(static_cast<int>(std::min(stripBytes, longest) / rowBytes), 1,
                      static_cast<int>(height));
}

void readAt(int descriptor, std::size_t offset, std::span<std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::pread(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) throw std::system_error(count < 0 ? errno : EIO, std::generic_category());
        offset += static_cast<std::size_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

bool hasSharing(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!extension || !extension->present) return false;
    const auto version =
        xcbAnswer(&xcb_shm_query_version_reply, connection, xcb_shm_query_version(connection));
    return version && (version->major_version > 1 || version->minor_version >= 2);
}

}  // namespace

X11Picture::X11Picture(const X11Connection& connection, const PixelSource& source)
    : connection_(connection), source_(source) {
    if (!share()) send();
}

X11Picture::~X11Picture() {
    if (segment_ != XCB_NONE) xcb_shm_detach(connection_.get(), segment_);
    if (pixmap_ != XCB_NONE) xcb_free_pixmap(connection_.get(), pixmap_);
}

bool X11Picture::share() {
    xcb_connection_t* connection = connection_.get();
    if (!connection_.isLocal() || !ServerPixels(connection_.server()).isPlain() || !hasSharing(connection)) {
        return false;
    }
    const int handedOver = ::fcntl(source_.descriptor, F_DUPFD_CLOEXEC, 0);
    if (handedOver < 0) return false;
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    // A server behind something that carries no files refuses what it did not get.
    const XcbReply<xcb_generic_error_t> error(
        xcb_request_check(connection, xcb_shm_attach_fd_checked(connection, segment, handedOver, 1)));
    connection_.requireAlive();
    if (!error) segment_ = segment;
    return !error;
}

void X11Picture::send() {
    xcb_connection_t* connection = connection_.get();
    const X11Server& server = connection_.server();
    const ServerPixels pixels(server);
    const auto width = static_cast<std::uint16_t>(source_.size.width);
    pixmap_ = xcb_generate_id(connection);
    xcb_create_pixmap(connection, server.screen->root_depth, pixmap_, server.root(), width,
                      static_cast<std::uint16_t>(source_.size.height));
    const X11Brush brush(server, pixmap_);
    const std::size_t plainBytes = std::size_t{width} * PixelBuffer::pixelBytes;
    const std::size_t rowBytes = pixels.rowBytes(width);
    const int batch = stripRows(connection, rowBytes, source_.size.height);
    Bytes plain(plainBytes);
    Bytes strip(rowBytes * static_cast<std::size_t>(batch));
    for (int y = 0; y < source_.size.height; y += batch) {
        const int count = std::min(batch, source_.size.height - y);
        for (int i = 0; i < count; ++i) {
            readAt(source_.descriptor, source_.offset + static_cast<std::size_t>(y + i) * plainBytes, plain);
            pixels.format.pack(plain, std::span(strip).subspan(static_cast<std::size_t>(i) * rowBytes));
        }
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, brush.get(), width,
                      static_cast<std::uint16_t>(count), 0, static_cast<std::int16_t>(y), 0,
                      server.screen->root_depth,
                      static_cast<std::uint32_t>(rowBytes * static_cast<std::size_t>(count)), strip.data());
    }
    if (!connection_.hasFailed()) return;
    connection_.requireAlive();
    throw X11Failure(DesktopPictureError::Case::noRoom);
}

void X11Picture::draw(xcb_drawable_t target, const PixelRect& area) const {
    xcb_connection_t* connection = connection_.get();
    const X11Brush brush(connection_.server(), target);
    const PixelRect drawn{area.x, area.y, std::min<std::int64_t>(area.width, source_.size.width),
                          std::min<std::int64_t>(area.height, source_.size.height)};
    const auto [x, y, width, height] = xcbRectangle(drawn);
    if (segment_ != XCB_NONE) {
        xcb_shm_put_image(connection, target, brush.get(), static_cast<std::uint16_t>(source_.size.width),
                          static_cast<std::uint16_t>(source_.size.height), 0, 0, width, height, x, y,
                          connection_.server().screen->root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment_,
                          source_.offset);
    } else {
        xcb_copy_area(connection, pixmap_, target, brush.get(), 0, 0, x, y, width, height);
    }
    const xcb_rectangle_t beyond[] = {
        xcbRectangle({drawn.right(), area.y, area.right() - drawn.right(), area.height}),
        xcbRectangle({area.x, drawn.bottom(), area.width, area.bottom() - drawn.bottom()})};
    if (drawn != area) xcb_poly_fill_rectangle(connection, target, brush.get(), 2, beyond);
}

SharedPixels downloadedPicture(const X11Connection& connection, std::uint32_t background,
                               const PixelRect& area) {
    const X11Server& server = connection.server();
    const auto width = static_cast<std::uint16_t>(area.width);
    const auto height = static_cast<std::uint16_t>(area.height);
    const xcb_pixmap_t copy = xcb_generate_id(connection.get());
    xcb_create_pixmap(connection.get(), server.screen->root_depth, copy, server.root(), width, height);
    const X11Brush brush(server, copy);
    // As a tile with the root window's origin: so it is right for a background of any size, and only this one
    // request can meet a pixmap that goes away.
    const std::uint32_t values[] = {XCB_FILL_STYLE_TILED, background, static_cast<std::uint32_t>(-area.x),
                                    static_cast<std::uint32_t>(-area.y)};
    xcb_change_gc(
        connection.get(), brush.get(),
        XCB_GC_FILL_STYLE | XCB_GC_TILE | XCB_GC_TILE_STIPPLE_ORIGIN_X | XCB_GC_TILE_STIPPLE_ORIGIN_Y,
        values);
    const xcb_rectangle_t whole{0, 0, width, height};
    xcb_poly_fill_rectangle(connection.get(), copy, brush.get(), 1, &whole);
    if (connection.hasFailed()) return nullptr;

    const ServerPixels format(server);
    const std::size_t rowBytes = format.rowBytes(area.width);
    const int batch = stripRows(connection.get(), rowBytes, area.height);
    const auto pixels =
        std::make_shared<PixelBuffer>(PixelSize{static_cast<int>(area.width), static_cast<int>(area.height)});
    for (int y = 0; y < area.height; y += batch) {
        const auto count = std::min<std::int64_t>(batch, area.height - y);
        const auto image = xcbAnswer(
            &xcb_get_image_reply, connection.get(),
            xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, copy, 0, static_cast<std::int16_t>(y),
                          width, static_cast<std::uint16_t>(count), ~0u));
        if (!image) return nullptr;
        const std::span rows(xcb_get_image_data(image.get()),
                             static_cast<std::size_t>(xcb_get_image_data_length(image.get())));
        for (int i = 0; i < count; ++i) {
            format.format.unpack(rows.subspan(static_cast<std::size_t>(i) * rowBytes, rowBytes),
                                 pixels->row(y + i));
        }
    }
    xcb_free_pixmap(connection.get(), copy);
    return pixels;
}

}  // namespace quillmar
