// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Questions to the user of a pseudo-terminal, which is stdin and stderr meanwhile.

#include "host/base/question.h"

#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

using namespace host;

namespace {

class UserTerminal
{
public:
    UserTerminal()
    {
        if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
            qFatal("there is no pseudo-terminal");
        dup2(slave, STDIN_FILENO);
        dup2(slave, STDERR_FILENO);
    }
    ~UserTerminal()
    {
        dup2(stdinBefore, STDIN_FILENO);
        dup2(stderrBefore, STDERR_FILENO);
        for (const int descriptor : {master, slave, stdinBefore, stderrBefore})
            close(descriptor);
    }
    Q_DISABLE_COPY(UserTerminal)

    void type(const QByteArray &keys) const
    {
        if (write(master, keys.constData(), size_t(keys.size())) != keys.size())
            qFatal("the terminal takes no keys");
    }

    // Waits until what was typed has come to the program's end.
    void awaitArrival() const
    {
        pollfd readable = {slave, POLLIN, 0};
        poll(&readable, 1, -1);
    }

    // What the user sees up to a text; all of it when it never comes.
    QByteArray seenUpTo(const QByteArray &text) const
    {
        QByteArray seen;
        char buffer[256];
        while (!seen.contains(text)) {
            const ssize_t count = read(master, buffer, sizeof buffer);
            if (count <= 0)
                break;
            seen.append(buffer, int(count));
        }
        return seen;
    }

private:
    int stdinBefore = dup(STDIN_FILENO);
    int stderrBefore = dup(STDERR_FILENO);
    int master = -1;
    int slave = -1;
};

} // namespace

class TestQuestion : public QObject
{
    Q_OBJECT

private slots:
    void onlyYesIsAYes_data();
    void onlyYesIsAYes();
    void whatWasTypedBeforeTheQuestionDoesNotCount();
    void thereIsNobodyToAskWithoutATerminal();
};

void TestQuestion::onlyYesIsAYes_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<bool>("isYes");
    const auto row = [](const char *name, const char *keys, bool isYes) {
        QTest::newRow(name) << QByteArray(keys) << isYes;
    };
    row("y", "y\n", true);
    row("yes", "yes\n", true);
    row("Y with blanks", "  Y \n", true);
    row("nothing", "\n", false);
    row("n", "n\n", false);
    row("another word", "yesterday\n", false);
    row("the end of the input", "\x04", false);
    row("y and the end of the input", "y\x04\x04", true);
}

void TestQuestion::onlyYesIsAYes()
{
    QFETCH(QByteArray, keys);
    QByteArray seen;
    bool isYes = false;
    {
        const UserTerminal terminal;
        std::thread user([&] {
            seen = terminal.seenUpTo("[y/N] ");
            terminal.type(keys);
        });
        isYes = isConfirmed({"VB0  1 -> 2", "\x1b[2J"}, "Write this?");
        user.join();
    }
    QTEST(isYes, "isYes");
    QCOMPARE(seen, QByteArray("VB0  1 -> 2\r\n\\x1b[2J\r\nWrite this? [y/N] "));
}

void TestQuestion::whatWasTypedBeforeTheQuestionDoesNotCount()
{
    bool isYes = true;
    {
        const UserTerminal terminal;
        terminal.type("y\n");
        terminal.awaitArrival();
        std::thread user([&] {
            terminal.seenUpTo("[y/N] ");
            terminal.type("n\n");
        });
        isYes = isConfirmed({}, "Write this?");
        user.join();
    }
    QVERIFY(!isYes);
}

void TestQuestion::thereIsNobodyToAskWithoutATerminal()
{
    QString failure;
    {
        const UserTerminal terminal;
        failure = failureOf([] { checkTerminal(); });
    }
    QCOMPARE(failure, QString());
    {
        const UserTerminal terminal;
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        close(nothing);
        failure = failureOf([] { checkTerminal(); });
    }
    QCOMPARE(failure,
             QString("2: there is no terminal to ask on / leave stdin and stderr to the terminal, or "
                     "leave out --confirm"));
}

TEST_CLASS(TestQuestion)
#include "test_question.moc"
