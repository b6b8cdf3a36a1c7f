#pragma once
#include <string>

#include "async/Executor.h"
#include "linux/dbus/SessionBus.h"
#include "platform/DesktopPicture.h"
#include "platform/DesktopPictureError.h"

namespace quillmar {

/// How long a desktop may take for one answer.
inline constexpr int desktopAnswerMilliseconds = 5000;

/// Calls a method of the desktop that a person knows as `who`, for the screen of that connector; the bus
/// starts what it knows how to start. Throws `BusRefusal` for the caller to look at, `DesktopPictureError`
/// when there is no answer, and `CancellationError`.
Task<std::shared_ptr<GVariant>> callDesktop(Bus bus, BusCall call, std::string who, std::string connector);

/// What becomes of a refusal that the caller has no use for.
DesktopPictureError refusal(const BusRefusal& refusal, std::string who, std::string connector);

/// The file, when it is one that is there. On a thread of the pool: the user's files may lie far away.
Task<std::optional<std::filesystem::path>> existingFile(Executor& pool, std::filesystem::path file);

/// Throws `DesktopPictureError` when there is no such file or it may not be read: a desktop that is told of a
/// file by name would only show nothing. On a thread of the pool.
Task<void> requireReadable(Executor& pool, std::filesystem::path file, std::string who,
                           std::string connector);

}  // namespace quillmar
