// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "raw_terminal.h"

#include "hex.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <cstddef>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

RawTerminal::RawTerminal(const QString &name)
    : terminal(open(name.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    termios settings;
    if (terminal < 0 || tcgetattr(terminal, &settings) != 0)
        return;
    cfmakeraw(&settings);
    tcsetattr(terminal, TCSANOW, &settings);
}

RawTerminal::~RawTerminal()
{
    if (isOpen())
        close(terminal);
}

QString RawTerminal::ask(const QString &hexText, int answerSize)
{
    const QByteArray request = bytes(hexText.toLatin1().constData());
    if (write(terminal, request.constData(), size_t(request.size())) != request.size())
        return "not sent";
    return read(answerSize, 5000);
}

bool RawTerminal::isSilent()
{
    return read(1, 100).isEmpty();
}

bool RawTerminal::setExclusive()
{
    return ioctl(terminal, TIOCEXCL) == 0;
}

bool RawTerminal::isExclusive() const
{
    int exclusive = 0;
    return ioctl(terminal, TIOCGEXCL, &exclusive) == 0 && exclusive != 0;
}

QString RawTerminal::read(int size, int milliseconds)
{
    QByteArray received;
    QElapsedTimer timer;
    timer.start();
    while (received.size() < size) {
        pollfd ready = {terminal, POLLIN, 0};
        if (poll(&ready, 1, int(qMax<qint64>(0, milliseconds - timer.elapsed()))) <= 0)
            break;
        QByteArray piece(size - int(received.size()), '\0');
        const ssize_t count = ::read(terminal, piece.data(), size_t(piece.size()));
        if (count <= 0)
            break;
        received += piece.left(int(count));
    }
    return hex(received);
}
