// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port whose driver does not do all that it is asked for. The kernel's answers are this program's own: no
// pseudo-terminal refuses anything.

#include "host/port/serial_port.h"

#include "host/port/tty_settings.h"
#include "tests/host/support/failure_of.h"
#include "tests/host/support/pseudo_line.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <linux/serial.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <optional>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::optional<unsigned> keptBaud;  // a speed that stays, whatever is asked for
std::optional<unsigned> rs485Mask; // the flags that the driver can do; none: it has no RS-485 mode
serial_rs485 rs485 = {};
unsigned longestPause = 100;    // milliseconds, of which the driver keeps no more
std::optional<int> latencyMask; // the flags that the driver can keep; none: it knows no such settings
int latencyFlags = 0;

int answerRs485(unsigned long request, serial_rs485 *mode)
{
    if (!rs485Mask) {
        errno = ENOTTY;
        return -1;
    }
    if (request == TIOCSRS485) {
        rs485 = *mode;
        rs485.flags &= *rs485Mask;
        rs485.delay_rts_before_send = std::min(rs485.delay_rts_before_send, longestPause);
        rs485.delay_rts_after_send = std::min(rs485.delay_rts_after_send, longestPause);
    }
    *mode = rs485;
    return 0;
}

int answerSerial(unsigned long request, serial_struct *settings)
{
    if (!latencyMask) {
        errno = ENOTTY;
        return -1;
    }
    if (request == TIOCSSERIAL)
        latencyFlags = settings->flags & *latencyMask;
    settings->flags = latencyFlags;
    return 0;
}

} // namespace

// The linker prefers it to the library's.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request == TIOCSRS485 || request == TIOCGRS485)
        return answerRs485(request, static_cast<serial_rs485 *>(argument));
    if (request == TIOCSSERIAL || request == TIOCGSERIAL)
        return answerSerial(request, static_cast<serial_struct *>(argument));
    const int result = int(syscall(SYS_ioctl, descriptor, request, argument));
    if (request == TCGETS2 && keptBaud)
        static_cast<termios2 *>(argument)->c_ospeed = *keptBaud;
    return result;
}

using namespace host;

namespace {

const LineSettings kLine = {187500, kEvenParity, 8, 1};
const Timing kTiming = {100, 0, 2, 0};

QString failureToOpen(const PseudoLine &line, const AdapterSettings &adapter = {})
{
    return failureOf([&] { SerialPort(line.name(), kLine, kTiming, adapter); }).remove(line.name());
}

// A file as the kernel has it for an adapter's timer.
QString timerFile(const QTemporaryDir &directory, const QByteArray &text)
{
    QFile file(directory.filePath("latency_timer"));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return QString();
    return file.fileName();
}

// A file of the kernel's with a number in it that not even root can write: 65536.
const char kReadOnlyNumber[] = "/proc/sys/kernel/ngroups_max";

QString failureToLower(const QString &timer)
{
    return failureOf([&] { lowerLatency(0, "PORT", timer); });
}

} // namespace

class TestPortSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aSpeedThatIsNotTakenIsRefusedWithTheOneThatIs();
    void aSpeedThatIsNearEnoughIsTaken();
    void theKernelSwitchesTheTransceiver();
    void aDriverThatCannotSwitchIsRefused_data();
    void aDriverThatCannotSwitchIsRefused();
    void theKernelWaitsBeforeAndAfterSending();
    void aDriverThatDoesNotWaitIsRefused();
    void aDriverLowersTheLatency();
    void aPortWithoutTimerIsRefused_data();
    void aPortWithoutTimerIsRefused();
    void aTimerInAFileIsSet();
    void aTimerThatIsLowStays();
    void aTimerThatCannotBeSetIsRefusedWithTheWayToSetIt();
};

void TestPortSettings::init()
{
    keptBaud.reset();
    rs485Mask.reset();
    rs485 = {};
    longestPause = 100;
    latencyMask.reset();
    latencyFlags = 0;
}

void TestPortSettings::aSpeedThatIsNotTakenIsRefusedWithTheOneThatIs()
{
    const PseudoLine line;
    keptBaud = 115200;
    QCOMPARE(
        failureToOpen(line),
        QString("3:  keeps 115200 baud instead of 187500 baud / this adapter cannot do that; use another "
                "adapter or other line settings"));
}

void TestPortSettings::aSpeedThatIsNearEnoughIsTaken()
{
    const PseudoLine line;
    keptBaud = 187000;
    QCOMPARE(failureToOpen(line), QString());
}

void TestPortSettings::theKernelSwitchesTheTransceiver()
{
    const PseudoLine line;
    rs485Mask = ~0U;
    QCOMPARE(failureToOpen(line, {Rs485(), false}), QString());
    QCOMPARE(rs485.flags, unsigned(SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND));
    QCOMPARE(rs485.delay_rts_before_send, 0U);
    QCOMPARE(rs485.delay_rts_after_send, 0U);
}

void TestPortSettings::theKernelWaitsBeforeAndAfterSending()
{
    const PseudoLine line;
    rs485Mask = ~0U;
    QCOMPARE(failureToOpen(line, {Rs485{1, 2}, false}), QString());
    QCOMPARE(rs485.delay_rts_before_send, 1U);
    QCOMPARE(rs485.delay_rts_after_send, 2U);
}

void TestPortSettings::aDriverThatDoesNotWaitIsRefused()
{
    const PseudoLine line;
    rs485Mask = ~0U;
    longestPause = 1;
    QCOMPARE(failureToOpen(line, {Rs485{1, 2}, false}),
             QString("3:  keeps pauses of 1 ms before and 1 ms after sending instead of 1 ms before and 2 ms "
                     "after sending / its driver cannot wait so; take the pauses that it keeps, or plain "
                     "--rs485"));
}

void TestPortSettings::aDriverLowersTheLatency()
{
    const PseudoLine line;
    latencyMask = ~0;
    QCOMPARE(failureToOpen(line, {std::nullopt, true}), QString());
    QCOMPARE(latencyFlags, int(ASYNC_LOW_LATENCY));
}

void TestPortSettings::aPortWithoutTimerIsRefused_data()
{
    QTest::addColumn<bool>("knowsTheFlag");
    QTest::newRow("no such settings") << false;
    QTest::newRow("the flag is dropped") << true;
}

void TestPortSettings::aPortWithoutTimerIsRefused()
{
    QFETCH(bool, knowsTheFlag);
    const PseudoLine line;
    if (knowsTheFlag)
        latencyMask = 0;
    QCOMPARE(failureToOpen(line, {std::nullopt, true}),
             QString("3:  has no latency timer that could be set / leave out --low-latency: its driver hands "
                     "over at once what it receives, or cannot be told to"));
}

void TestPortSettings::aTimerInAFileIsSet()
{
    const QTemporaryDir directory;
    const QString timer = timerFile(directory, "16\n");
    QCOMPARE(failureToLower(timer), QString());
    QFile file(timer);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readLine(), QByteArray("1\n"));
}

void TestPortSettings::aTimerThatIsLowStays()
{
    const QTemporaryDir directory;
    const QString timer = timerFile(directory, "2\n");
    QCOMPARE(failureToLower(timer), QString());
    QFile file(timer);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readLine(), QByteArray("2\n"));
}

void TestPortSettings::aTimerThatCannotBeSetIsRefusedWithTheWayToSetIt()
{
    latencyMask = ~0;
    QCOMPARE(
        failureToLower(kReadOnlyNumber),
        QString("3: PORT keeps its latency timer of 65536 ms: %1 cannot be written / let a udev rule set "
                "it, ACTION==\"add\", SUBSYSTEM==\"usb-serial\", ATTR{latency_timer}=\"1\", and plug the "
                "adapter in again; or echo 1 | sudo tee %1")
            .arg(kReadOnlyNumber));
}

void TestPortSettings::aDriverThatCannotSwitchIsRefused_data()
{
    QTest::addColumn<bool>("knowsTheMode");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no RS-485 mode") << false << "Inappropriate ioctl for device";
    QTest::newRow("mode left off") << true << "the driver leaves it switched off";
}

void TestPortSettings::aDriverThatCannotSwitchIsRefused()
{
    QFETCH(bool, knowsTheMode);
    QFETCH(QString, reason);
    const PseudoLine line;
    if (knowsTheMode)
        rs485Mask = 0;
    QCOMPARE(failureToOpen(line, {Rs485(), false}),
             "3:  cannot be switched to RS-485: " + reason +
                 " / its driver has no RS-485 mode; an adapter that switches by itself needs no --rs485");
}

QTEST_GUILESS_MAIN(TestPortSettings)
#include "test_port_settings.moc"
