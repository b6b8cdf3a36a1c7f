#include "render/Sandbox.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <thread>

#include "base/Bytes.h"
#include "fakes/TemporaryFolder.h"

namespace quillmar {
namespace {

using sandbox::Files;

/// What became of an attempt in a child: 0, the errno of its failure, or 1000 and the signal that ended it.
int outcomeOf(const std::function<int()>& attempt, std::optional<Files> lock) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (lock) {
            sandbox::setBounds();
            sandbox::lockIn(*lock);
        }
        ::_exit(attempt() < 0 ? errno : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

struct Attempt {
    const char* name;
    std::function<int()> work;
    int locked;  ///< the outcome, of which the one without a lock is 0
    Files files = Files::none;
};

TEST(SandboxTest, everythingButComputingIsRefused) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "written";
    const int written = ::open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    const auto reads = [](const char* path) { return [path] { return ::open(path, O_RDONLY); }; };
    const auto writes = [](const std::filesystem::path& path) {
        return [path] { return ::open(path.c_str(), O_CREAT | O_WRONLY, 0600); };
    };
    const Attempt attempts[] = {
        {"read a file", reads("/etc/passwd"), EPERM},
        {"read a font's settings without need", reads("/etc/fonts/fonts.conf"), EPERM},
        {"read a font's settings", reads("/etc/fonts/fonts.conf"), 0, Files::fonts},
        {"read another file beside fonts", reads("/etc/passwd"), EACCES, Files::fonts},
        {"make a file", writes(folder.path() / "new"), EPERM},
        {"make a file beside fonts", writes(folder.path() / "newer"), EPERM, Files::fonts},
        {"write to an open file", [&] { return static_cast<int>(::write(written, "x", 1)); }, 1000 + SIGXFSZ},
        {"lengthen an open file", [&] { return ::ftruncate(written, 10); }, EPERM},
        {"remove a file", [&] { return ::unlink(file.c_str()) | ::symlink("there", file.c_str()); }, EPERM},
        {"reach the network", [] { return ::socket(AF_INET, SOCK_STREAM, 0); }, EPERM},
        {"reach a service", [] { return ::socket(AF_UNIX, SOCK_STREAM, 0); }, EPERM},
        {"start a process",
         [] {
             const pid_t child = ::fork();
             if (child == 0) ::_exit(0);
             return child;
         },
         EPERM},
        {"become a program",
         [] {
             char* const none[] = {nullptr};
             return ::execve("/bin/true", none, none);
         },
         EPERM},
        {"end another process", [] { return ::kill(::getppid(), 0); }, EPERM},
        {"be looked into", [] { return static_cast<int>(::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr)); },
         EPERM},
        {"open ever more",
         [] {
             for (int i = 0; i < 100; ++i)
                 if (::dup(STDERR_FILENO) < 0) return -1;
             return 0;
         },
         EMFILE},
#if !__has_feature(address_sanitizer)
        {"take all memory",
         [] {
             void* much =
                 ::mmap(nullptr, std::size_t{3} << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
             return much == MAP_FAILED ? -1 : 0;
         },
         ENOMEM},
#endif
        {"compute on two threads",
         [] {
             std::thread([] { Bytes(1 << 20, 7); }).join();
             return 0;
         },
         0},
    };
    for (const Attempt& attempt : attempts) {
        SCOPED_TRACE(attempt.name);
        EXPECT_EQ(outcomeOf(attempt.work, std::nullopt), 0);
        EXPECT_EQ(outcomeOf(attempt.work, attempt.files), attempt.locked);
    }
    ::close(written);
}

TEST(SandboxTest, theProcessEndsWithTheOneThatStartedIt) {
    std::array<int, 2> life{};
    ASSERT_EQ(::pipe2(life.data(), O_CLOEXEC), 0);
    const pid_t parent = ::fork();
    if (parent == 0) {
        std::array<int, 2> isBound{};
        if (::pipe(isBound.data()) != 0 || ::fork() != 0) {
            char byte = 0;
            ::_exit(::read(isBound[0], &byte, 1) == 1 ? 0 : 1);
        }
        sandbox::setBounds();
        if (::write(isBound[1], "x", 1) == 1) ::pause();
        ::_exit(1);
    }
    ::close(life[1]);
    int status = 0;
    ::waitpid(parent, &status, 0);
    ASSERT_EQ(status, 0);
    char byte = 0;
    EXPECT_EQ(::read(life[0], &byte, 1), 0) << "the last who held the other end is gone";
    ::close(life[0]);
}

}  // namespace
}  // namespace quillmar
