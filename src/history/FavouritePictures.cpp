#include "history/FavouritePictures.h"

#include <fmt/format.h>

#include <system_error>

#include "base/FileError.h"
#include "base/Files.h"
#include "base/Hash.h"
#include "base/Text.h"
#include "history/PictureMetadata.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumBytes = 1 << 30;
/// Of a name, which file systems take up to 255 of.
constexpr std::size_t maximumNameBytes = 100;

std::string read(const fs::path& file) {
    try {
        return readFile(file, maximumBytes);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
}

void write(const fs::path& file, std::string_view bytes) {
    try {
        createDirectories(file.parent_path());
        writeFileAtomically(file, bytes);
    } catch (const std::system_error& error) {
        throw FileError(file, error);
    }
}

/// What a person would call the file: without what file systems, shells and eyes stumble over.
std::string plainName(std::string_view text) {
    std::string name;
    for (const char byte : text) {
        const bool isPlain = static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7f &&
                             std::string_view("/\\:*?\"<>|").find(byte) == std::string_view::npos;
        name += isPlain ? byte : ' ';
    }
    if (name.size() > maximumNameBytes) {
        std::size_t end = maximumNameBytes;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xc0) == 0x80) --end;
        name.resize(end);
    }
    name.erase(0, name.find_first_not_of(". "));
    return std::string(trimmed(name));
}

bool isKnown(const PictureCredit& credit) { return credit != PictureCredit{}; }

/// Every picture has one of its own, whatever others are called.
fs::path nameOf(const ShownPicture& picture, const fs::path& source, std::string_view extension) {
    const std::string title = plainName(picture.credit.title.value_or(""));
    const std::string name = title.empty() ? plainName(source.stem().string()) : title;
    const std::string mark = fmt::format("{:08x}", fnv1a64(picture.fileURL->string()) & 0xffffffff);
    const std::string suffix = extension.empty() ? source.extension().string() : "." + std::string(extension);
    return name + (name.empty() ? "" : " ") + mark + suffix;
}

/// What the copy itself cannot hold.
fs::path besides(const fs::path& copy) { return copy.string() + ".xmp"; }

}  // namespace

FavouritePicture keepFavourite(const ShownPicture& picture, const fs::path& folder) {
    const fs::path source = picture.fileURL.value().filePath().value();
    const std::string bytes = read(source);
    const fs::path target = folder / nameOf(picture, source, extensionOf(bytes));
    std::error_code unknown;  // what cannot be looked at is said when it is written
    if (fs::exists(target, unknown)) return {target, false};
    if (isKnown(picture.credit)) {
        const std::string packet = xmpPacket(picture.credit);
        if (const auto whole = withXmp(bytes, packet)) {
            write(target, *whole);
            return {target, true};
        }
        write(besides(target), packet);
    }
    try {
        write(target, bytes);
    } catch (const FileError&) {
        fs::remove(besides(target), unknown);
        throw;
    }
    return {target, true};
}

}  // namespace quillmar
