// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A pseudo-terminal: the port under test opens its name, the test holds the controller's end.

#ifndef TESTS_HOST_SUPPORT_PSEUDO_LINE_H
#define TESTS_HOST_SUPPORT_PSEUDO_LINE_H

#include <QByteArray>
#include <QString>

class PseudoLine
{
public:
    PseudoLine();
    ~PseudoLine();

    PseudoLine(const PseudoLine &) = delete;
    PseudoLine &operator=(const PseudoLine &) = delete;

    QString name() const { return portName; }

    // The test's own descriptor of the port's end, for a look at what was set.
    int portEnd() const { return slave; }

    void write(const QByteArray &bytes) const;

    // What the port sent, as soon as there are that many bytes; fewer after two seconds.
    QByteArray read(int count) const;

    // What the port has sent by now, waited for; nothing after two seconds.
    QByteArray readSome() const;

    // Takes away what the port sent, until it is quiet.
    void readAll() const;

    // The adapter is unplugged.
    void hangUp();

private:
    int master = -1;
    int slave = -1;
    QString portName;
};

#endif
