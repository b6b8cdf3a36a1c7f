#pragma once
#include <map>
#include <memory>
#include <set>
#include <string>

#include "base/FileDescriptor.h"
#include "platform/FileWatching.h"

namespace quillmar {

/// A file watched through the folders on the way to it, so that it makes no difference how it is written: in
/// place, by rename, or with its folder made anew. Nothing wakes up while nothing happens there.
class InotifyFileWatch final : public FileWatching {
public:
    InotifyFileWatch() = default;
    InotifyFileWatch(const InotifyFileWatch&) = delete;
    InotifyFileWatch& operator=(const InotifyFileWatch&) = delete;
    ~InotifyFileWatch() override { end(); }
    void watch(std::filesystem::path file, std::function<void()> handler) override;

private:
    void begin();
    void end();
    void addWay();
    void add(std::filesystem::path entry);
    /// Whether something that was read matters.
    bool readEvents();
    void somethingHappened();

    std::filesystem::path file_;
    std::shared_ptr<std::function<void()>> handler_;
    FileDescriptor inotify_;
    unsigned int source_ = 0;
    std::map<int, std::set<std::string>> names_;  ///< what matters in each folder, by its watch
};

}  // namespace quillmar
