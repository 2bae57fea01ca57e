// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Wrong bytes in what the controller says: every byte of every kind of reply, with every other value.

#include "hex.h"
#include "samples.h"
#include "test_class.h"

#include <QtTest>

class TestFaultCorruption : public QObject
{
    Q_OBJECT

private slots:
    void undisturbedExchangesEndAsTheyShould_data() { addSampleRows(); }
    void undisturbedExchangesEndAsTheyShould();
    void oneWrongByteIsAlwaysFound_data() { addSampleRows(); }
    void oneWrongByteIsAlwaysFound();
    void oneWrongByteUnderAGoodCheckSumIsJudgedByWhatItSays_data() { addSampleRows(); }
    void oneWrongByteUnderAGoodCheckSumIsJudgedByWhatItSays();
    void twoWrongBytesPassOnlyWhenTheyCancelWhereNothingElseLooks();
};

namespace {

// Every other value of every byte of one reply.
QList<LineFault> wrongBytes(const Sample &sample, int reply)
{
    const QByteArray good = sample.replyBytes(reply);
    QList<LineFault> faults;
    for (int place = 0; place < int(good.size()); ++place) {
        for (int value = 0; value <= 0xff; ++value) {
            if (value != static_cast<unsigned char>(good.at(place)))
                faults += lineFault(reply, kCorrupt, place, value);
        }
    }
    return faults;
}

bool isOneOf(char byte, char first, char second)
{
    return byte == first || byte == second;
}

bool isSumGood(const QByteArray &frame)
{
    int sum = 0;
    for (int i = 4; i < int(frame.size()) - 2; ++i)
        sum += frame.at(i);
    return char(sum) == frame.at(frame.size() - 2);
}

// The data of an answer to the sample "bytes", null when a reader can see that it is wrong:
//    68 19 19 68 00 02 08  32 MT 0000 0001 00PP xxxx 0000  04 01 ff 04 LLLL  data  FCS 16
QByteArray believable(const QByteArray &frame)
{
    const bool isHeadGood = frame.left(7) == bytes("68 19 19 68 00 02 08") && frame.endsWith('\x16');
    const bool isHeaderGood = frame.at(7) == '\x32' && isOneOf(frame.at(8), 2, 3) &&
                              frame.mid(9, 5) == bytes("00 00 00 01 00") && isOneOf(frame.at(14), 0, 2) &&
                              frame.mid(17, 2) == bytes("00 00");
    const bool isItemGood = frame.mid(19, 5) == bytes("04 01 ff 04 00");
    const int count = static_cast<unsigned char>(frame.at(24)) / 8;
    if (!isHeadGood || !isHeaderGood || !isItemGood || !isSumGood(frame) || count < 1 || count > 4)
        return QByteArray();
    return frame.mid(25, count) + QByteArray(4 - count, '\0');
}

QByteArray with(QByteArray frame, int place, int change)
{
    frame[place] = char(frame.at(place) + change);
    return frame;
}

// The sample "bytes", the controller's answer replaced by one as long.
Scene sceneWithAnswer(const Sample &sample, const QByteArray &frame)
{
    Scene scene = sample.scene();
    for (int place = 0; place < int(frame.size()); ++place)
        scene.lineFaults += lineFault(2, kCorrupt, place, frame.at(place));
    return scene;
}

// How many pairs there were, and how many of them no reader can see.
struct Pairs
{
    int all;
    int believed;
};

// What is added to the first byte. To the second comes what cancels it in the sum, seen from another byte of
// the sum or from the check sum itself, and something that never does.
const int kChanges[] = {0x01, 0x02, 0x03, 0x04, 0x08, 0x0f, 0x10, 0x20,
                        0x33, 0x40, 0x7f, 0x81, 0xaa, 0xf0, 0xff};

bool isPairJudged(const Sample &sample, const QByteArray &frame, Pairs &pairs)
{
    const QByteArray expected = believable(frame);
    const Comparison comparison = compared(sceneWithAnswer(sample, frame));
    const Outcome &outcome = comparison.driver.outcomes.at(0);
    ++pairs.all;
    pairs.believed += expected.isNull() ? 0 : 1;
    return comparison.difference.isEmpty() && outcome.failed == expected.isNull() && outcome.data == expected;
}

bool arePairsJudged(const Sample &sample, int first, int second, Pairs &pairs)
{
    const QByteArray good = sample.replyBytes(2);
    for (int change : kChanges) {
        const QByteArray half = with(good, first, change);
        if (!isPairJudged(sample, with(half, second, -change), pairs) ||
            !isPairJudged(sample, with(half, second, change), pairs) ||
            !isPairJudged(sample, with(half, second, 0x80), pairs))
            return false;
    }
    return true;
}

} // namespace

void TestFaultCorruption::undisturbedExchangesEndAsTheyShould()
{
    const Sample sample = currentSample();
    const Comparison comparison = compared(sample.scene());
    QVERIFY2(sample.isMetBy(comparison.driver.outcomes.at(0)),
             qPrintable(toString(comparison.driver.outcomes.at(0))));
    QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
}

void TestFaultCorruption::oneWrongByteIsAlwaysFound()
{
    const Sample sample = currentSample();
    Scene scene = sample.scene();
    for (int reply = 1; reply <= sample.replies(); ++reply) {
        const QList<LineFault> faults = wrongBytes(sample, reply);
        for (int i = 0; i < int(faults.size()); ++i) {
            scene.lineFaults = faults.mid(i, 1);
            const Comparison comparison = compared(scene);
            const Outcome &outcome = comparison.driver.outcomes.at(0);
            QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
            QVERIFY2(outcome.failed && !outcome.reason.isEmpty() && outcome.data.isEmpty() &&
                         !outcome.isWritten,
                     qPrintable(toString(scene)));
        }
    }
}

void TestFaultCorruption::oneWrongByteUnderAGoodCheckSumIsJudgedByWhatItSays()
{
    const Sample sample = currentSample();
    const int reply = sample.replies();
    const QList<LineFault> faults = wrongBytes(sample, reply);
    Scene scene = sample.scene();
    for (int i = 0; i < int(faults.size()); ++i) {
        scene.lineFaults = faults.mid(i, 1) << lineFault(reply, kSeal);
        const Comparison comparison = compared(scene);
        QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
    }
}

// Two bytes whose changes cancel in the sum cannot be told from good ones where no rule looks at them.
void TestFaultCorruption::twoWrongBytesPassOnlyWhenTheyCancelWhereNothingElseLooks()
{
    const Sample bytesRead = sample("bytes");
    const int size = int(bytesRead.replyBytes(2).size());
    Pairs pairs = {0, 0};
    for (int first = 0; first < size; ++first) {
        for (int second = first + 1; second < size; ++second)
            QVERIFY2(arePairsJudged(bytesRead, first, second, pairs),
                     qPrintable(QString::fromLatin1("bytes %1 and %2").arg(first).arg(second)));
    }
    QVERIFY(pairs.believed > 0 && pairs.believed < pairs.all);
}

TEST_CLASS(TestFaultCorruption)

#include "test_fault_corruption.moc"
