#include "FaultyProcess.h"

#include "ChildProcess.h"
#include "SystemCalls.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QSet>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Far longer than any operation, including its timeouts.
constexpr int timeLimitInMs = 20000;

// Memory that both processes share.
struct Shared
{
    std::atomic<bool> isArmed; // while the function runs
    std::atomic<int> descriptorsLeft;
    std::atomic<int> transfers;
};

// In the child; used by read() and write().
Shared* sharedOfChild = nullptr;
int shortTransfer = -1;

size_t sizeOfTransfer(size_t size)
{
    if (sharedOfChild == nullptr || !sharedOfChild->isArmed) {
        return size;
    }
    return sharedOfChild->transfers++ == shortTransfer ? (size + 1) / 2 : size;
}

} // namespace

// These replace the functions of the C library: seccomp can make a call fail, but not transfer
// less.
extern "C" Q_DECL_EXPORT ssize_t read(int descriptor, void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, void*, size_t);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "read"));
    return next(descriptor, buffer, sizeOfTransfer(size));
}

extern "C" Q_DECL_EXPORT ssize_t write(int descriptor, const void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, const void*, size_t);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "write"));
    return next(descriptor, buffer, sizeOfTransfer(size));
}

namespace {

int openDescriptors()
{
    DIR* const directory = opendir("/proc/self/fd");
    if (!directory) {
        return -1;
    }
    int count = 0;
    while (readdir(directory)) {
        ++count;
    }
    closedir(directory);
    return count;
}

// A message that transfers one descriptor.
struct DescriptorMessage
{
    char byte = 0;
    iovec part = {&byte, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr header = {};

    DescriptorMessage()
    {
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control;
        header.msg_controllen = sizeof control;
    }

    Q_DISABLE_COPY(DescriptorMessage)
};

void sendDescriptor(int socket, int descriptor)
{
    DescriptorMessage message;
    cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(control), &descriptor, sizeof descriptor);
    sendmsg(socket, &message.header, 0);
}

// -1 if the other side sends none.
int receiveDescriptor(int socket)
{
    DescriptorMessage message;
    int descriptor = -1;
    if (recvmsg(socket, &message.header, MSG_CMSG_CLOEXEC) == 1) {
        const cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
        if (control) {
            std::memcpy(&descriptor, CMSG_DATA(control), sizeof descriptor);
        }
    }
    return descriptor;
}

[[noreturn]] void runInChild(const Fault& fault, const std::function<QByteArray()>& function,
                             int socket, Shared& shared)
{
    sharedOfChild = &shared;
    shortTransfer = fault.kind == Fault::Short ? fault.call : -1;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    const int listener = SystemCalls::watch();
    if (listener < 0) {
        _exit(1);
    }
    sendDescriptor(socket, listener);
    close(listener);

    const int before = openDescriptors();
    shared.isArmed = true;
    const QByteArray result = function();
    shared.isArmed = false;
    shared.descriptorsLeft = openDescriptors() - before;
    const bool isWritten =
        write(socket, result.constData(), size_t(result.size())) == result.size();
    ChildProcess::leave(isWritten ? 0 : 1);
}

// Decides about each watched call of the process.
class Supervisor
{
public:
    Supervisor(const Fault& fault, pid_t process, const Shared& shared, FaultyRun& run)
        : m_fault(fault), m_process(process), m_shared(shared), m_run(run)
    {
        seccomp_notif_sizes sizes = {};
        syscall(SYS_seccomp, SECCOMP_GET_NOTIF_SIZES, 0, &sizes);
        m_notification.resize(sizes.seccomp_notif);
        m_response.resize(sizes.seccomp_notif_resp);
    }

    // How many calls of close() were made to fail.
    int failedCloses() const { return m_failedCloses; }

    void respondToNext(int listener)
    {
        m_notification.fill('\0');
        m_response.fill('\0');
        auto* const notification = reinterpret_cast<seccomp_notif*>(m_notification.data());
        auto* const response = reinterpret_cast<seccomp_notif_resp*>(m_response.data());
        if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, notification) != 0) {
            return; // the process has terminated meanwhile
        }
        const int error = isForbidden(notification->data)
                              ? EPERM
                              : decide(pid_t(notification->pid), notification->data.nr);
        if (error != 0 && notification->data.nr == SYS_close) {
            replaceByNull(listener, notification->id, quint32(notification->data.args[0]));
        }
        if (m_isKilled) {
            return; // with a response, the call might continue before the signal arrives
        }
        response->id = notification->id;
        response->error = -error;
        response->flags = error == 0 ? SECCOMP_USER_NOTIF_FLAG_CONTINUE : 0;
        ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, response);
    }

private:
    // A failed close() has closed the file nevertheless. Here the descriptor stays in use, but its
    // file is replaced by /dev/null.
    void replaceByNull(int listener, quint64 notification, quint32 descriptor)
    {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        seccomp_notif_addfd replacement = {};
        replacement.id = notification;
        replacement.flags = SECCOMP_ADDFD_FLAG_SETFD;
        replacement.srcfd = quint32(nothing);
        replacement.newfd = descriptor;
        replacement.newfd_flags = O_CLOEXEC;
        ioctl(listener, SECCOMP_IOCTL_NOTIF_ADDFD, &replacement);
        close(nothing);
    }

    // Whether a call signals another process: its ID may be an error code, or uninitialized.
    bool isForbidden(const seccomp_data& call)
    {
        if (call.nr != SYS_kill || call.args[1] == 0) {
            return false;
        }
        const auto target = pid_t(call.args[0]);
        const bool isOwn = target > 1 && getpgid(target) == m_process;
        m_run.hasSignalledOthers = m_run.hasSignalledOthers || !isOwn;
        return !isOwn;
    }

    // Linux closes a file before close() can be interrupted, and does not report EINTR.
    bool isWatchedFor(const QByteArray& name) const
    {
        return m_fault.kind != Fault::None && m_fault.kind != Fault::Short &&
               !(m_fault.error == EINTR && name == "close");
    }

    // The error with which the call must fail; 0 for none.
    int decide(pid_t process, int number)
    {
        const bool isAtStart = process != m_process;
        if (!m_shared.isArmed || m_programs.contains(process)) {
            return 0;
        }
        const QByteArray name = SystemCalls::nameOf(number);
        QVector<QByteArray>& calls = isAtStart ? m_run.callsAtStart : m_run.calls;
        const bool isTheCall = isWatchedFor(name) && isAtStart == m_fault.isAtStart &&
                               (calls.size() == m_fault.call || (m_fault.kind == Fault::Lasting &&
                                                                 m_run.failedCalls.contains(name)));
        calls.append(name);
        if (isTheCall) {
            m_run.failedCalls.append(name);
            if (m_fault.kind == Fault::Kill) {
                m_isKilled = kill(process, SIGKILL) == 0;
                return 0;
            }
            if (name == "close" && !isAtStart) {
                ++m_failedCloses;
            }
            return m_fault.error;
        }
        if (name == "execve") {
            m_programs.insert(process);
        }
        return 0;
    }

    const Fault m_fault;
    const pid_t m_process;
    const Shared& m_shared;
    FaultyRun& m_run;
    QByteArray m_notification;
    QByteArray m_response;
    QSet<pid_t> m_programs; // processes after their exec
    int m_failedCloses = 0;
    bool m_isKilled = false;
};

// Runs until the process and all its children have terminated.
void supervise(Supervisor& supervisor, int listener, int socket, pid_t process, FaultyRun& run)
{
    const QDeadlineTimer deadline(timeLimitInMs);
    pollfd files[] = {{listener, POLLIN, 0}, {socket, POLLIN, 0}};
    while (files[0].fd >= 0 || files[1].fd >= 0) {
        if (poll(files, 2, int(deadline.remainingTime())) == 0) {
            run.isTimedOut = true;
            kill(-process, SIGKILL);
            return;
        }
        if ((files[0].revents & POLLIN) != 0) {
            supervisor.respondToNext(listener);
        } else if (files[0].revents != 0) {
            files[0].fd = -1;
        }
        if (files[1].revents != 0) {
            char buffer[4096];
            const ssize_t count = read(socket, buffer, sizeof buffer);
            if (count > 0) {
                run.result.append(buffer, int(count));
            } else {
                files[1].fd = -1;
            }
        }
    }
}

Shared& sharedMemory()
{
    static void* const memory =
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        qFatal("cannot share memory with a child process");
    }
    return *static_cast<Shared*>(memory);
}

} // namespace

bool FaultyProcess::isAvailable()
{
    static const bool available = run(Fault(), [] { return QByteArray(); }).exited;
    return available;
}

FaultyRun FaultyProcess::run(const Fault& fault, const std::function<QByteArray()>& function)
{
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) {
        qFatal("cannot create a socket for a child process");
    }
    Shared& shared = sharedMemory();
    shared.isArmed = false;
    shared.descriptorsLeft = 0;
    shared.transfers = 0;
    ChildProcess::letOtherThreadsSleep();
    fflush(nullptr);
    const pid_t process = fork();
    if (process < 0) {
        qFatal("cannot start a child process");
    }
    if (process == 0) {
        close(sockets[0]);
        runInChild(fault, function, sockets[1], shared);
    }
    close(sockets[1]);

    FaultyRun run;
    const int listener = receiveDescriptor(sockets[0]);
    if (listener >= 0) {
        Supervisor supervisor(fault, process, shared, run);
        supervise(supervisor, listener, sockets[0], process, run);
        run.descriptorsLeft = shared.descriptorsLeft - supervisor.failedCloses();
        run.transfers = shared.transfers;
        close(listener);
    }
    close(sockets[0]);

    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    run.exited = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return run;
}
