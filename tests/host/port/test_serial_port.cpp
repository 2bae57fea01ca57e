// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The port over a pseudo-terminal: how much it receives, how long it waits, what it forgets.

#include "host/port/serial_port.h"

#include "hex.h"
#include "host/port/tty_settings.h"
#include "tests/host/support/failure_of.h"
#include "tests/host/support/pseudo_line.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <termios.h>

using namespace host;

namespace {

const LineSettings kLine = {9600, kEvenParity, 8, 1};
const Timing kPatient = {2000, 3, 2, 7};
const Timing kImpatient = {150, 3, 2, 7};

// For a moment in which the machine is not busy; milliseconds.
constexpr int kPatience = 60000;

// What came, as hex; "lost" for a result below 0.
QString receive(SerialPort &port, int count)
{
    QByteArray buffer(count, '\xee');
    const int length = port.receive(reinterpret_cast<unsigned char *>(buffer.data()), count);
    return length < 0 ? QString("lost") : hex(buffer.left(length));
}

int send(SerialPort &port, const char *frame)
{
    const QByteArray data = bytes(frame);
    return port.send(reinterpret_cast<const unsigned char *>(data.constData()), int(data.size()));
}

// A controller that dribbles one byte every so many milliseconds until it is told to stop.
class Dribble
{
public:
    explicit Dribble(const PseudoLine &line, int pause = 30)
        : thread([this, &line, pause] { run(line, pause); })
    {
    }
    ~Dribble()
    {
        stopped = true;
        thread.join();
    }

private:
    void run(const PseudoLine &line, int pause)
    {
        while (!stopped) {
            line.write("x");
            std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        }
    }

    std::atomic<bool> stopped{false};
    std::thread thread;
};

// An answer to an older request that is still under way: a byte every 10 ms, the first one after 10 ms.
class StaleAnswer
{
public:
    StaleAnswer(const PseudoLine &line, int size)
    {
        gap.start();
        thread = std::thread([this, &line, size] { run(line, size); });
    }

    // To its end. Whether its bytes came without a gap that looks like its end; on a busy machine they may
    // not.
    bool cameInTime()
    {
        thread.join();
        return longestGap < kSilence;
    }

private:
    static constexpr int kSilence = 15; // less than the port takes for the end, milliseconds

    void run(const PseudoLine &line, int size)
    {
        for (int i = 0; i < size; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            line.write("x");
            longestGap = std::max(longestGap, gap.restart());
        }
    }

    QElapsedTimer gap;
    qint64 longestGap = 0;
    std::thread thread;
};

// An answer that begins late.
class LateByte
{
public:
    explicit LateByte(const PseudoLine &line)
        : thread([&line] {
              std::this_thread::sleep_for(std::chrono::milliseconds(100));
              line.write("y");
          })
    {
    }
    ~LateByte() { thread.join(); }

private:
    std::thread thread;
};

// One purge during such an answer, and what is received after both: nothing when it was in time.
bool purgesWhatIsUnderWay(const PseudoLine &line, SerialPort &port, QString &received)
{
    StaleAnswer answer(line, 10);
    const bool isPurged = port.setOption(kClearInput, 0);
    const bool inTime = answer.cameInTime();
    received = isPurged ? receive(port, 1) : "not purged";
    port.setOption(kClearInput, 0);
    return inTime;
}

} // namespace

class TestSerialPort : public QObject
{
    Q_OBJECT

private slots:
    void receivesExactlyWhatIsAskedFor();
    void returnsWhatCameWhenTheTimeIsUp();
    void returnsNothingWhenNothingCame();
    void oneDeadlineHoldsForTheWholeReceive();
    void aGapEndsAnAnswerThatBrokeOff();
    void aGapLetsAnAnswerTakeLongerThanTheTimeout();
    void aGapDoesNotHoldForTheFirstByteBehindAFrame();
    void aGapDoesNotHoldBetweenEchoAndAnswer();
    void sendsWhatItIsGiven();
    void theRestOfAFrameThatDidNotGetAwayIsForgotten();
    void purgeForgetsWhatWasBufferedAndWhatIsStillInTheKernel();
    void aLateAnswerDoesNotShiftTheNext();
    void aPurgeWaitsForTheEndOfWhatIsUnderWay();
    void theFirstPurgeWaitsForWhatIsUnderWay();
    void aPurgeDoesNotWaitForeverForALineToFallSilent();
    void aLineThatIsNeverSilentCostsOneTimeoutAndNoMore();
    void aLineWithGapsIsUsedAlsoBehindAnAnswerThatDidNotCome();
    void aPurgeOfACleanLineLeavesWhatComesThen();
    void otherOptionsAreRefused();
    void tellsRetriesStationAndDelay();
    void aPortThatGoesAwayWhileWaitingIsLostAtOnce();
    void aPortThatWentAwayIsNotWaitedFor();
    void sendingNoticesALostPort();
    void purgingNoticesALostPort();
    void idlingNoticesALostPortAtOnce();
    void idlingLeavesWhatComesAlone();
    void badParityIsDroppedByTheKernel();
    void aPseudoTerminalKeepsNoParityAndTheNoteSaysSo();
    void speedsThatAreNoneOfTheClassicOnesAreKept();
    void theKernelsSettingsAreReadBack();
    void aLinkToAPortIsAPort();
    void anAnswerLikeItsRequestIsAnEchoOnlyWhereTheProtocolIsKnown();
    void aPortIsOpenedOnce();
    void whatIsNoPortCannotBeOpened_data();
    void whatIsNoPortCannotBeOpened();
};

void TestSerialPort::receivesExactlyWhatIsAskedFor()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    line.write(bytes("68 19 19 68 00 02 08 32 03"));
    QCOMPARE(receive(port, 1), QString("68"));
    QCOMPARE(receive(port, 6), QString("191968000208"));
    QCOMPARE(receive(port, 2), QString("3203"));
}

void TestSerialPort::returnsWhatCameWhenTheTimeIsUp()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    line.write(bytes("10 00 02"));
    QCOMPARE(receive(port, 6), QString("100002"));
}

void TestSerialPort::returnsNothingWhenNothingCame()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(receive(port, 1), QString());
    QVERIFY(timer.elapsed() >= kImpatient.timeout);
    QVERIFY(!port.isLost());
}

void TestSerialPort::oneDeadlineHoldsForTheWholeReceive()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    const Dribble dribble(line);
    QElapsedTimer timer;
    timer.start();
    const QString received = receive(port, 100);
    QVERIFY2(timer.elapsed() < 1500, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!received.isEmpty());
    QVERIFY(received.size() < 200);
}

void TestSerialPort::aGapEndsAnAnswerThatBrokeOff()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, {kPatience, 0, 2, 0, 50});
    line.write("xxx");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(receive(port, 7), QString("787878"));
    QCOMPARE(receive(port, 7), QString());
    QVERIFY(timer.elapsed() < kPatience);
}

void TestSerialPort::aGapLetsAnAnswerTakeLongerThanTheTimeout()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, {20, 0, 2, 0, kPatience});
    line.write("x");
    const Dribble dribble(line, 50);
    QCOMPARE(receive(port, 5), QString("7878787878"));
    QCOMPARE(receive(port, 2), QString("7878"));
}

void TestSerialPort::aGapDoesNotHoldForTheFirstByteBehindAFrame()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, {kPatience, 0, 2, 0, 1});
    line.write("x");
    QCOMPARE(receive(port, 1), QString("78"));
    QCOMPARE(send(port, "10 02 00 5c 5e 16"), 6);
    const LateByte late(line);
    QCOMPARE(receive(port, 1), QString("79"));
}

void TestSerialPort::aGapDoesNotHoldBetweenEchoAndAnswer()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, {kPatience, 0, 2, 0, 1});
    port.expectEcho();
    QCOMPARE(send(port, "10 02"), 2);
    line.write(bytes("10 02"));
    QCOMPARE(receive(port, 2), QString("1002"));
    const LateByte late(line);
    QCOMPARE(receive(port, 1), QString("79"));
}

void TestSerialPort::sendsWhatItIsGiven()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    QCOMPARE(send(port, "10 02 00 5c 5e 16 00 11 13 0a 0d ff"), 12);
    QCOMPARE(hex(line.read(12)), QString("1002005c5e160011130a0dff"));
}

void TestSerialPort::theRestOfAFrameThatDidNotGetAwayIsForgotten()
{
    constexpr int kMoreThanTheKernelTakes = 1000000;
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    const std::vector<unsigned char> tooMuch(kMoreThanTheKernelTakes, 0x55);
    QCOMPARE(port.send(tooMuch.data(), kMoreThanTheKernelTakes), -1);
    QVERIFY(!port.isLost());
    line.readAll();
    QCOMPARE(send(port, "e5"), 1);
    QCOMPARE(hex(line.read(1)), QString("e5"));
}

void TestSerialPort::purgeForgetsWhatWasBufferedAndWhatIsStillInTheKernel()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    line.write(bytes("e5 01 02 03"));
    QCOMPARE(receive(port, 1), QString("e5"));
    line.write(bytes("04 05 06"));
    QVERIFY(port.setOption(kClearInput, 0));
    QCOMPARE(receive(port, 1), QString());
}

void TestSerialPort::aLateAnswerDoesNotShiftTheNext()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    QCOMPARE(receive(port, 7), QString());
    line.write(bytes("68 19 19 68 00 02 08 32 03 00 00 00 01"));
    QVERIFY(port.setOption(kClearInput, 0));
    line.write(bytes("e5"));
    QCOMPARE(receive(port, 1), QString("e5"));
}

void TestSerialPort::aPurgeWaitsForTheEndOfWhatIsUnderWay()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    QVERIFY(port.setOption(kClearInput, 0));
    QString received;
    const auto isInTime = [&] {
        line.write("xx");
        receive(port, 1); // the other one has come, too
        return purgesWhatIsUnderWay(line, port, received);
    };
    const QDeadlineTimer patience(kPatience);
    while (!isInTime())
        QVERIFY(!patience.hasExpired());
    QCOMPARE(received, QString());
}

void TestSerialPort::theFirstPurgeWaitsForWhatIsUnderWay()
{
    QString received;
    const auto isInTime = [&] {
        const PseudoLine line;
        SerialPort port(line.name(), kLine, kImpatient);
        return purgesWhatIsUnderWay(line, port, received);
    };
    const QDeadlineTimer patience(kPatience);
    while (!isInTime())
        QVERIFY(!patience.hasExpired());
    QCOMPARE(received, QString());
}

void TestSerialPort::aPurgeDoesNotWaitForeverForALineToFallSilent()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    const Dribble dribble(line, 5);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(port.setOption(kClearInput, 0));
    QVERIFY(timer.elapsed() < 10000);
}

// Nothing goes out between other bytes, and nothing that comes then is taken for an answer.
void TestSerialPort::aLineThatIsNeverSilentCostsOneTimeoutAndNoMore()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    const QDeadlineTimer patience(kPatience);
    {
        const Dribble dribble(line, 2);
        QElapsedTimer timer;
        do {
            QVERIFY(!patience.hasExpired());
            timer.start();
            QVERIFY(port.setOption(kClearInput, 0));
            if (port.noise()) {
                QCOMPARE(send(port, "10 02 00 5c 5e 16"), -1);
                QCOMPARE(receive(port, 1), QString());
            }
        } while (!port.noise() || timer.elapsed() > 4 * kImpatient.timeout);
        QVERIFY(port.noise()->count > 1);
        QVERIFY(port.noise()->beginning.startsWith("xx"));
    }
    while (port.noise()) {
        QVERIFY(!patience.hasExpired());
        QVERIFY(port.setOption(kClearInput, 0));
    }
    QCOMPARE(send(port, "e5"), 1);
    QCOMPARE(hex(line.read(1)), QString("e5"));
}

// Other masters speak, and at 300 baud the answer to the poll that is missing could take seconds.
void TestSerialPort::aLineWithGapsIsUsedAlsoBehindAnAnswerThatDidNotCome()
{
    const PseudoLine line;
    SerialPort port(line.name(), {300, kEvenParity, 8, 1}, {1000, 3, 2, 7});
    QVERIFY(port.setOption(kClearInput, 0));
    QCOMPARE(send(port, "10 02 00 5c 5e 16"), 6);
    const Dribble dribble(line, 60);
    const QDeadlineTimer patience(kPatience);
    do {
        QVERIFY(!patience.hasExpired());
        QVERIFY(port.setOption(kClearInput, 0));
    } while (port.noise());
    QCOMPARE(send(port, "e5"), 1);
}

void TestSerialPort::aPurgeOfACleanLineLeavesWhatComesThen()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    QVERIFY(port.setOption(kClearInput, 0));
    StaleAnswer answer(line, 1);
    QVERIFY(port.setOption(kClearInput, 0));
    answer.cameInTime();
    QCOMPARE(receive(port, 1), QString("78"));
}

void TestSerialPort::otherOptionsAreRefused()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kImpatient);
    line.write(bytes("e5"));
    QVERIFY(!port.setOption(11, 0));
    QCOMPARE(receive(port, 1), QString("e5"));
}

void TestSerialPort::tellsRetriesStationAndDelay()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    QCOMPARE(port.retry(), 3);
    QCOMPARE(port.stationId(), 2);
    QCOMPARE(port.delay(), 7);
}

void TestSerialPort::aPortThatGoesAwayWhileWaitingIsLostAtOnce()
{
    PseudoLine line;
    SerialPort port(line.name(), kLine, {60000, 3, 2, 7});
    std::thread unplug([&line] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        line.hangUp();
    });
    QElapsedTimer timer;
    timer.start();
    const QString received = receive(port, 1);
    unplug.join();
    QCOMPARE(received, QString("lost"));
    QVERIFY(timer.elapsed() < 10000);
    QVERIFY(port.isLost());
    QCOMPARE(port.retry(), 0);
    QCOMPARE(port.delay(), 0);
}

void TestSerialPort::aPortThatWentAwayIsNotWaitedFor()
{
    PseudoLine line;
    SerialPort port(line.name(), kLine, {60000, 3, 2, 7});
    line.hangUp();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(receive(port, 1), QString("lost"));
    QCOMPARE(receive(port, 7), QString("lost"));
    QCOMPARE(send(port, "e5"), -1);
    QVERIFY(!port.setOption(kClearInput, 0));
    QVERIFY(timer.elapsed() < 10000);
}

void TestSerialPort::sendingNoticesALostPort()
{
    PseudoLine line;
    SerialPort port(line.name(), kLine, {60000, 3, 2, 7});
    line.hangUp();
    QCOMPARE(send(port, "10 02 00 5c 5e 16"), -1);
    QVERIFY(port.isLost());
}

void TestSerialPort::purgingNoticesALostPort()
{
    PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    line.hangUp();
    QVERIFY(!port.setOption(kClearInput, 0));
    QVERIFY(port.isLost());
}

void TestSerialPort::idlingNoticesALostPortAtOnce()
{
    PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    std::thread unplug([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        line.hangUp();
    });
    QElapsedTimer time;
    time.start();
    port.idle(20000);
    unplug.join();
    QVERIFY(time.elapsed() < 10000);
    QVERIFY(port.isLost());
}

void TestSerialPort::idlingLeavesWhatComesAlone()
{
    const PseudoLine line;
    SerialPort port(line.name(), kLine, kPatient);
    line.write(bytes("e5"));
    port.idle(1);
    QVERIFY(!port.isLost());
    QCOMPARE(receive(port, 1), QString("e5"));
}

void TestSerialPort::badParityIsDroppedByTheKernel()
{
    const PseudoLine line;
    const SerialPort port(line.name(), kLine, kPatient);
    termios state = {};
    QCOMPARE(tcgetattr(line.portEnd(), &state), 0);
    QCOMPARE(state.c_iflag & (INPCK | IGNPAR | PARMRK | ISTRIP), tcflag_t(INPCK | IGNPAR));
}

void TestSerialPort::aPseudoTerminalKeepsNoParityAndTheNoteSaysSo()
{
    const PseudoLine line;
    const SerialPort withParity(line.name(), kLine, kPatient);
    QCOMPARE(withParity.lineNote(), QString("no parity instead of even parity"));

    const PseudoLine other;
    const SerialPort without(other.name(), {19200, kNoParity, 8, 2}, kPatient);
    QCOMPARE(without.lineNote(), QString());
}

void TestSerialPort::speedsThatAreNoneOfTheClassicOnesAreKept()
{
    const PseudoLine line;
    const SerialPort port(line.name(), {187500, kNoParity, 8, 1}, kPatient);
    QCOMPARE(lineText(settingsInForce(line.portEnd())),
             QString("187500 baud, no parity, 8 data bits, 1 stop bit"));
}

void TestSerialPort::theKernelsSettingsAreReadBack()
{
    const PseudoLine line;
    const SerialPort port(line.name(), {1200, kNoParity, 8, 2}, kPatient);
    QCOMPARE(lineText(settingsInForce(line.portEnd())),
             QString("1200 baud, no parity, 8 data bits, 2 stop bits"));
    QCOMPARE(lineText(settingsInForce(-1)), QString("0 baud, no parity, 0 data bits, 0 stop bits"));
    QCOMPARE(
        failureOf([] { dropBadParity(-1, "/dev/ttyS7"); }),
        QString("3: /dev/ttyS7 cannot be told to drop bytes with bad parity / check that it is a serial port "
                "and takes these line settings"));
}

void TestSerialPort::aLinkToAPortIsAPort()
{
    const QTemporaryDir directory;
    const QString link = directory.filePath("port");
    const PseudoLine line;
    QVERIFY(QFile::link(line.name(), link));
    SerialPort port(link, kLine, kPatient);
    QCOMPARE(send(port, "e5"), 1);
    QCOMPARE(hex(line.read(1)), QString("e5"));
    QCOMPARE(port.lineNote(), QString("no parity instead of even parity"));
}

void TestSerialPort::anAnswerLikeItsRequestIsAnEchoOnlyWhereTheProtocolIsKnown()
{
    for (const bool isKnown : {true, false}) {
        const PseudoLine line;
        SerialPort port(line.name(), kLine, kPatient);
        if (!isKnown)
            port.expectUnknownProtocol();
        QCOMPARE(send(port, "01 05 00 10 ff 00"), 6);
        line.write(bytes("01 05 00 10 ff 00"));
        QCOMPARE(receive(port, 6), QString("01050010ff00"));
        QCOMPARE(port.hearsItself(), isKnown);
    }
}

void TestSerialPort::aPortIsOpenedOnce()
{
    const PseudoLine line;
    const SerialPort port(line.name(), kLine, kPatient);
    const QString failure = failureOf([&] { SerialPort(line.name(), kLine, kPatient); });
    QVERIFY2(failure.startsWith("3: " + line.name() + " cannot be opened: "), qPrintable(failure));
    QVERIFY2(failure.endsWith(" / another program has the port open: end it, or use another port, or let "
                              "--wait-lock 1min wait for it"),
             qPrintable(failure));
}

void TestSerialPort::whatIsNoPortCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("hint");
    QTest::newRow("no such file") << "/dev/no-such-port"
                                  << "check the name and the plug";
    QTest::newRow("no terminal") << "/dev/null"
                                 << "check that it is a serial port";
}

void TestSerialPort::whatIsNoPortCannotBeOpened()
{
    QFETCH(QString, name);
    QFETCH(QString, hint);
    const QString failure = failureOf([&] { SerialPort(name, kLine, kPatient); });
    QVERIFY2(failure.startsWith("3: " + name + " cannot be opened: "), qPrintable(failure));
    QVERIFY2(failure.contains(" / " + hint), qPrintable(failure));
}

QTEST_GUILESS_MAIN(TestSerialPort)
#include "test_serial_port.moc"
