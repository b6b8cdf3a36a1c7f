#include "linux/x11/DesktopImageTable.h"

#include <fmt/format.h>

#include <charconv>

#include "base/Url.h"

namespace quillmar {

namespace {

/// Takes a decimal or hexadecimal number off the front of `text`; nothing when there is none.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text, int base = 10) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// Reads "1920x1080+0+0 file:///...".
std::optional<DesktopImageTable::Entry> parseEntry(std::string_view line) {
    const auto width = takeNumber<int>(line);
    if (!width || !takePrefix(line, "x")) return std::nullopt;
    const auto height = takeNumber<int>(line);
    if (!height || !takePrefix(line, "+")) return std::nullopt;
    const auto x = takeNumber<int>(line);
    if (!x || !takePrefix(line, "+")) return std::nullopt;
    const auto y = takeNumber<int>(line);
    if (!y || !takePrefix(line, " ")) return std::nullopt;
    const auto url = Url::parse(line);
    const auto file = url ? url->filePath() : std::nullopt;
    if (!file) return std::nullopt;
    return DesktopImageTable::Entry{{*x, *y, *width, *height}, *file};
}

}  // namespace

DesktopImageTable DesktopImageTable::parse(std::string_view text) {
    DesktopImageTable table;
    if (!takePrefix(text, "pixmap 0x")) return table;
    const auto pixmap = takeNumber<std::uint32_t>(text, 16);
    if (!pixmap) return table;
    table.pixmap = *pixmap;
    while (takePrefix(text, "\n")) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (auto entry = parseEntry(line)) table.entries.push_back(std::move(*entry));
        text.remove_prefix(line.size());
    }
    return table;
}

std::string DesktopImageTable::text() const {
    std::string text = fmt::format("pixmap 0x{:x}", pixmap);
    for (const auto& [area, file] : entries) {
        text += fmt::format("\n{}x{}+{}+{} {}", area.width, area.height, area.x, area.y,
                            Url::fromFilePath(file).string());
    }
    return text;
}

std::optional<std::filesystem::path> DesktopImageTable::fileAt(const PixelRect& area) const {
    for (const Entry& entry : entries) {
        if (entry.area == area) return entry.file;
    }
    return std::nullopt;
}

DesktopImageTable DesktopImageTable::painted(std::uint32_t newPixmap, const PixelRect& bounds,
                                             const Entry& part) const {
    DesktopImageTable table{newPixmap, {}};
    for (const Entry& entry : entries) {
        const bool isWhole = entry.area.right() <= bounds.right() && entry.area.bottom() <= bounds.bottom();
        if (isWhole && !entry.area.intersects(part.area)) table.entries.push_back(entry);
    }
    table.entries.push_back(part);
    return table;
}

}  // namespace quillmar
