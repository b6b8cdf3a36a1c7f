#include "linux/render/RenderProcess.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <vector>

extern "C" {  // its declarations forget to say so
#include <sys/pidfd.h>
}

#include "linux/glib/Readable.h"

namespace quillmar {
namespace {

void succeed(int error, const char* what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

/// Of the environment only what says where fonts are, and what sanitizers listen to: the rest, secrets among
/// it, is no business of a process that reads foreign files.
std::vector<char*> passedEnvironment() {
    constexpr std::array names{
        "HOME=",         "XDG_DATA_HOME=", "XDG_CONFIG_HOME=", "XDG_CACHE_HOME=", "FONTCONFIG_PATH=",
        "ASAN_OPTIONS=", "UBSAN_OPTIONS=", "LSAN_OPTIONS="};
    std::vector<char*> passed;
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view text(*variable);
        if (std::ranges::any_of(names, [&](std::string_view name) { return text.starts_with(name); }))
            passed.push_back(*variable);
    }
    passed.push_back(nullptr);
    return passed;
}

struct FileActions {
    FileActions() { succeed(::posix_spawn_file_actions_init(&actions), "posix_spawn"); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions); }
    posix_spawn_file_actions_t actions;
};

/// What the agent blocks and catches is not the child's; only that it writes into nobody's pipe.
struct Attributes {
    Attributes() {
        succeed(::posix_spawnattr_init(&attributes), "posix_spawn");
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &all);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { ::posix_spawnattr_destroy(&attributes); }
    posix_spawnattr_t attributes;
};

pid_t spawn(const std::filesystem::path& program, int channel) {
    FileActions files;
    constexpr const char* nowhere = "/dev/null";
    succeed(::posix_spawn_file_actions_adddup2(&files.actions, channel, render::channelDescriptor),
            "posix_spawn");
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        succeed(::posix_spawn_file_actions_addopen(&files.actions, output, nowhere, O_WRONLY, 0),
                "posix_spawn");
    succeed(::posix_spawn_file_actions_addclosefrom_np(&files.actions, STDERR_FILENO + 1), "posix_spawn");
    const Attributes attributes;
    std::string name = program.string();
    std::array<char*, 2> arguments{name.data(), nullptr};
    std::vector<char*> environment = passedEnvironment();
    pid_t child = -1;
    succeed(::posix_spawn(&child, name.c_str(), &files.actions, &attributes.attributes, arguments.data(),
                          environment.data()),
            name.c_str());
    return child;
}

/// Takes the ended process off the system's list when it is gone, which may take a moment.
void reapLater(FileDescriptor process) {
    GSource* source = g_unix_fd_source_new(process.get(), G_IO_IN);
    const GUnixFDSourceFunc isGone = [](int descriptor, GIOCondition, gpointer) -> gboolean {
        ::waitid(P_PIDFD, static_cast<id_t>(descriptor), nullptr, WEXITED | WNOHANG);
        return G_SOURCE_REMOVE;
    };
    const GDestroyNotify close = [](gpointer descriptor) { ::close(GPOINTER_TO_INT(descriptor)); };
    const int descriptor = process.release();
    g_source_set_callback(source, G_SOURCE_FUNC(isGone), GINT_TO_POINTER(descriptor), close);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

}  // namespace

RenderProcess::RenderProcess(const std::filesystem::path& program) {
    std::array<int, 2> ends{-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        succeed(errno, "socketpair");
    channel_ = FileDescriptor(ends[0]);
    const FileDescriptor theirs(ends[1]);
    // Its own end waits; this one is read only when there is something.
    if (::fcntl(channel_.get(), F_SETFL, O_NONBLOCK) != 0) succeed(errno, "fcntl");
    const pid_t child = spawn(program, theirs.get());
    process_ = FileDescriptor(::pidfd_open(child, 0));
    if (process_) return;
    const int error = errno;
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    succeed(error, "pidfd_open");
}

RenderProcess::~RenderProcess() {
    ::pidfd_send_signal(process_.get(), SIGKILL, nullptr, 0);
    reapLater(std::move(process_));
}

Task<std::optional<render::Answer>> RenderProcess::answer() {
    co_await readable(channel_.get());
    std::vector<FileDescriptor> unwanted;
    co_return render::receive<render::Answer>(channel_.get(), unwanted);
}

}  // namespace quillmar
