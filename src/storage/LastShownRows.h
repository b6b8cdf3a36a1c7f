#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "base/FileDescriptor.h"
#include "base/PixelBuffer.h"

namespace quillmar {

/// The picture that a screen showed last as plain rows, so that it can be shown again before anything is
/// decoded: a file for each screen in a folder, the last one alone. Any thread but the main one: it waits for
/// the disk.
class LastShownRows {
public:
    /// Keeps the rows of `png`, which is written already, in place of the former ones of the screen with that
    /// key (as `screenKey` has it). The folder is made when needed. One
    /// writer at a time for a key. Throws `std::system_error`.
    static void write(const std::filesystem::path& folder, const std::string& key,
                      const std::filesystem::path& png, const PixelBuffer& pixels);
    /// The rows of that screen; nothing when there are none, or when they are not whole, not the user's own
    /// or not those of the PNG file as it is now.
    static std::optional<LastShownRows> open(const std::filesystem::path& folder, const std::string& key);

    /// The next start does not paint that screen. What cannot be removed stays.
    static void remove(const std::filesystem::path& folder, const std::string& key);

    const std::filesystem::path& png() const { return png_; }
    PixelSize size() const { return size_; }
    /// Of a file that has the rows from `firstRow` on, as a `PixelBuffer` has them; stays this one's.
    int descriptor() const { return file_.get(); }
    static constexpr std::uint32_t firstRow = 4096;
    /// Reads the rows from the disk, so that nobody who is handed the file has to wait for it: whether they
    /// are those that were written, as after a power cut they may not be.
    bool fetch() const;

private:
    LastShownRows(FileDescriptor file, PixelSize size, std::filesystem::path png, std::uint64_t checksum)
        : file_(std::move(file)), size_(size), png_(std::move(png)), checksum_(checksum) {}

    FileDescriptor file_;
    PixelSize size_;
    std::filesystem::path png_;
    std::uint64_t checksum_;  ///< of the rows
};

}  // namespace quillmar
