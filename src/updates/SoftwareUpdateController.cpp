#include "updates/SoftwareUpdateController.h"

#include <algorithm>

#include "base/Enum.h"
#include "base/FileError.h"
#include "base/Files.h"
#include "diagnostics/Log.h"
#include "updates/FileSignature.h"
#include "updates/SoftwareUpdateError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using Error = SoftwareUpdateError;

constexpr std::chrono::hours interval{24};
/// A start has better things to do, and the network may still come up.
constexpr std::chrono::minutes firstDelay{1};
constexpr std::chrono::hours retryDelay{1};
constexpr const char* notification = "com.quillmar.update";
constexpr std::size_t longestFileName = 128;

/// What the file is called on the server, where that is a plain name.
std::string fileNameOf(const AppcastItem& item) {
    const std::string name = fs::path(item.file.path()).filename().string();
    const bool isPlain = !name.empty() && name.size() <= longestFileName && name[0] != '.' &&
                         std::ranges::all_of(name, [](char c) {
                             return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                                    (c >= 'A' && c <= 'Z') || std::string_view("._+~-").contains(c);
                         });
    return isPlain && !isDownloadFileName(name, downloadPrefix) ? name : "Quillmar-" + item.versionText;
}

}  // namespace

SoftwareUpdateController::SoftwareUpdateController(SoftwareUpdateConfiguration configuration,
                                                   Services services)
    : configuration_(std::move(configuration)),
      services_(std::move(services)),
      timer_(services_.loop),
      tasks_(services_.loop) {
    if (configuration_.problem) {
        logInfo("Software updates are disabled for this build.", "updates",
                {{"reason", std::string(enumName(*configuration_.problem))}});
        return;
    }
    fetcher_ = std::make_unique<UpdateFetcher>(services_.session, services_.files, configuration_,
                                               services_.userAgent);
}

Task<void> SoftwareUpdateController::start() {
    if (!isEnabled()) co_return;
    memory_ = co_await services_.files.run([file = services_.memory, version = services_.currentVersion] {
        return loadUpdateMemory(file, version);
    });
    co_await throwIfCancelled();
    resume();
}

void SoftwareUpdateController::resume() {
    isRunning_ = isEnabled();
    reschedule();
}

void SoftwareUpdateController::stop() {
    isRunning_ = false;
    timer_.cancel();
    tasks_.cancelAll();
}

void SoftwareUpdateController::reschedule() {
    timer_.cancel();
    if (!isRunning_ || !memory_.preferences.automaticallyChecksForUpdates) return;
    timer_.set(untilNextCheck(), [this] { tasks_.spawn(checkByItself()); });
}

Duration SoftwareUpdateController::untilNextCheck() const {
    const WallTime now = services_.clock.now();
    // A check in the future is one of a clock that has been set back since.
    if (!memory_.lastCheck || *memory_.lastCheck > now) return firstDelay;
    return std::max<Duration>(*memory_.lastCheck + interval - now, firstDelay);
}

Task<void> SoftwareUpdateController::checkByItself() {
    try {
        const auto found = co_await check(memory_.preferences.automaticallyDownloadsUpdates);
        if (found && memory_.toldVersion != found->version) co_await tell(*found);
        reschedule();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        logWarning("The check for updates failed.", "updates", std::current_exception());
        if (isRunning_ && memory_.preferences.automaticallyChecksForUpdates)
            timer_.set(retryDelay, [this] { tasks_.spawn(checkByItself()); });
    }
}

Task<std::optional<AvailableUpdate>> SoftwareUpdateController::checkForUpdates() {
    auto found = co_await check(true);
    reschedule();
    co_return found;
}

Task<std::optional<AvailableUpdate>> SoftwareUpdateController::check(bool downloads) {
    const auto hold = co_await lock_.acquire();
    try {
        auto found = co_await find(downloads);
        UpdateMemory memory = memory_;
        memory.lastCheck = services_.clock.now();
        memory.available = found;
        co_await remember(std::move(memory));
        lastFailure_.reset();
        co_return found;
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception& error) {
        lastFailure_ = errorText(error, language());
        throw;
    }
}

Task<std::optional<AvailableUpdate>> SoftwareUpdateController::find(bool downloads) {
    const std::vector<AppcastItem> items = co_await fetcher_->items();
    const auto current = SemanticVersion::parse(services_.currentVersion);
    const AppcastItem* item = current ? newest(items, *current) : nullptr;
    if (!item) co_return std::nullopt;
    // What could not be verified later is not worth a word.
    if (item->signature.size() != signatureBytes) throw Error(Error::Case::unsignedFile, item->versionText);
    AvailableUpdate update{.version = item->versionText, .page = item->page, .file = {}};
    if (downloads) {
        update.file = co_await fetch(*item);
    } else if (memory_.available && memory_.available->version == update.version) {
        update.file = memory_.available->file;
    }
    co_return update;
}

Task<std::string> SoftwareUpdateController::fetch(AppcastItem item) {
    const fs::path file = services_.downloads / fileNameOf(item);
    const Bytes key = base64Decoded(*configuration_.publicKey).value_or(Bytes());
    const auto isSigned = [signature = item.signature, key](const fs::path& path) {
        return isFileSigned(path, signature, key);
    };
    const bool isThere = co_await services_.files.run([file, isSigned] {
        try {
            createDirectories(file.parent_path(), 0700);
            return fs::is_regular_file(file) && isSigned(file);
        } catch (const std::system_error& error) {
            throw FileError(file, error);
        }
    });
    if (isThere) co_return file.string();
    const auto download = co_await fetcher_->download(item, file.parent_path());
    const auto former = memory_.available ? memory_.available->file : std::nullopt;
    const bool isSound = co_await services_.files.run([download, file, former, isSigned] {
        try {
            if (!isSigned(download->path())) return false;
            fs::rename(download->path(), file);
            std::error_code ignored;  // one download too many does no harm
            if (former && *former != file) fs::remove(*former, ignored);
            return true;
        } catch (const std::system_error& error) {
            throw FileError(file, error);
        }
    });
    if (!isSound) throw Error(Error::Case::wrongSignature, item.versionText);
    co_return file.string();
}

Task<void> SoftwareUpdateController::keep(UpdateMemory memory) {
    if (memory == memory_) co_return;
    co_await services_.files.run([file = services_.memory, memory] { saveUpdateMemory(file, memory); });
    memory_ = std::move(memory);
}

/// What was found counts also where it cannot be kept for the next start.
Task<void> SoftwareUpdateController::remember(UpdateMemory memory) {
    try {
        co_await keep(memory);
    } catch (const FileError&) {
        logWarning("What is known of updates could not be kept.", "updates", std::current_exception());
        memory_ = std::move(memory);
    }
}

Task<void> SoftwareUpdateController::setPreferences(SoftwareUpdatePreferences preferences) {
    const auto hold = co_await lock_.acquire();
    UpdateMemory memory = memory_;
    memory.preferences = preferences;
    co_await keep(std::move(memory));
    reschedule();
}

Task<void> SoftwareUpdateController::tell(AvailableUpdate update) {
    std::string text =
        update.file ? localized("Its file was verified and lies at %@."_key, language(), {*update.file})
                    : localized("\"quillmar update\" downloads it."_key, language());
    if (update.page) text += " " + update.page->string();
    try {
        co_await services_.notificationCenter.removeDelivered(notification);
        co_await services_.notificationCenter.add(
            {notification, localized("Quillmar %@ is available"_key, language(), {update.version}),
             std::move(text)});
        UpdateMemory memory = memory_;
        memory.toldVersion = update.version;
        co_await remember(std::move(memory));
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {  // "quillmar status" says it too
        logWarning("The user could not be told of a newer version.", "updates", std::current_exception());
    }
}

}  // namespace quillmar
