#pragma once
#include <exception>
#include <map>
#include <string>
#include <string_view>

namespace quillmar {

using LogMetadata = std::map<std::string, std::string>;

/// The three log calls. They may come from any thread, never block and never fail: the text is scrubbed of
/// anything personal, goes to the system log at once, and on to the log file in the background. `message` is
/// a fixed sentence, `category` one of the short lower-case tags ("lifecycle", "settings", "cache",
/// "wallpaper", "display", ...).
void logInfo(std::string_view message, std::string_view category, const LogMetadata& metadata = {});
void logWarning(std::string_view message, std::string_view category,
                const std::exception_ptr& error = nullptr, const LogMetadata& metadata = {});
/// An error is also queued as a report to the maker.
void logError(std::string_view message, std::string_view category, const std::exception_ptr& error = nullptr,
              const LogMetadata& metadata = {});

}  // namespace quillmar
