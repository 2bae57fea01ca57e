// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What Debian 12's qemu-arm lacks of the panel's kernel. Loaded before every program that runs in it; not
// part of any program, and of no use on a panel.
//
//   process descriptors     waitid() is asked for them to learn whether clone() makes them; it says yes, and
//                           Qt starts no process. Says no.
//   TCGETS2, TCSETS2,       are unknown: perl, a program of the build machine, makes them there, on the same
//   TIOCGEXCL, TIOCGRS485,  descriptor.
//   TIOCSRS485
//   RLIMIT_AS               is ignored: the address space is filled up instead, but for some megabytes. The
//                           limit's value is of no use, as it comes from counting the emulator's memory, too.

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <linux/serial.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

// Programs that this one starts run on the build machine.
__attribute__((constructor)) void leaveTheEnvironment()
{
    unsetenv("LD_PRELOAD");
}

template <typename Function> Function *next(const char *name)
{
    Function *function = nullptr;
    void *address = dlsym(RTLD_NEXT, name);
    memcpy(&function, &address, sizeof function);
    return function;
}

const long kProcessDescriptor = 3; // P_PIDFD

const char kPerl[] = "/usr/bin/perl";
const char kMakeIoctl[] = "my $data = pack('H*', $ARGV[1]);"
                          "ioctl(STDIN, $ARGV[0], $data) or exit $! + 0;"
                          "print $data;";

struct Digits
{
    char text[2 * sizeof(termios2) + 1];
};

Digits inHex(const void *data, size_t size)
{
    Digits digits = {};
    for (size_t i = 0; i < size; ++i)
        snprintf(digits.text + 2 * i, 3, "%02x", static_cast<const unsigned char *>(data)[i]);
    return digits;
}

[[noreturn]] void becomePerl(int descriptor, unsigned long request, const char *data, int output)
{
    char number[16];
    snprintf(number, sizeof number, "%lu", request);
    if (dup2(descriptor, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0)
        execl(kPerl, kPerl, "-e", kMakeIoctl, number, data, static_cast<char *>(nullptr));
    _exit(ENOSYS);
}

int exitCodeOf(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
}

// The numbers of requests and errors, and the data, are the same on the build machine.
int makeOnBuildMachine(int descriptor, unsigned long request, void *data, size_t size)
{
    int pipeEnds[2];
    if (pipe2(pipeEnds, O_CLOEXEC) != 0)
        return -1;
    const Digits digits = inHex(data, size);
    const pid_t process = fork();
    if (process == 0)
        becomePerl(descriptor, request, digits.text, pipeEnds[1]);
    close(pipeEnds[1]);
    const int error = process > 0 ? exitCodeOf(process) : EAGAIN;
    const bool done = error == 0 && read(pipeEnds[0], data, size) == ssize_t(size);
    close(pipeEnds[0]);
    if (!done)
        errno = error;
    return done ? 0 : -1;
}

int controlDevice(int descriptor, unsigned long request, void *argument)
{
    switch (request) {
    case TCGETS2:
    case TCSETS2:
        return makeOnBuildMachine(descriptor, request, argument, sizeof(termios2));
    case TIOCGRS485:
    case TIOCSRS485:
        return makeOnBuildMachine(descriptor, request, argument, sizeof(serial_rs485));
    case TIOCGEXCL:
        return makeOnBuildMachine(descriptor, request, argument, sizeof(int));
    default:
        return next<int(int, unsigned long, ...)>("ioctl")(descriptor, request, argument);
    }
}

const size_t kSpare = 64 * 1024 * 1024; // bytes
const size_t kLargest = 1024 * 1024 * 1024;
const size_t kSmallest = 1024 * 1024;

struct Piece
{
    void *start;
    size_t size;
};

// The address space has at most as many of the smallest.
Piece g_filling[4096];
int g_pieces = 0;

void *take(size_t size)
{
    return mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
}

void fillAddressSpace()
{
    void *spare = take(kSpare);
    for (size_t size = kLargest; size >= kSmallest; size /= 2)
        for (void *start = take(size); start != MAP_FAILED; start = take(size))
            g_filling[g_pieces++] = {start, size};
    munmap(spare, kSpare);
}

void clearAddressSpace()
{
    while (g_pieces > 0) {
        --g_pieces;
        munmap(g_filling[g_pieces].start, g_filling[g_pieces].size);
    }
}

} // namespace

EXPORTED long syscall(long number, ...)
{
    va_list arguments;
    va_start(arguments, number);
    long argument[6];
    for (long &value : argument)
        value = va_arg(arguments, long);
    va_end(arguments);
    if (number == SYS_waitid && argument[0] == kProcessDescriptor) {
        errno = EINVAL;
        return -1;
    }
    if (number == SYS_ioctl)
        return controlDevice(int(argument[0]), static_cast<unsigned long>(argument[1]),
                             reinterpret_cast<void *>(argument[2]));
    return next<long(long, ...)>("syscall")(number, argument[0], argument[1], argument[2], argument[3],
                                            argument[4], argument[5]);
}

EXPORTED int ioctl(int descriptor, unsigned long request, ...)
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return controlDevice(descriptor, request, argument);
}

EXPORTED int setrlimit(__rlimit_resource_t resource, const rlimit *limit)
{
    if (resource != RLIMIT_AS)
        return next<int(__rlimit_resource_t, const rlimit *)>("setrlimit")(resource, limit);
    rlimit real;
    getrlimit(resource, &real);
    if (limit->rlim_cur == real.rlim_cur)
        clearAddressSpace();
    else if (g_pieces == 0)
        fillAddressSpace();
    return 0;
}
