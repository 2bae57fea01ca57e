// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes of the controller that are lost, cut off, doubled, put in, out of order or late. Whatever is left
// over of one request, the next one is good.

#include "samples.h"
#include "test_class.h"

#include <QtTest>

class TestFaultDelivery : public QObject
{
    Q_OBJECT

private slots:
    void cutRepliesAreRefused_data() { addSampleRows(); }
    void cutRepliesAreRefused();
    void lostBytesAreNoticed_data() { addSampleRows(); }
    void lostBytesAreNoticed();
    void doubledBytesAreNoticedOrLeftOver_data() { addSampleRows(); }
    void doubledBytesAreNoticedOrLeftOver();
    void insertedBytesAreNoticedOrLeftOver_data() { addSampleRows(); }
    void insertedBytesAreNoticedOrLeftOver();
    void everyByteIsNoticedOrLeftOverWhereverItIsInserted();
    void swappedBytesPassOnlyInsideTheData_data() { addSampleRows(); }
    void swappedBytesPassOnlyInsideTheData();
    void repliesInTwoPiecesWithinTheTimeoutAreGood_data() { addSampleRows(); }
    void repliesInTwoPiecesWithinTheTimeoutAreGood();
    void repliesWhoseRestComesTooLateAreRefused_data() { addSampleRows(); }
    void repliesWhoseRestComesTooLateAreRefused();
};

namespace {

const int kWithinTimeout = 400; // milliseconds; the port waits for 500
const int kBeyondTimeout = 600;

// What is wrong with the outcome of a scene of two requests, the first of them disturbed: it must be as
// the model says and fail or be right, and the second must not notice. Empty when nothing is.
QString complaint(const Sample &sample, const Scene &scene)
{
    const Comparison comparison = compared(scene);
    if (!comparison.difference.isEmpty())
        return comparison.difference;
    const Outcome &disturbed = comparison.driver.outcomes.at(0);
    if (!disturbed.failed && !sample.isMetBy(disturbed))
        return QLatin1String("a wrong value was taken: ") + toString(disturbed) + toString(scene);
    const Outcome &next = comparison.driver.outcomes.at(1);
    return sample.isMetBy(next) ? QString()
                                : QLatin1String("next request: ") + toString(next) + toString(scene);
}

// The damage at every place of every reply, the end included; with one attempt and with two.
QString complaintAboutEverywhere(const Sample &sample, Damage damage, int value = 0)
{
    QString text;
    Scene scene = sample.sceneOfTwo();
    for (int reply = 1; reply <= sample.replies(); ++reply) {
        for (int place = 0; text.isEmpty() && place <= int(sample.replyBytes(reply).size()); ++place) {
            scene.lineFaults = QList<LineFault>() << lineFault(reply, damage, place, value);
            scene.port.retries = 0;
            text = complaint(sample, scene);
            scene.port.retries = 1;
            text += complaint(sample, scene);
        }
    }
    return text;
}

// The damage at every place of every reply but behind its end; the first request must fail.
QString placeThatGoesUnnoticed(const Sample &sample, Damage damage, int value = 0)
{
    Scene scene = sample.scene();
    for (int reply = 1; reply <= sample.replies(); ++reply) {
        for (int place = 0; place < int(sample.replyBytes(reply).size()); ++place) {
            scene.lineFaults = QList<LineFault>() << lineFault(reply, damage, place, value);
            if (!compared(scene).driver.outcomes.at(0).failed)
                return toString(scene);
        }
    }
    return QString();
}

} // namespace

void TestFaultDelivery::cutRepliesAreRefused()
{
    const QString text = complaintAboutEverywhere(currentSample(), kCut);
    QVERIFY2(text.isEmpty(), qPrintable(text));
    const QString unnoticed = placeThatGoesUnnoticed(currentSample(), kCut);
    QVERIFY2(unnoticed.isEmpty(), qPrintable(unnoticed));
}

void TestFaultDelivery::lostBytesAreNoticed()
{
    const QString text = complaintAboutEverywhere(currentSample(), kLose);
    QVERIFY2(text.isEmpty(), qPrintable(text));
    const QString unnoticed = placeThatGoesUnnoticed(currentSample(), kLose);
    QVERIFY2(unnoticed.isEmpty(), qPrintable(unnoticed));
}

void TestFaultDelivery::doubledBytesAreNoticedOrLeftOver()
{
    const QString text = complaintAboutEverywhere(currentSample(), kDouble);
    QVERIFY2(text.isEmpty(), qPrintable(text));
}

void TestFaultDelivery::insertedBytesAreNoticedOrLeftOver()
{
    const int values[] = {0x00, 0x01, 0x10, 0x16, 0x68, 0xe5, 0xff};
    for (int value : values) {
        const QString text = complaintAboutEverywhere(currentSample(), kInsert, value);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultDelivery::everyByteIsNoticedOrLeftOverWhereverItIsInserted()
{
    for (int value = 0; value <= 0xff; ++value) {
        const QString text = complaintAboutEverywhere(sample("bytes"), kInsert, value);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

// The check sum does not see the order of bytes, so from the length of the data to their end neighbours may
// change places unnoticed.
void TestFaultDelivery::swappedBytesPassOnlyInsideTheData()
{
    const int lowByteOfLength = 24;
    const Sample sample = currentSample();
    const QByteArray answer = sample.replyBytes(sample.replies());
    const int lastByteOfData = int(answer.size()) - 3;
    Scene scene = sample.scene();
    for (int place = 0; place < int(answer.size()); ++place) {
        scene.lineFaults = QList<LineFault>() << lineFault(sample.replies(), kSwap, place);
        const Comparison comparison = compared(scene);
        const Outcome &outcome = comparison.driver.outcomes.at(0);
        const bool isInsideData = place >= lowByteOfLength && place < lastByteOfData;
        QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
        QVERIFY2(outcome.failed || isInsideData || sample.isMetBy(outcome), qPrintable(toString(scene)));
    }
}

void TestFaultDelivery::repliesInTwoPiecesWithinTheTimeoutAreGood()
{
    const Sample sample = currentSample();
    Scene scene = sample.scene();
    for (int reply = 1; reply <= sample.replies(); ++reply) {
        for (int place = 0; place < int(sample.replyBytes(reply).size()); ++place) {
            scene.lineFaults = QList<LineFault>() << lineFault(reply, kHold, place, kWithinTimeout);
            const Comparison comparison = compared(scene);
            QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
            QVERIFY2(sample.isMetBy(comparison.driver.outcomes.at(0)), qPrintable(toString(scene)));
        }
    }
}

void TestFaultDelivery::repliesWhoseRestComesTooLateAreRefused()
{
    const QString text = complaintAboutEverywhere(currentSample(), kHold, kBeyondTimeout);
    QVERIFY2(text.isEmpty(), qPrintable(text));
    const QString unnoticed = placeThatGoesUnnoticed(currentSample(), kHold, kBeyondTimeout);
    QVERIFY2(unnoticed.isEmpty(), qPrintable(unnoticed));
}

TEST_CLASS(TestFaultDelivery)

#include "test_fault_delivery.moc"
