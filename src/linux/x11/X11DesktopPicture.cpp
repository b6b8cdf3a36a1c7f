#include "linux/x11/X11DesktopPicture.h"

#include <X11/Xlib.h>
#include <isa-l/crc64.h>

#include <algorithm>
#include <stdexcept>

#include "base/Files.h"
#include "base/Hash.h"
#include "base/Text.h"
#include "diagnostics/Log.h"
#include "linux/picture/PngEncoder.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Outputs.h"
#include "linux/x11/X11Pixels.h"
#include "linux/x11/X11RootWindow.h"

namespace quillmar {

namespace {

/// The monitors may be rearranged while a picture is decoded for them, but not all the time.
constexpr int maximumAttempts = 5;

PixelRect areaOf(Display* display, const Screen& screen) {
    const auto area = outputArea(display, screen.number);
    if (!area) throw std::runtime_error("The display is no longer connected.");
    return *area;
}

Bytes pngOf(std::span<const std::uint8_t> rgb, int width, int height) {
    MemoryOutput output;
    PngEncoder encoder(width, height, output);
    const std::size_t rowBytes = static_cast<std::size_t>(width) * 3;
    for (; !rgb.empty(); rgb = rgb.subspan(rowBytes)) encoder.writeRow(rgb.first(rowBytes));
    encoder.finish();
    return std::move(output.bytes);
}

std::optional<std::filesystem::path> knownFile(Display* display, const PixelRect& area) {
    const auto pixmap = rootPixmap(display);
    const DesktopImageTable table = desktopImageTable(display);
    auto file = pixmap == table.pixmap ? table.fileAt(area) : std::nullopt;
    std::error_code ignored;
    if (file && !std::filesystem::exists(*file, ignored)) file.reset();
    return file;
}

struct Layout {
    PixelRect area;
    RootGeometry root;
    bool operator==(const Layout&) const = default;
};

/// Each decodes the picture, which takes a while, and grabs the server only after it; false, with nothing
/// changed on the desktop, when the layout is another one by then.
bool replaced(Display* display, const Layout& layout, const std::filesystem::path& file,
              const Screen& screen) {
    const std::uint32_t pixmap = newRootPixmap(display, layout.root);
    uploadPicture(display, file, pixmap, layout.area);
    const X11ServerGrab grab(display);
    if (Layout{areaOf(display, screen), rootGeometry(display)} == layout) {
        showRootPixmap(display, pixmap, layout.root, layout.area, file);
        return true;
    }
    XFreePixmap(display, pixmap);
    return false;
}

bool repainted(Display* display, std::uint32_t own, const Layout& layout, const std::filesystem::path& file,
               const Screen& screen) {
    const PixelRect whole{0, 0, layout.area.width, layout.area.height};
    const Pixmap picture =
        XCreatePixmap(display, DefaultRootWindow(display), static_cast<unsigned>(whole.width),
                      static_cast<unsigned>(whole.height), layout.root.depth);
    uploadPicture(display, file, static_cast<std::uint32_t>(picture), whole);
    const X11ServerGrab grab(display);
    const bool isCurrent = Layout{areaOf(display, screen), rootGeometry(display)} == layout &&
                           ownRootPixmap(display, layout.root) == own;
    if (isCurrent) {
        repaintRootPixmap(display, own, static_cast<std::uint32_t>(picture), layout.root, layout.area, file);
    }
    XFreePixmap(display, picture);
    return isCurrent;
}

}  // namespace

X11DesktopPicture::X11DesktopPicture(std::filesystem::path captureFolder, std::string display)
    : captureFolder_(std::move(captureFolder)), display_(std::move(display)) {}

void X11DesktopPicture::setDesktopImage(const std::filesystem::path& file, const Screen& screen,
                                        const DesktopImageOptions&) {
    const X11Connection connection(display_);
    Display* display = connection.get();
    X11ErrorTrap trap(display);
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        const Layout layout{areaOf(display, screen), rootGeometry(display)};
        const auto own = ownRootPixmap(display, layout.root);
        if (own ? repainted(display, *own, layout, file, screen) : replaced(display, layout, file, screen))
            return;
    }
    throw std::runtime_error("The displays are being rearranged.");
}

std::optional<std::filesystem::path> X11DesktopPicture::desktopImage(const Screen& screen) {
    try {
        const X11Connection connection(display_);
        const auto area = outputArea(connection.get(), screen.number);
        return area ? knownFile(connection.get(), *area) : std::nullopt;
    } catch (const std::exception&) {
        logWarning("The present desktop picture could not be found out.", "wallpaper",
                   std::current_exception());
        return std::nullopt;
    }
}

std::optional<std::filesystem::path> X11DesktopPicture::captureDesktopImage(const Screen& screen) {
    try {
        const X11Connection connection(display_);
        const auto area = outputArea(connection.get(), screen.number);
        if (!area) return std::nullopt;
        if (auto file = knownFile(connection.get(), *area)) return file;
        return captured(connection.get(), *area, screen);
    } catch (const std::exception&) {
        logWarning("The present desktop picture could not be captured.", "wallpaper",
                   std::current_exception());
        return std::nullopt;
    }
}

std::filesystem::path X11DesktopPicture::captured(Display* display, const PixelRect& area,
                                                  const Screen& screen) const {
    const auto pixmap = rootPixmap(display);
    Bytes rgb = pixmap ? downloadedPicture(display, *pixmap, area) : Bytes();
    if (rgb.empty())
        rgb.resize(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) * 3);
    const auto size = static_cast<std::uint64_t>(area.width) << 32 | static_cast<std::uint64_t>(area.height);
    const std::uint64_t hash = crc64_ecma_refl(size, rgb.data(), rgb.size());
    const auto file = captureFolder_ / ("captured-" + replacingNonAlphanumerics(screen.connector, '-') + "-" +
                                        hexadecimal(hash) + ".png");
    if (std::filesystem::exists(file)) return file;
    createDirectories(captureFolder_, 0700);
    const Bytes png = pngOf(rgb, area.width, area.height);
    writeFileAtomically(file, {reinterpret_cast<const char*>(png.data()), png.size()}, 0600);
    return file;
}

}  // namespace quillmar
