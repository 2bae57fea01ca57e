// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port whose driver does not do all that it is asked for. The kernel's answers are this program's own: no
// pseudo-terminal refuses anything.

#include "host/port/serial_port.h"

#include "host/port/tty_settings.h"
#include "tests/host/support/failure_of.h"
#include "tests/host/support/pseudo_line.h"

#include <QtTest>

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <linux/serial.h>

#include <cerrno>
#include <cstdarg>
#include <optional>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::optional<unsigned> keptBaud;  // a speed that stays, whatever is asked for
std::optional<unsigned> rs485Mask; // the flags that the driver can do; none: it has no RS-485 mode
unsigned rs485Flags = 0;

int answerRs485(unsigned long request, serial_rs485 *mode)
{
    if (!rs485Mask) {
        errno = ENOTTY;
        return -1;
    }
    if (request == TIOCSRS485)
        rs485Flags = mode->flags & *rs485Mask;
    mode->flags = rs485Flags;
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
    const int result = int(syscall(SYS_ioctl, descriptor, request, argument));
    if (request == TCGETS2 && keptBaud)
        static_cast<termios2 *>(argument)->c_ospeed = *keptBaud;
    return result;
}

using namespace host;

namespace {

const LineSettings kLine = {187500, kEvenParity, 8, 1};
const Timing kTiming = {100, 0, 2, 0};

QString failureToOpen(const PseudoLine &line, Direction direction)
{
    return failureOf([&] { SerialPort(line.name(), kLine, kTiming, direction); }).remove(line.name());
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
};

void TestPortSettings::init()
{
    keptBaud.reset();
    rs485Mask.reset();
    rs485Flags = 0;
}

void TestPortSettings::aSpeedThatIsNotTakenIsRefusedWithTheOneThatIs()
{
    const PseudoLine line;
    keptBaud = 115200;
    QCOMPARE(
        failureToOpen(line, Direction::ByAdapter),
        QString("3:  keeps 115200 baud instead of 187500 baud / this adapter cannot do that; use another "
                "adapter or other line settings"));
}

void TestPortSettings::aSpeedThatIsNearEnoughIsTaken()
{
    const PseudoLine line;
    keptBaud = 187000;
    QCOMPARE(failureToOpen(line, Direction::ByAdapter), QString());
}

void TestPortSettings::theKernelSwitchesTheTransceiver()
{
    const PseudoLine line;
    rs485Mask = ~0U;
    QCOMPARE(failureToOpen(line, Direction::ByKernel), QString());
    QCOMPARE(rs485Flags, unsigned(SER_RS485_ENABLED | SER_RS485_RTS_ON_SEND));
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
    QCOMPARE(failureToOpen(line, Direction::ByKernel),
             "3:  cannot be switched to RS-485: " + reason +
                 " / its driver has no RS-485 mode; an adapter that switches by itself needs no --rs485");
}

QTEST_GUILESS_MAIN(TestPortSettings)
#include "test_port_settings.moc"
