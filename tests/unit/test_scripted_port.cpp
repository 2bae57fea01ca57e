// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The port on which drivers are tested: whatever is not as scripted has to show.

#include "scripted_port.h"

#include "hex.h"
#include "test_class.h"
#include "tools/timing.h"

#include <QtTest>

namespace {

void send(ScriptedPort &port, const char *frame)
{
    const QByteArray data = bytes(frame);
    port.send(reinterpret_cast<const unsigned char *>(data.constData()), int(data.size()));
}

QString receive(ScriptedPort &port, int length)
{
    QByteArray data(length, '\0');
    data.resize(port.receive(reinterpret_cast<unsigned char *>(data.data()), length));
    return hex(data);
}

} // namespace

class TestScriptedPort : public QObject
{
    Q_OBJECT

private slots:
    void aScriptThatIsFollowedIsFinished();
    void whatIsMissingAnotherOrTooMuchShows();
    void answersNeedAFrameBeforeThem();
    void lateAnswersComeBehindATimeOut();
    void clearingThrowsAwayWhatCame();
    void everyCallAndPauseIsAnEvent();
};

void TestScriptedPort::aScriptThatIsFollowedIsFinished()
{
    ScriptedPort port(5);
    port.expects("05 01").answers("06").expects(bytes("05 02")).answers(bytes("15"));
    send(port, "05 01");
    QCOMPARE(receive(port, 2), QString("06"));
    send(port, "05 02");
    QCOMPARE(receive(port, 1), QString("15"));
    QCOMPARE(port.stationId(), 5);
    QVERIFY(port.scriptIsFinished());
}

void TestScriptedPort::whatIsMissingAnotherOrTooMuchShows()
{
    ScriptedPort port;
    QVERIFY(port.scriptIsFinished());
    port.expects("05 01");
    QVERIFY(!port.scriptIsFinished());
    send(port, "05 01");
    QVERIFY(port.scriptIsFinished());
    send(port, "05 01");
    QVERIFY(!port.scriptIsFinished());

    ScriptedPort other;
    other.expects("05 01");
    send(other, "05 02");
    QVERIFY(!other.scriptIsFinished());
}

void TestScriptedPort::answersNeedAFrameBeforeThem()
{
    ScriptedPort port;
    port.answers("06");
    QVERIFY(!port.scriptIsFinished());
    ScriptedPort late;
    late.answersLate("06");
    QVERIFY(!late.scriptIsFinished());
}

void TestScriptedPort::lateAnswersComeBehindATimeOut()
{
    ScriptedPort port;
    port.expects("05").answersLate("06 07");
    send(port, "05");
    QCOMPARE(receive(port, 1), QString());
    QCOMPARE(receive(port, 2), QString("0607"));
}

void TestScriptedPort::clearingThrowsAwayWhatCame()
{
    ScriptedPort port;
    port.expects("05").answers("06 07");
    send(port, "05");
    port.setOption(kClearInput, 0);
    QCOMPARE(receive(port, 1), QString());

    ScriptedPort keeping;
    keeping.keepsOldBytes().expects("05").answers("06 07");
    send(keeping, "05");
    keeping.setOption(kClearInput, 0);
    QCOMPARE(receive(keeping, 1), QString("06"));
}

void TestScriptedPort::everyCallAndPauseIsAnEvent()
{
    ScriptedPort port;
    port.retries(2).delays(20).receiveClaims(1, -1).expects("05").answers("06").thenRetries(0);
    QCOMPARE(port.retry(), 2);
    HRSleep(static_cast<unsigned long>(port.delay()));
    port.setOption(kClearInput, 0);
    send(port, "05");
    unsigned char buffer = 0;
    QCOMPARE(port.receive(&buffer, 1), -1);
    QCOMPARE(port.retry(), 0);
    QCOMPARE(port.events().join("; "),
             QString("retry; delay; pause 20 ms; option 12 = 0; send 05; receive(1) -> -1; retry"));
    QCOMPARE(port.requestsSent(), 0);
    QCOMPARE(port.frames().size(), 1);
}

TEST_CLASS(TestScriptedPort)
#include "test_scripted_port.moc"
