#include "linux/glib/InotifyFileWatch.h"

#include <glib-unix.h>
#include <sys/inotify.h>

#include <cerrno>
#include <system_error>

#include "diagnostics/Log.h"

namespace quillmar {
namespace {

/// Not each write: a program that still has the file open is not done.
constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                 IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t eventsOfFolder = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_Q_OVERFLOW;

}  // namespace

void InotifyFileWatch::watch(std::filesystem::path file, std::function<void()> handler) {
    end();
    handler_.reset();
    if (!handler) return;
    file_ = std::move(file);
    handler_ = std::make_shared<std::function<void()>>(std::move(handler));
    begin();
}

void InotifyFileWatch::begin() {
    inotify_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!inotify_) {
        logWarning("A file cannot be watched.", "settings", nullptr,
                   {{"reason", std::error_code(errno, std::generic_category()).message()}});
        return;
    }
    const GUnixFDSourceFunc arrived = [](int, GIOCondition, gpointer data) -> gboolean {
        auto* self = static_cast<InotifyFileWatch*>(data);
        if (!self->readEvents()) return G_SOURCE_CONTINUE;
        self->somethingHappened();
        return G_SOURCE_REMOVE;
    };
    source_ = g_unix_fd_add(inotify_.get(), G_IO_IN, arrived, this);
    addWay();
}

void InotifyFileWatch::end() {
    if (source_) g_source_remove(std::exchange(source_, 0));
    inotify_.reset();
    names_.clear();
}

/// Watches anew, since other folders may lie on the way now. What happens in between is seen by whoever looks
/// at the file after this.
void InotifyFileWatch::somethingHappened() {
    source_ = 0;  // ended by the caller
    end();
    begin();
    const auto held = handler_;  // the handler may be replaced while it runs
    (*held)();
}

/// The file's own entry and those of the links that it is.
void InotifyFileWatch::addWay() {
    constexpr int mostLinks = 40;
    std::filesystem::path entry = file_;
    for (int links = 0; links < mostLinks; ++links) {
        add(entry);
        std::error_code isNoLink;
        const auto target = std::filesystem::read_symlink(entry, isNoLink);
        if (isNoLink) return;
        entry = entry.parent_path() / target;
    }
}

/// Where the folder is not there, its coming is what matters.
void InotifyFileWatch::add(std::filesystem::path entry) {
    while (entry.has_relative_path()) {
        const std::filesystem::path folder = entry.has_parent_path() ? entry.parent_path() : ".";
        const int watch = ::inotify_add_watch(inotify_.get(), folder.c_str(), events);
        if (watch >= 0) {
            names_[watch].insert(entry.filename().string());
            return;
        }
        if (errno != ENOENT && errno != ENOTDIR) return;  // no right to look: saves still look themselves
        entry = folder;
    }
}

bool InotifyFileWatch::readEvents() {
    alignas(inotify_event) char buffer[4096];
    bool matters = false;
    for (;;) {
        const ssize_t length = ::read(inotify_.get(), buffer, sizeof buffer);
        if (length <= 0) return matters;
        for (ssize_t at = 0; at < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            const bool isNamed = event->len > 0 && names_[event->wd].contains(event->name);
            matters = matters || isNamed || (event->mask & eventsOfFolder) != 0;
        }
    }
}

}  // namespace quillmar
