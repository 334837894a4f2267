#include "SystemCalls.h"

#include <QtCore/QVector>

#include <cstddef>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct NamedCall
{
    int number;
    const char* name;
};

#define NAMED_CALL(name) {SYS_##name, #name},

// Newer processor architectures lack the older calls.
constexpr NamedCall watchedCalls[] = {
    // clang-format off
    NAMED_CALL(openat) NAMED_CALL(close) NAMED_CALL(read) NAMED_CALL(pread64) NAMED_CALL(readv)
    NAMED_CALL(write) NAMED_CALL(pwrite64) NAMED_CALL(writev) NAMED_CALL(lseek) NAMED_CALL(fsync)
    NAMED_CALL(fdatasync) NAMED_CALL(ftruncate) NAMED_CALL(fallocate) NAMED_CALL(renameat2)
    NAMED_CALL(linkat) NAMED_CALL(unlinkat) NAMED_CALL(mkdirat) NAMED_CALL(fstat)
    NAMED_CALL(statx) NAMED_CALL(faccessat) NAMED_CALL(readlinkat) NAMED_CALL(getdents64)
    NAMED_CALL(fchmod) NAMED_CALL(fchmodat) NAMED_CALL(flock)
    NAMED_CALL(pipe2) NAMED_CALL(eventfd2) NAMED_CALL(clone) NAMED_CALL(execve) NAMED_CALL(dup3)
    NAMED_CALL(ppoll) NAMED_CALL(chdir) NAMED_CALL(kill)
#ifdef SYS_open
    NAMED_CALL(open) NAMED_CALL(rename) NAMED_CALL(link) NAMED_CALL(unlink) NAMED_CALL(mkdir)
    NAMED_CALL(stat) NAMED_CALL(lstat) NAMED_CALL(access) NAMED_CALL(readlink) NAMED_CALL(chmod)
    NAMED_CALL(pipe) NAMED_CALL(fork) NAMED_CALL(vfork) NAMED_CALL(dup2) NAMED_CALL(poll)
#endif
#ifdef SYS_renameat
    NAMED_CALL(renameat)
#endif
#ifdef SYS_newfstatat
    NAMED_CALL(newfstatat)
#endif
#ifdef SYS_mmap
    NAMED_CALL(mmap)
#endif
#ifdef SYS_clone3
    NAMED_CALL(clone3)
#endif
    // clang-format on
};

#undef NAMED_CALL

constexpr unsigned int offsetOfArgument(int argument)
{
    return unsigned(offsetof(seccomp_data, args)) + 8U * unsigned(argument);
}

// Reports the watched calls and allows all others.
QVector<sock_filter> filter()
{
    QVector<sock_filter> program;
    program.append(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, unsigned(offsetof(seccomp_data, nr))));
#ifdef SYS_mmap
    // Anonymous memory does not involve the file system.
    program.append(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 0, 4));
    program.append(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetOfArgument(3)));
    program.append(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, MAP_ANONYMOUS, 0, 1));
    program.append(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    program.append(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
#endif
    for (const NamedCall& call : watchedCalls) {
        program.append(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, unsigned(call.number), 0, 1));
        program.append(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    program.append(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    return program;
}

} // namespace

const char* SystemCalls::nameOf(int number)
{
    for (const NamedCall& call : watchedCalls) {
        if (call.number == number) {
            return call.name;
        }
    }
    return nullptr;
}

int SystemCalls::watch()
{
    QVector<sock_filter> instructions = filter();
    const sock_fprog program = {static_cast<unsigned short>(instructions.size()),
                                instructions.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return int(
        syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}
