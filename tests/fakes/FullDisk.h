#pragma once
#include <sys/resource.h>

#include <csignal>

namespace quillmar {

/// Writing beyond the size fails, as on a full disk, until it ends.
class FullDisk {
public:
    explicit FullDisk(rlim_t size) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before_{};
};

}  // namespace quillmar
