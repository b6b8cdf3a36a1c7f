#include "commandline/Output.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace quillmar {
namespace {

/// The system's reason where it failed.
std::error_code write(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return {errno, std::generic_category()};
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

}  // namespace

int printReply(const ControlReply& reply, GeneralLanguage language) {
    const std::error_code failure = write(STDOUT_FILENO, reply.output);
    write(STDERR_FILENO, reply.errors);
    if (!failure) return reply.status;
    write(STDERR_FILENO,
          "quillmar: " +
              localized("The output could not be written: %@."_key, language, {failure.message()}) + "\n");
    return 1;
}

}  // namespace quillmar
