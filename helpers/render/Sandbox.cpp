#include "render/Sandbox.h"

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>
#include <memory>
#include <system_error>

#include "render/FileAccess.h"

namespace quillmar::sandbox {
namespace {

/// Enough for pictures of as many pixels as are decoded, in the formats that are held whole.
constexpr rlim_t maximumMemory = rlim_t{2} << 30;
/// Of all processors together. Whoever waits gives up sooner; this is for when nobody does.
constexpr rlim_t maximumSeconds = 120;
constexpr rlim_t maximumDescriptors = 64;

void succeed(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
}
void bound(__rlimit_resource resource, rlim_t limit) {
    const rlimit both{limit, limit};
    succeed(::setrlimit(resource, &both), "setrlimit");
}

struct FilterRelease {
    void operator()(void* filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<void, FilterRelease>;

void add(const Filter& filter, std::uint32_t action, int call,
         std::initializer_list<scmp_arg_cmp> when = {}) {
    const int error =
        seccomp_rule_add_array(filter.get(), action, call, static_cast<unsigned>(when.size()), when.begin());
    if (error != 0) throw std::system_error(-error, std::generic_category(), "seccomp");
}
void allow(const Filter& filter, std::initializer_list<int> calls) {
    for (const int call : calls) add(filter, SCMP_ACT_ALLOW, call);
}
scmp_arg_cmp equals(unsigned argument, scmp_datum_t value) { return {argument, SCMP_CMP_EQ, value, 0}; }
scmp_arg_cmp hasBits(unsigned argument, scmp_datum_t mask, scmp_datum_t bits) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, bits};
}

void allowComputing(const Filter& filter) {
    allow(filter, {SCMP_SYS(brk),
                   SCMP_SYS(mmap),
                   SCMP_SYS(munmap),
                   SCMP_SYS(mremap),
                   SCMP_SYS(mprotect),
                   SCMP_SYS(madvise),
                   SCMP_SYS(futex),
                   SCMP_SYS(membarrier),
                   SCMP_SYS(rseq),
                   SCMP_SYS(set_robust_list),
                   SCMP_SYS(sched_yield),
                   SCMP_SYS(sched_getaffinity),
                   SCMP_SYS(rt_sigaction),
                   SCMP_SYS(rt_sigprocmask),
                   SCMP_SYS(rt_sigreturn),
                   SCMP_SYS(sigaltstack),
                   SCMP_SYS(restart_syscall),
                   SCMP_SYS(clock_gettime),
                   SCMP_SYS(clock_getres),
                   SCMP_SYS(clock_nanosleep),
                   SCMP_SYS(gettimeofday),
                   SCMP_SYS(getpid),
                   SCMP_SYS(gettid),
                   SCMP_SYS(getrandom),
                   SCMP_SYS(sysinfo),
                   SCMP_SYS(uname),
                   SCMP_SYS(getrusage),
                   SCMP_SYS(exit),
                   SCMP_SYS(exit_group)});
    // More threads, but no process. The newer call hides its flags in memory; without it libraries take this.
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(clone), {hasBits(0, CLONE_THREAD, CLONE_THREAD)});
    add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3));
    // To abort itself, to name a thread, to ask for its limits.
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(tgkill), {equals(0, static_cast<scmp_datum_t>(::getpid()))});
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(prctl), {equals(0, PR_SET_NAME)});
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), {equals(0, 0), equals(2, 0)});
}

void allowDescriptors(const Filter& filter) {
    allow(filter, {SCMP_SYS(read), SCMP_SYS(readv), SCMP_SYS(pread64), SCMP_SYS(lseek), SCMP_SYS(fstat),
                   SCMP_SYS(write), SCMP_SYS(recvmsg), SCMP_SYS(sendmsg), SCMP_SYS(dup), SCMP_SYS(close)});
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(newfstatat), {equals(3, AT_EMPTY_PATH)});
    for (const int command : {F_GETFD, F_SETFD, F_GETFL, F_DUPFD_CLOEXEC})
        add(filter, SCMP_ACT_ALLOW, SCMP_SYS(fcntl), {equals(1, static_cast<scmp_datum_t>(command))});
}

void allowReadingFiles(const Filter& filter) {
    constexpr scmp_datum_t writing = O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(openat), {hasBits(2, writing, O_RDONLY)});
    add(filter, SCMP_ACT_ALLOW, SCMP_SYS(open), {hasBits(1, writing, O_RDONLY)});
    for (const int flags : {0, AT_SYMLINK_NOFOLLOW})
        add(filter, SCMP_ACT_ALLOW, SCMP_SYS(newfstatat), {equals(3, static_cast<scmp_datum_t>(flags))});
    allow(filter, {SCMP_SYS(stat), SCMP_SYS(lstat), SCMP_SYS(statx), SCMP_SYS(access), SCMP_SYS(faccessat),
                   SCMP_SYS(faccessat2), SCMP_SYS(readlink), SCMP_SYS(readlinkat), SCMP_SYS(getdents64),
                   SCMP_SYS(fstatfs), SCMP_SYS(statfs), SCMP_SYS(getcwd)});
}

}  // namespace

void setBounds() {
    succeed(::prctl(PR_SET_PDEATHSIG, SIGKILL), "prctl");
    succeed(::prctl(PR_SET_DUMPABLE, 0), "prctl");
    succeed(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "prctl");
    bound(RLIMIT_CORE, 0);
    bound(RLIMIT_FSIZE, 0);
    bound(RLIMIT_NOFILE, maximumDescriptors);
    bound(RLIMIT_CPU, maximumSeconds);
#if !__has_feature(address_sanitizer)  // which reserves terabytes
    bound(RLIMIT_AS, maximumMemory);
#endif
}

void lockIn(Files files) {
    const bool mayRead =
        restrictFiles(files == Files::fonts ? fontFolders() : Folders{}) && files == Files::fonts;
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    if (!filter) throw std::system_error(ENOMEM, std::generic_category(), "seccomp");
    allowComputing(filter);
    allowDescriptors(filter);
    if (mayRead) allowReadingFiles(filter);
    if (const int error = seccomp_load(filter.get()); error != 0)
        throw std::system_error(-error, std::generic_category(), "seccomp");
}

}  // namespace quillmar::sandbox
