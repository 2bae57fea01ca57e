// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes of the controller that are lost, cut off, doubled, put in, out of order, in pieces or late. Whatever
// is left over of one request, the next one is good.

#include "random.h"
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
    void repliesInThreePiecesAreGood_data() { addSampleRows(); }
    void repliesInThreePiecesAreGood();
    void repliesInPiecesOfAnySizeAreGood_data() { addSampleRows(); }
    void repliesInPiecesOfAnySizeAreGood();
    void repliesInAnyPiecesAreGoodUntilOneIsLate_data() { addSampleRows(); }
    void repliesInAnyPiecesAreGoodUntilOneIsLate();
    void aLongReplyInAnyPiecesIsGoodUntilOneIsLate();
    void repliesWhoseRestComesTooLateAreRefused_data() { addSampleRows(); }
    void repliesWhoseRestComesTooLateAreRefused();
};

namespace {

const int kWithinTimeout = 400; // milliseconds; the port waits for 500
const int kBeyondTimeout = 600;

const int kDeliveries = 400; // drawn by lot, of each reply

// The damage at every place of every reply, the end included; with one attempt and with two.
QString complaintAboutEverywhere(const Sample &sample, Damage damage, int value = 0)
{
    QString text;
    Scene scene = sample.sceneOfTwo();
    for (int reply = 1; reply <= sample.replies(); ++reply) {
        for (int place = 0; text.isEmpty() && place <= int(sample.replyBytes(reply).size()); ++place) {
            scene.lineFaults = QList<LineFault>() << lineFault(reply, damage, place, value);
            scene.port.retries = 0;
            text = complaintAbout(sample, scene, compared(scene));
            scene.port.retries = 1;
            text += complaintAbout(sample, scene, compared(scene));
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

// By how much the pieces of a reply are late, one after the other; the first is never.
struct Cut
{
    int place; // of the first byte of a piece
    int delay; // milliseconds behind the piece before
};

QList<LineFault> held(int reply, const QList<Cut> &cuts)
{
    QList<LineFault> faults;
    for (int i = 0; i < int(cuts.size()); ++i)
        faults += lineFault(reply, kHold, cuts.at(i).place, cuts.at(i).delay);
    return faults;
}

// By how much a byte is late.
int delayOf(const QList<Cut> &cuts, int place)
{
    int delay = 0;
    for (int i = 0; i < int(cuts.size()); ++i)
        delay += cuts.at(i).place <= place ? cuts.at(i).delay : 0;
    return delay;
}

// How many bytes the driver waits for first: the start of a refusal, the head of an answer. For the rest it
// waits as long again.
int firstWait(const Sample &sample)
{
    return sample.refusal != 0 ? 1 : 7;
}

// The controller's time to reply counts, too, where the first bytes are waited for.
bool isInTime(const QList<Cut> &cuts, int size, int waited)
{
    const int timeout = PortSettings().timeout;
    const int first = delayOf(cuts, waited - 1);
    return FaultPort::kReactionTime + first <= timeout && delayOf(cuts, size - 1) - first <= timeout;
}

// What is wrong with the outcome of a request whose last reply comes in these pieces; empty when nothing is.
QString complaintAboutPieces(const Sample &sample, const QList<Cut> &cuts)
{
    Scene scene = sample.scene();
    scene.lineFaults = held(sample.replies(), cuts);
    const Comparison comparison = compared(scene);
    const Outcome &outcome = comparison.driver.outcomes.at(0);
    const int size = int(sample.replyBytes(sample.replies()).size());
    const bool isRight = isInTime(cuts, size, firstWait(sample)) ? sample.isMetBy(outcome)
                                                                 : outcome.failed && !outcome.isWritten;
    return isRight ? comparison.difference : toString(outcome) + toString(scene);
}

// Pieces of so many bytes that are late by the same.
QList<Cut> evenCuts(int size, int piece)
{
    const int cuts = (size - 1) / piece;
    QList<Cut> result;
    for (int i = 1; i <= cuts; ++i)
        result += Cut{i * piece, kWithinTimeout / cuts};
    return result;
}

// Any number of pieces, at any places; mostly in time.
QList<Cut> drawCuts(Random &random, int size)
{
    const int longest = random.oneIn(4) ? kBeyondTimeout : 2 * kWithinTimeout / size;
    const int one = random.between(1, 6);
    QList<Cut> result;
    for (int place = 1; place < size; ++place) {
        if (random.oneIn(one))
            result += Cut{place, random.between(0, longest)};
    }
    return result;
}

// What is wrong with drawn deliveries of the last reply, of which some come in time and some do not.
QString complaintAboutDraws(const Sample &sample, int draws)
{
    static const quint32 seed = seedOfRun(); // one line for all rows
    Random random(seed);
    const int size = int(sample.replyBytes(sample.replies()).size());
    int inTime = 0;
    for (int i = 0; i < draws; ++i) {
        const QList<Cut> cuts = drawCuts(random, size);
        const QString text = complaintAboutPieces(sample, cuts);
        if (!text.isEmpty())
            return text;
        inTime += isInTime(cuts, size, firstWait(sample)) ? 1 : 0;
    }
    return inTime > 0 && inTime < draws ? QString() : QLatin1String("all deliveries are in time, or none is");
}

// The sample "bytes" with 200 of them; item and result have to live as long.
Sample longSample(QByteArray &item, QByteArray &result)
{
    for (int i = 0; i < 200; ++i)
        result += char(i * 7);
    result = result.toHex();
    item = "04 01 ff 04 06 40" + result;
    Sample sample = ::sample("bytes");
    sample.count = 200;
    sample.item = item.constData();
    sample.result = result.constData();
    return sample;
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

void TestFaultDelivery::repliesInThreePiecesAreGood()
{
    const Sample sample = currentSample();
    const int size = int(sample.replyBytes(sample.replies()).size());
    for (int second = 1; second < size; ++second) {
        for (int third = second + 1; third < size; ++third) {
            const QList<Cut> cuts = QList<Cut>()
                                    << Cut{second, kWithinTimeout / 2} << Cut{third, kWithinTimeout / 2};
            const QString text = complaintAboutPieces(sample, cuts);
            QVERIFY2(text.isEmpty(), qPrintable(text));
        }
    }
}

// Down to every byte alone.
void TestFaultDelivery::repliesInPiecesOfAnySizeAreGood()
{
    const Sample sample = currentSample();
    const int size = int(sample.replyBytes(sample.replies()).size());
    for (int piece = 1; piece <= size; ++piece) {
        const QString text = complaintAboutPieces(sample, evenCuts(size, piece));
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultDelivery::repliesInAnyPiecesAreGoodUntilOneIsLate()
{
    const QString text = complaintAboutDraws(currentSample(), drawsOfRun(kDeliveries));
    QVERIFY2(text.isEmpty(), qPrintable(text));
}

void TestFaultDelivery::aLongReplyInAnyPiecesIsGoodUntilOneIsLate()
{
    QByteArray item;
    QByteArray result;
    const Sample sample = longSample(item, result);
    const QString everyByteAlone =
        complaintAboutPieces(sample, evenCuts(int(sample.replyBytes(sample.replies()).size()), 1));
    QVERIFY2(everyByteAlone.isEmpty(), qPrintable(everyByteAlone));
    const QString text = complaintAboutDraws(sample, drawsOfRun(kDeliveries));
    QVERIFY2(text.isEmpty(), qPrintable(text));
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
