// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/pty_line.h"

#include <QByteArray>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace sim {

namespace {

QString errorText(const char *what)
{
    return QString::fromLatin1("cannot make a pseudo-terminal: %1: %2")
        .arg(QString::fromLatin1(what), QString::fromLocal8Bit(std::strerror(errno)));
}

void check(bool good, const char *what)
{
    if (!good)
        throw LineError(errorText(what),
                        QString::fromLatin1("mount /dev/pts, or name a serial port with --port"));
}

// Turns off echo, line editing and the translation of any byte.
bool setRaw(int terminal)
{
    termios settings;
    if (tcgetattr(terminal, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

} // namespace

PtyLine::PtyLine()
{
    try {
        open();
    } catch (const LineError &) {
        closeAll();
        throw;
    }
    notifier = std::make_unique<QSocketNotifier>(controller, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [this] { readAll(); });
    closingNotifier = std::make_unique<QSocketNotifier>(closings, QSocketNotifier::Read);
    connect(closingNotifier.get(), &QSocketNotifier::activated, this, [this] { letOthersIn(); });
}

PtyLine::~PtyLine()
{
    notifier.reset();
    closingNotifier.reset();
    closeAll();
}

void PtyLine::open()
{
    controller = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    check(controller >= 0, "open");
    check(grantpt(controller) == 0, "grant");
    check(unlockpt(controller) == 0, "unlock");
    std::array<char, 128> name;
    check(ptsname_r(controller, name.data(), name.size()) == 0, "name");
    slaveName = QString::fromLocal8Bit(name.data());
    slave = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    check(slave >= 0, "open its other side");
    check(setRaw(slave), "set raw mode");
    check(fcntl(controller, F_SETFL, O_RDWR | O_NONBLOCK) == 0, "set non-blocking mode");
    closings = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    check(closings >= 0 && inotify_add_watch(closings, name.data(), IN_CLOSE) >= 0, "watch it");
}

void PtyLine::closeAll()
{
    if (closings >= 0)
        close(closings);
    if (slave >= 0)
        close(slave);
    if (controller >= 0)
        close(controller);
}

void PtyLine::readAll()
{
    std::array<char, 512> buffer;
    const ssize_t size = read(controller, buffer.data(), buffer.size());
    if (size > 0) {
        Q_EMIT received(QByteArray(buffer.data(), static_cast<int>(size)));
    } else if (size < 0 && errno != EAGAIN && errno != EINTR) {
        notifier->setEnabled(false);
        Q_EMIT lost();
    }
}

// A master that opened the slave side for itself alone and was killed would lock out all others, since we
// hold it open.
void PtyLine::letOthersIn()
{
    std::array<char, 512> events;
    while (read(closings, events.data(), events.size()) > 0)
        ioctl(slave, TIOCNXCL);
}

void PtyLine::send(const Bytes &bytes)
{
    // This fails or falls short only when no master has read for thousands of bytes. They are lost then.
    const ssize_t written = write(controller, bytes.data(), bytes.size());
    static_cast<void>(written);
}

} // namespace sim
