#include "linux/desktop/DesktopCall.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "base/FileDescriptor.h"

namespace quillmar {

using Case = DesktopPictureError::Case;

Task<std::shared_ptr<GVariant>> callDesktop(Bus bus, BusCall call, std::string who, std::string connector) {
    call.timeoutMilliseconds = desktopAnswerMilliseconds;
    call.startsProgram = true;
    try {
        co_return co_await callOnBus(bus, call);
    } catch (const BusRefusal& error) {
        if (!error.isAbsence()) throw;
    } catch (const std::runtime_error&) {
        // Silence, or a bus that is gone: told below.
    }
    throw DesktopPictureError(Case::noAnswer, std::move(who), std::move(connector));
}

DesktopPictureError refusal(const BusRefusal& refusal, std::string who, std::string connector) {
    return {Case::refused, std::move(who), std::move(connector), refusal.what()};
}

Task<std::optional<std::filesystem::path>> existingFile(Executor& pool, std::filesystem::path file) {
    if (!file.is_absolute()) co_return std::nullopt;
    const bool isThere = co_await pool.run([file] {
        std::error_code ignored;
        return std::filesystem::is_regular_file(file, ignored);
    });
    if (!isThere) co_return std::nullopt;
    co_return file;
}

Task<void> requireReadable(Executor& pool, std::filesystem::path file, std::string who,
                           std::string connector) {
    const int error = co_await pool.run([file] {
        const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        struct stat status{};
        if (!descriptor || ::fstat(descriptor.get(), &status) != 0) return errno;
        return S_ISREG(status.st_mode) ? 0 : EINVAL;
    });
    if (error == 0) co_return;
    throw DesktopPictureError(Case::refused, std::move(who), std::move(connector),
                              file.string() + ": " + std::generic_category().message(error));
}

}  // namespace quillmar
