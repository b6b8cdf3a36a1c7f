#include "base/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace quillmar {

void occupyStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(number, F_GETFD) >= 0) continue;
        // The wrong way round: who writes an answer into nothing is to hear of it. All lower numbers are
        // taken, so it gets this one.
        const int occupied = ::open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        if (occupied < 0) return;
    }
}

}  // namespace quillmar
