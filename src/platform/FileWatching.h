#pragma once
#include <filesystem>
#include <functional>

namespace quillmar {

/// Watches a file that other programs may write. Main thread.
class FileWatching {
public:
    virtual ~FileWatching() = default;
    /// Calls back, from the main loop, after something happened to the file, to what it is a link to, or in
    /// its place: once for each step of a program that writes, and at times for nothing. Files of other
    /// machines may change without it. One file at a time: replaces the former; an empty handler ends it.
    virtual void watch(std::filesystem::path file, std::function<void()> handler) = 0;
};

}  // namespace quillmar
