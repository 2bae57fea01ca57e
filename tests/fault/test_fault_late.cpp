// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Replies that come too late, by any time: they are never taken for the reply to another request.

#include "hex.h"
#include "samples.h"
#include "test_class.h"

#include <QtTest>

class TestFaultLate : public QObject
{
    Q_OBJECT

private slots:
    void lateReplies_data();
    void lateReplies();
    void replyThatComesBeforeTheNextRequestDoesNotDisturbIt();
    void portThatKeepsOldBytesLeavesTheReferenceToTellThem();

private:
    QString complaint(const Scene &scene) const;
};

namespace {

const int kTimeout = 500; // milliseconds
const int kLatest = 2300; // longer than three attempts without a reply
const int kPauseBetween = 200;

const char kOldData[] = "91a2b3c4";
const char kNewData[] = "55667788";

HostRequest readOf(const char *address)
{
    HostRequest request = sample("bytes").request();
    request.command.address = QString::fromLatin1(address);
    return request;
}

Reply replyOf(const char *data)
{
    const Reply reply = {bytes("04 01 ff 04 00 20") + bytes(data), 0, 0};
    return reply;
}

// Reads that get other data each; a reply to the first of them is late.
Scene lateScene(int reply, int delay, int retries, bool purges)
{
    Scene scene;
    scene.port.timeout = kTimeout;
    scene.port.retries = retries;
    scene.port.purges = purges;
    scene.requests << readOf("VB100") << readOf("VB200") << readOf("VB200");
    scene.replies << replyOf(kOldData) << replyOf(kNewData) << replyOf(kNewData);
    scene.lineFaults << lineFault(reply, kHold, 0, delay);
    return scene;
}

bool isNewOrNothing(const Outcome &outcome)
{
    return outcome.failed ? outcome.data.isEmpty() : outcome.data == bytes(kNewData);
}

} // namespace

// What is wrong with the outcome; empty when nothing is.
QString TestFaultLate::complaint(const Scene &scene) const
{
    const Comparison comparison = compared(scene);
    const QList<Outcome> &outcomes = comparison.driver.outcomes;
    const bool isFirstRight = outcomes.at(0).failed || outcomes.at(0).data == bytes(kOldData);
    if (isFirstRight && isNewOrNothing(outcomes.at(1)) && isNewOrNothing(outcomes.at(2)))
        return comparison.difference;
    return QLatin1String("an old answer was taken: ") + toString(scene);
}

void TestFaultLate::lateReplies_data()
{
    QTest::addColumn<int>("reply");
    QTest::addColumn<int>("retries");
    QTest::addColumn<bool>("purges");
    QTest::newRow("acknowledgement") << 1 << 0 << true;
    QTest::newRow("answer") << 2 << 0 << true;
    QTest::newRow("acknowledgement, two repetitions") << 1 << 2 << true;
    QTest::newRow("answer, two repetitions") << 2 << 2 << true;
    QTest::newRow("acknowledgement, old bytes kept") << 1 << 0 << false;
    QTest::newRow("answer, old bytes kept") << 2 << 0 << false;
    QTest::newRow("acknowledgement, two repetitions, old bytes kept") << 1 << 2 << false;
    QTest::newRow("answer, two repetitions, old bytes kept") << 2 << 2 << false;
}

void TestFaultLate::lateReplies()
{
    QFETCH(int, reply);
    QFETCH(int, retries);
    QFETCH(bool, purges);
    for (int delay = 0; delay <= kLatest; ++delay) {
        const QString text = complaint(lateScene(reply, delay, retries, purges));
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

// The host pauses between the requests; option 12 then finds the whole reply and throws it away.
void TestFaultLate::replyThatComesBeforeTheNextRequestDoesNotDisturbIt()
{
    for (int reply = 1; reply <= 2; ++reply) {
        for (int delay = kTimeout; delay < kTimeout + kPauseBetween - FaultPort::kReactionTime; ++delay) {
            Scene scene = lateScene(reply, delay, 0, true);
            scene.port.delay = kPauseBetween;
            const Comparison comparison = compared(scene);
            QVERIFY2(comparison.driver.outcomes.at(0).failed, qPrintable(toString(scene)));
            QVERIFY2(comparison.driver.outcomes.at(1).isReadAs(bytes(kNewData)), qPrintable(toString(scene)));
            QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
        }
    }
}

// The old answer stands where the new one is due, and all of it is good but for its PDU reference.
void TestFaultLate::portThatKeepsOldBytesLeavesTheReferenceToTellThem()
{
    const int pause = 12;
    const int delay = kTimeout + 2 * pause;
    const Comparison comparison = compared(lateScene(2, delay, 0, false));
    QCOMPARE(comparison.driver.outcomes.at(0).reason, QString("packet length < minimum second response"));
    QCOMPARE(comparison.driver.outcomes.at(1).reason, QString("invalid response"));
    QCOMPARE(comparison.driver.outcomes.at(1).sends, 2);
    QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
}

TEST_CLASS(TestFaultLate)

#include "test_fault_late.moc"
