#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/PixelRect.h"

namespace quillmar {

/// Which file each part of one root pixmap was painted from. It is kept with the window server, so that it is
/// known to the next process too, and says for which pixmap it holds: another program may paint the desktop
/// at any time.
struct DesktopImageTable {
    struct Entry {
        PixelRect area;
        std::filesystem::path file;
        bool operator==(const Entry&) const = default;
    };
    std::uint32_t pixmap = 0;
    std::vector<Entry> entries;

    /// Reads `text()` back; the lines that make no sense are left out.
    static DesktopImageTable parse(std::string_view text);
    std::string text() const;
    /// The file that exactly this area was painted from.
    std::optional<std::filesystem::path> fileAt(const PixelRect& area) const;
    /// The table after a part was painted on `newPixmap` with `bounds`, a copy of the pixmap so far.
    DesktopImageTable painted(std::uint32_t newPixmap, const PixelRect& bounds, const Entry& part) const;

    bool operator==(const DesktopImageTable&) const = default;
};

}  // namespace quillmar
