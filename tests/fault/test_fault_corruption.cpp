// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Wrong bytes in what the controller says: every byte of every kind of reply with every other value, and
// every two of them.

#include "hex.h"
#include "random.h"
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
    void twoWrongBytesOfAnyReplyPassOnlyWhereNothingElseLooks_data() { addSampleRows(); }
    void twoWrongBytesOfAnyReplyPassOnlyWhereNothingElseLooks();
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

int at(const QByteArray &frame, int place)
{
    return static_cast<unsigned char>(frame.at(place));
}

const int kItem = 19; // behind frame and header
const int kData = 25;

// What the host has of an answer of which nothing shows that it is wrong.
struct Believed
{
    bool isBelieved;
    QByteArray data; // of a read
};

const Believed kNotBelieved = {false, QByteArray()};

// What stands where in the answer to a sample that reads. A length that says more than the frame holds is
// seen.
struct ReadForm
{
    const char *name;
    int transportSize; // 4: the length counts bits; 9: bytes
    int recordSize;    // bytes of an element on the line, of which a memory area must have all
    int valuePlace;    // in it
    int valueSize;
    int resultSize; // to which the values are cut or filled; 0: they stay as they are
};

// clang-format off
const ReadForm kReadForms[] = {
    {"bytes",         4, 1, 0, 1, 4},
    {"words",         4, 2, 0, 2, 4},
    {"double words",  4, 4, 0, 4, 4},
    {"timers",        9, 5, 3, 2, 0},
    {"counters",      9, 3, 1, 2, 4},
    {"fast counters", 9, 5, 1, 4, 0},
};
// clang-format on

QByteArray reversed(const QByteArray &value)
{
    QByteArray result;
    for (int i = int(value.size()) - 1; i >= 0; --i)
        result += value.at(i);
    return result;
}

bool isGoodItem(const QByteArray &frame, int transportSize)
{
    return frame.mid(kItem, 3) == bytes("04 01 ff") && at(frame, kItem + 3) == transportSize;
}

int lengthOf(const QByteArray &frame)
{
    return at(frame, kItem + 4) * 256 + at(frame, kItem + 5);
}

int sizeOfData(const QByteArray &frame)
{
    return int(frame.size()) - 2 - kData;
}

// How many records are taken of a good item, 0 when none are: whole ones of memory, and begun ones of
// objects.
int recordsOf(const QByteArray &frame, int transportSize, int recordSize)
{
    const int length = lengthOf(frame);
    const int records = transportSize == 4 ? length / 8 / recordSize : (length + recordSize - 1) / recordSize;
    const int taken = transportSize == 4 ? records * recordSize : length;
    return isGoodItem(frame, transportSize) && taken <= sizeOfData(frame) ? records : 0;
}

Believed believedValues(const QByteArray &frame, const ReadForm &form)
{
    const int records = recordsOf(frame, form.transportSize, form.recordSize);
    QByteArray data;
    for (int i = 0; i < records; ++i)
        data += reversed(frame.mid(kData + i * form.recordSize + form.valuePlace, form.valueSize));
    if (form.resultSize > 0)
        data = data.left(form.resultSize) + QByteArray(qMax(0, form.resultSize - int(data.size())), '\0');
    return records > 0 ? Believed{true, data} : kNotBelieved;
}

// Eight bits from the first on: one byte, and no other length.
Believed believedBits(const QByteArray &frame)
{
    if (recordsOf(frame, 4, 1) != 1)
        return kNotBelieved;
    QByteArray data;
    for (int bit = 0; bit < 8; ++bit)
        data += char(at(frame, kData) >> bit & 1);
    return Believed{true, data};
}

Believed believedStatuses(const QByteArray &frame, int recordSize, int mask)
{
    const int records = recordsOf(frame, 9, recordSize);
    QByteArray data;
    for (int i = 0; i < records; ++i)
        data += (at(frame, kData + i * recordSize) & mask) != 0 ? '\1' : '\0';
    return records > 0 ? Believed{true, data} : kNotBelieved;
}

Believed believedRead(const Sample &sample, const QByteArray &frame)
{
    const QByteArray name = sample.name;
    for (const ReadForm &form : kReadForms) {
        if (name == form.name)
            return believedValues(frame, form);
    }
    if (name == "bits")
        return believedBits(frame);
    if (name == "timer bits")
        return believedStatuses(frame, 5, 0x02);
    return name == "counter bits" ? believedStatuses(frame, 3, 0x10) : kNotBelieved;
}

// One code for a whole item; for bits one for each that the answer says it has.
Believed believedWrite(const Sample &sample, const QByteArray &frame)
{
    const int count = at(frame, kItem + 1);
    const bool isCountGood = sample.dataType == kBits ? count > 0 : count == 1;
    const QByteArray codes = frame.mid(kItem + 2, int(frame.size()) - 2 - kItem - 2).left(count);
    const bool isGood = at(frame, kItem) == 5 && isCountGood && codes == QByteArray(count, '\xff');
    return {isGood, QByteArray()};
}

// What is believed of a frame as long as the answer to the sample:
//    68 LE LE 68 00 02 08  32 MT 0000 0001 00PP xxxx 0000  item  FCS 16
// MT is 2 or 3, PP 0 or 2; nothing looks at the length xxxx.
Believed believed(const Sample &sample, const QByteArray &frame)
{
    const QByteArray good = sample.replyBytes(sample.replies());
    if (sample.refusal != 0 || frame.left(7) != good.left(7) || !frame.endsWith('\x16') || !isSumGood(frame))
        return kNotBelieved;
    const bool isHeaderGood = frame.at(7) == '\x32' && isOneOf(frame.at(8), 2, 3) &&
                              frame.mid(9, 5) == bytes("00 00 00 01 00") && isOneOf(frame.at(14), 0, 2) &&
                              frame.mid(17, 2) == bytes("00 00");
    if (!isHeaderGood)
        return kNotBelieved;
    return sample.isWrite ? believedWrite(sample, frame) : believedRead(sample, frame);
}

QByteArray with(QByteArray frame, int place, int change)
{
    frame[place] = char(frame.at(place) + change);
    return frame;
}

// The controller's last reply replaced by one as long.
Scene sceneWithAnswer(const Sample &sample, const QByteArray &frame)
{
    const QByteArray good = sample.replyBytes(sample.replies());
    Scene scene = sample.scene();
    for (int place = 0; place < int(frame.size()); ++place) {
        if (frame.at(place) != good.at(place))
            scene.lineFaults += lineFault(sample.replies(), kCorrupt, place, frame.at(place));
    }
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
    const Believed expected = believed(sample, frame);
    const Comparison comparison = compared(sceneWithAnswer(sample, frame));
    const Outcome &outcome = comparison.driver.outcomes.at(0);
    ++pairs.all;
    pairs.believed += expected.isBelieved ? 1 : 0;
    return comparison.difference.isEmpty() && outcome.failed != expected.isBelieved &&
           outcome.isWritten == (sample.isWrite && expected.isBelieved) && outcome.data == expected.data;
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

// Values that mean something at one place of an answer or another; half of all wrong bytes are one of these.
const int kMeaningful[] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x08, 0x09, 0x0a,
                           0x10, 0x16, 0x18, 0x20, 0x30, 0x32, 0x68, 0xe5, 0xff};

const int kDrawsOfAPair = 8;

// What is added to the byte there, so that it is another one.
int drawChange(Random &random, char good)
{
    const int value = random.oneIn(2) ? random.oneOf(kMeaningful) : random.below(0x100);
    return char(value) == good ? 0x80 : value - good;
}

// Two bytes are wrong: the first is drawn, and the second keeps the sum right, or is drawn, too.
QByteArray drawPair(Random &random, const QByteArray &good, int first, int second, bool cancels)
{
    const int change = drawChange(random, good.at(first));
    const bool isSecondTheSum = second == int(good.size()) - 2;
    if (cancels)
        return with(with(good, first, change), second, isSecondTheSum ? change : -change);
    return with(with(good, first, change), second, drawChange(random, good.at(second)));
}

// The first pair drawn for two places cancels, whatever the seed.
bool areDrawnPairsJudged(Random &random, const Sample &sample, int first, int second, Pairs &pairs)
{
    const QByteArray good = sample.replyBytes(sample.replies());
    for (int draw = drawsOfRun(kDrawsOfAPair); draw > 0; --draw) {
        const bool cancels = draw == 1 || !random.oneIn(4);
        if (!isPairJudged(sample, drawPair(random, good, first, second, cancels), pairs))
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

// The data that are taken are those that stand in the frame, and what is no good reply never becomes a value:
// for a refused read two bytes are not enough, for a refused write they are.
void TestFaultCorruption::twoWrongBytesOfAnyReplyPassOnlyWhereNothingElseLooks()
{
    const Sample sample = currentSample();
    const int size = int(sample.replyBytes(sample.replies()).size());
    static const quint32 seed = seedOfRun(); // one line for all rows
    Random random(seed);
    Pairs pairs = {0, 0};
    for (int first = 0; first < size; ++first) {
        for (int second = first + 1; second < size; ++second)
            QVERIFY2(areDrawnPairsJudged(random, sample, first, second, pairs),
                     qPrintable(QString::fromLatin1("bytes %1 and %2").arg(first).arg(second)));
    }
    QVERIFY(pairs.believed < pairs.all);
    QVERIFY2(pairs.believed > 0 || sample.reason, "none of the pairs is one that nobody can see");
    QVERIFY2(pairs.believed == 0 || sample.isWrite || !sample.reason, "two bytes made a value of a refusal");
}

TEST_CLASS(TestFaultCorruption)

#include "test_fault_corruption.moc"
