// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Streams that were closed when the program was started.

#include "common/standard_streams.h"

#include <QtTest>

#include <initializer_list>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// What a process found that began with some of its streams closed.
enum Finding {
    kPortIsNoStream = 1,    // what it opened next is behind stderr
    kReadingStdinFails = 2, // so does every other use of the closed streams
    kWritingStdoutFails = 4,
    kWritingStderrFails = 8,
};

int findings()
{
    common::keepClosedStreams();
    char byte = 0;
    int found = 0;
    if (open("/dev/null", O_RDWR) > STDERR_FILENO)
        found |= kPortIsNoStream;
    if (read(STDIN_FILENO, &byte, 1) < 0)
        found |= kReadingStdinFails;
    if (write(STDOUT_FILENO, &byte, 0) < 0)
        found |= kWritingStdoutFails;
    if (write(STDERR_FILENO, &byte, 0) < 0)
        found |= kWritingStderrFails;
    return found;
}

// In a process of its own, so that the test keeps its streams. Streams that stay open lead to a file that can
// be read and written.
int findingsWithout(std::initializer_list<int> closed)
{
    const pid_t child = fork();
    if (child == 0) {
        const int file = open("/dev/zero", O_RDWR);
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
            dup2(file, stream);
        for (const int stream : closed)
            close(stream);
        _exit(findings());
    }
    int status = 0;
    const bool hasEnded = waitpid(child, &status, 0) == child && WIFEXITED(status);
    return hasEnded ? WEXITSTATUS(status) : -1;
}

} // namespace

class TestStandardStreams : public QObject
{
    Q_OBJECT

private slots:
    void openStreamsStayAsTheyAre();
    void everyClosedStreamKeepsItsPlaceAndFails();
    void closedStreamBetweenOpenOnesKeepsItsPlace();
};

void TestStandardStreams::openStreamsStayAsTheyAre()
{
    QCOMPARE(findingsWithout({}), int(kPortIsNoStream));
}

void TestStandardStreams::everyClosedStreamKeepsItsPlaceAndFails()
{
    QCOMPARE(findingsWithout({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}),
             kPortIsNoStream | kReadingStdinFails | kWritingStdoutFails | kWritingStderrFails);
}

void TestStandardStreams::closedStreamBetweenOpenOnesKeepsItsPlace()
{
    QCOMPARE(findingsWithout({STDOUT_FILENO}), kPortIsNoStream | kWritingStdoutFails);
}

QTEST_APPLESS_MAIN(TestStandardStreams)
#include "test_standard_streams.moc"
