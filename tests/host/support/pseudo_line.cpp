// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "tests/host/support/pseudo_line.h"

#include <QtTest>

#include <algorithm>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

// Milliseconds.
constexpr int kPatience = 2000;

} // namespace

PseudoLine::PseudoLine()
{
    char buffer[128] = {};
    termios raw = {};
    cfmakeraw(&raw);
    if (openpty(&master, &slave, buffer, &raw, nullptr) != 0)
        qFatal("no pseudo-terminal");
    portName = QString::fromLocal8Bit(buffer);
}

PseudoLine::~PseudoLine()
{
    hangUp();
    close(slave);
}

void PseudoLine::write(const QByteArray &bytes) const
{
    QCOMPARE(int(::write(master, bytes.constData(), size_t(bytes.size()))), int(bytes.size()));
}

QByteArray PseudoLine::read(int count) const
{
    QByteArray bytes;
    pollfd readable = {master, POLLIN, 0};
    while (bytes.size() < count && poll(&readable, 1, kPatience) > 0) {
        char byte = 0;
        if (::read(master, &byte, 1) != 1)
            break;
        bytes += byte;
    }
    return bytes;
}

QByteArray PseudoLine::readSome() const
{
    char bytes[4096];
    pollfd readable = {master, POLLIN, 0};
    if (poll(&readable, 1, kPatience) <= 0)
        return QByteArray();
    return QByteArray(bytes, int(std::max<ssize_t>(0, ::read(master, bytes, sizeof bytes))));
}

void PseudoLine::readAll() const
{
    char bytes[4096];
    pollfd readable = {master, POLLIN, 0};
    while (poll(&readable, 1, 100) > 0 && ::read(master, bytes, sizeof bytes) > 0) {
    }
}

void PseudoLine::hangUp()
{
    if (master >= 0)
        close(master);
    master = -1;
}
