#include "linux/x11/X11DesktopPicture.h"

#include <stdexcept>

#include "base/Files.h"
#include "base/Hash.h"
#include "base/Text.h"
#include "linux/x11/X11Outputs.h"
#include "linux/x11/X11Picture.h"
#include "linux/x11/X11RootWindow.h"

namespace quillmar {

namespace {

using Case = DesktopPictureError::Case;

/// The monitors may be rearranged while a picture is handed over for them, but not all the time.
constexpr int maximumAttempts = 5;

PixelRect areaOf(const X11Connection& connection, std::uint32_t screen) {
    const auto area = outputArea(connection.server(), screen);
    connection.requireAlive();
    if (!area) throw X11Failure(Case::disconnected);
    return *area;
}

struct Layout {
    PixelRect area;
    RootGeometry root;
    bool operator==(const Layout&) const = default;
};

Layout layoutOf(const X11Connection& connection, std::uint32_t screen) {
    return {areaOf(connection, screen), rootGeometry(connection.server())};
}

/// Both grab the server only when it has the pixels; false, with nothing changed on the desktop, when the
/// layout is another one by then.
bool replaced(const X11Connection& connection, const X11Picture& picture, const Layout& layout,
              const std::filesystem::path& file, std::uint32_t screen) {
    const std::uint32_t pixmap = newRootPixmap(connection.server(), layout.root);
    picture.draw(pixmap, layout.area);
    const X11ServerGrab grab(connection);
    if (layoutOf(connection, screen) == layout) {
        showRootPixmap(connection, pixmap, layout.root, {{layout.area, file}});
        return true;
    }
    xcb_free_pixmap(connection.get(), pixmap);
    return false;
}

bool repainted(const X11Connection& connection, const X11Picture& picture, std::uint32_t own,
               const Layout& layout, const std::filesystem::path& file, std::uint32_t screen) {
    const X11ServerGrab grab(connection);
    if (layoutOf(connection, screen) != layout || ownRootPixmap(connection.server(), layout.root) != own) {
        return false;
    }
    picture.draw(own, layout.area);
    showRepainted(connection, own, layout.root, {layout.area, file});
    return true;
}

void paint(const X11Connection& connection, const PixelBuffer& pixels, const std::filesystem::path& file,
           std::uint32_t screen) {
    const X11Picture picture(connection, {pixels.size(), pixels.descriptor(), 0});
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        const Layout layout = layoutOf(connection, screen);
        const auto own = ownRootPixmap(connection.server(), layout.root);
        if (own ? repainted(connection, picture, *own, layout, file, screen)
                : replaced(connection, picture, layout, file, screen)) {
            return;
        }
    }
    throw X11Failure(Case::rearranged);
}

PresentDesktopImage presentImage(const X11Connection& connection, const PixelRect& area) {
    const X11Server& server = connection.server();
    const auto pixmap = rootPixmap(server);
    const DesktopImageTable table = desktopImageTable(server);
    const bool isNobodys = !pixmap || !isPixmap(server, *pixmap);
    connection.requireAlive();
    if (isNobodys) return {.isForgotten = true};
    if (table.pixmap != *pixmap) return {};
    PresentDesktopImage present{.file = table.fileAt(area)};
    present.isForgotten = !present.file;
    std::error_code ignored;
    if (present.file && !std::filesystem::exists(*present.file, ignored)) present.file.reset();
    return present;
}

/// Either a file that is known, or the pixels.
struct Capture {
    std::optional<std::filesystem::path> file;
    SharedPixels pixels;
};

Capture captured(const X11Connection& connection, const PixelRect& area) {
    if (auto file = presentImage(connection, area).file) return {std::move(file), nullptr};
    const auto pixmap = rootPixmap(connection.server());
    SharedPixels pixels = pixmap ? downloadedPicture(connection, *pixmap, area) : nullptr;
    connection.requireAlive();
    if (!pixels) {
        pixels = std::make_shared<PixelBuffer>(
            PixelSize{static_cast<int>(area.width), static_cast<int>(area.height)});
    }
    return {std::nullopt, std::move(pixels)};
}

/// Named by what it shows, so that the same picture is written once.
std::filesystem::path captureName(const PixelBuffer& pixels, const std::string& connector) {
    const std::span bytes = pixels.bytes();
    const std::uint64_t hash = fnv1a64({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return "captured-" + replacingNonAlphanumerics(connector, '-') + "-" +
           std::to_string(pixels.size().width) + "x" + hexadecimal(hash) + ".png";
}

}  // namespace

X11DesktopPicture::X11DesktopPicture(Executor& pool, const PictureEncoding& encoding,
                                     std::filesystem::path captureFolder, std::string display)
    : encoding_(encoding), captureFolder_(std::move(captureFolder)), operations_(pool, std::move(display)) {}

Task<void> X11DesktopPicture::setDesktopImage(DesktopImage image, Screen screen, DesktopImageOptions) {
    if (!image.pixels) throw std::logic_error("the root window is painted from pixels");
    co_await operations_.run(screen.connector, [image = std::move(image),
                                                number = screen.number](const X11Connection& connection) {
        paint(connection, *image.pixels, image.file, number);
    });
}

Task<PresentDesktopImage> X11DesktopPicture::desktopImage(Screen screen) {
    co_return co_await operations_.run(screen.connector,
                                       [number = screen.number](const X11Connection& connection) {
                                           return presentImage(connection, areaOf(connection, number));
                                       });
}

Task<std::optional<std::filesystem::path>> X11DesktopPicture::captureDesktopImage(Screen screen) {
    Capture capture =
        co_await operations_.run(screen.connector, [number = screen.number](const X11Connection& connection) {
            return captured(connection, areaOf(connection, number));
        });
    if (capture.file) co_return capture.file;
    co_return co_await operations_.executor().run(
        [pixels = capture.pixels, connector = screen.connector, folder = captureFolder_,
         encoding = &encoding_]() -> std::optional<std::filesystem::path> {
            const auto file = folder / captureName(*pixels, connector);
            if (std::filesystem::exists(file)) return file;
            createDirectories(folder, 0700);
            encoding->writePng(*pixels, file);
            return file;
        });
}

Task<DesktopImageOptions> X11DesktopPicture::desktopImageOptions(Screen) { co_return DesktopImageOptions(); }

}  // namespace quillmar
