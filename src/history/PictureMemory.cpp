#include "history/PictureMemory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "base/Files.h"
#include "diagnostics/Log.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;

constexpr const char* historyFile = "history";
constexpr const char* trashFile = "trash";
/// More than a hundred thousand long paths.
constexpr std::size_t maximumBytes = 64 << 20;
/// Of the history until it is written anew, without what it has forgotten.
constexpr std::size_t maximumLines = 4000;

/// Empty where there is none; nothing where there is one that cannot be read.
std::optional<std::string> textOf(const fs::path& file) {
    std::error_code ignored;
    if (!fs::exists(file, ignored)) return "";
    try {
        return readFile(file, maximumBytes);
    } catch (const std::exception&) {
        logWarning("The pictures that were shown before could not be read.", "wallpaper",
                   std::current_exception());
        return std::nullopt;
    }
}

void keeping(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception&) {
        logWarning("The picture that is shown could not be remembered.", "wallpaper",
                   std::current_exception());
    }
}

/// Whether the next line would become a part of the last one: editors and full disks leave no line feed
/// behind.
bool endsWithinLine(const FileDescriptor& file) {
    const off_t size = ::lseek(file.get(), 0, SEEK_END);
    char last = '\n';
    return size > 0 && ::pread(file.get(), &last, 1, size - 1) == 1 && last != '\n';
}

/// In one go, so that a process that is killed leaves whole lines.
void appendLine(const fs::path& file, std::string line) {
    createDirectories(file.parent_path(), 0700);
    const FileDescriptor descriptor(
        ::open(file.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600));
    if (!descriptor) throw std::system_error(errno, std::generic_category());
    if (endsWithinLine(descriptor)) line.insert(0, 1, '\n');
    writeWhole(descriptor, {reinterpret_cast<const std::uint8_t*>(line.data()), line.size()});
}

struct Files {
    PictureHistory history;
    BannedPictures banned;
};

}  // namespace

Task<void> PictureMemory::load() {
    Files read = co_await files_.run([folder = folder_] {
        const auto text = textOf(folder / historyFile);
        // The trash is the user's word, which is not written over; the history begins anew.
        Files files{PictureHistory(text.value_or("")),
                    BannedPictures(textOf(folder / trashFile).value_or(""))};
        files.history.forgetFiles([&](const Url& file) { return files.banned.contains(file); });
        if (std::string kept = files.history.text(); kept != text) {
            keeping([&] { writeFileAtomically(folder / historyFile, kept, 0600, Durability::reproducible); });
        }
        return files;
    });
    history_ = std::move(read.history);
    banned_ = std::move(read.banned);
    isLoaded_ = true;
    for (const auto& change : std::exchange(waiting_, {})) change();
}

void PictureMemory::shows(const std::string& displayID, std::optional<ShownPicture> picture) {
    if (picture) picture->date = clock_.now();
    if (!isLoaded_) waiting_.emplace_back([this, displayID, picture] { shows(displayID, picture); });
    const auto banned = bannedNow(displayID);
    if (!picture) return history_.showNothing(displayID);
    if (history_.show(displayID, *std::move(picture)) && isLoaded_) keep(displayID);
    if (banned && *banned != *history_.current(displayID)) history_.forget(displayID, *banned);
}

void PictureMemory::returned(const std::string& displayID, const ShownPicture& picture) {
    const auto banned = bannedNow(displayID);
    history_.returnTo(displayID, picture);
    if (banned) history_.forget(displayID, *banned);
}

/// The picture that the display still shows and has to be forgotten with that.
std::optional<ShownPicture> PictureMemory::bannedNow(const std::string& displayID) const {
    const ShownPicture* now = history_.current(displayID);
    if (!now || !now->fileURL || !banned_.contains(*now->fileURL)) return std::nullopt;
    return *now;
}

void PictureMemory::ban(const Url& fileURL) {
    if (!isLoaded_) waiting_.emplace_back([this, fileURL] { ban(fileURL); });
    const bool isNew = banned_.add(fileURL);
    if (isNew && isLoaded_) {
        files_.submit([file = folder_ / trashFile, line = fileURL.string() + "\n", failure = banFailure_] {
            *failure = nullptr;
            try {
                appendLine(file, line);
            } catch (const std::system_error& error) {
                *failure = std::make_exception_ptr(FileError(file, error));
            }
        });
    }
    history_.forgetFiles([this](const Url& file) { return banned_.contains(file); });
}

Task<void> PictureMemory::bansAreKept() const {
    co_await files_.run([failure = banFailure_] {
        if (*failure) std::rethrow_exception(*failure);
    });
}

void PictureMemory::keep(const std::string& displayID) {
    if (++written_ < maximumLines) {
        files_.submit([file = folder_ / historyFile,
                       line = PictureHistory::lineOf(displayID, *history_.current(displayID))] {
            keeping([&] { appendLine(file, line); });
        });
        return;
    }
    written_ = 0;
    files_.submit([file = folder_ / historyFile, text = history_.text()] {
        keeping([&] { writeFileAtomically(file, text, 0600, Durability::reproducible); });
    });
}

}  // namespace quillmar
