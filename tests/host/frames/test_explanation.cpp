// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames byte by byte.

#include "host/frames/explanation.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

#include <vector>

using namespace host;

namespace {

const char kQuestion[] = "10 02 00 49 4b 16";
const char kRequest[] =
    "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 02 00 04 00 01 84 00 03 20 "
    "8f 16";
const char kWordRequest[] =
    "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 04 00 02 00 01 84 00 "
    "03 20 8f 16";
const char kAnswer[] =
    "68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 04 00 20 11 22 33 44 1c 16";
const char kTimerRequest[] =
    "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 1f 00 01 00 00 1f 00 "
    "00 25 45 16";
const char kTimerAnswer[] =
    "68 1a 1a 68 00 02 08 32 03 00 00 00 01 00 02 00 09 00 00 04 01 ff 09 00 05 02 00 00 01 "
    "2c 8c 16";
const char kTwoBits[] =
    "68 32 32 68 02 00 6c 32 01 00 00 00 01 00 1a 00 0b 05 02 12 0a 10 01 00 01 00 01 84 00 00 53 "
    "12 0a 10 01 00 01 00 01 84 00 00 54 00 03 00 01 01 00 00 03 00 01 01 e5 16";
const char kTwoBitsAnswer[] = "68 13 13 68 00 02 08 32 03 00 00 00 01 00 02 00 02 00 00 05 02 ff 05 4f 16";
const char kRefused[] = "68 0f 0f 68 00 02 08 32 02 00 00 00 01 00 00 00 00 81 04 c4 16";

ExplainedFrame explained(const char *frame)
{
    return FrameExplainer().explain(bytes(frame));
}

// "field: meaning" of one byte, "!" before it when it is at fault.
QString told(const ExplainedFrame &frame, int offset)
{
    const ExplainedByte &byte = frame.bytes.at(size_t(offset));
    return QString(byte.isFault ? "! " : "") + byte.field + ": " + byte.meaning;
}

QString toldOfAnswer(const char *request, const char *answer, int offset)
{
    FrameExplainer explainer;
    explainer.explain(bytes(request));
    return told(explainer.explain(bytes(answer)), offset);
}

} // namespace

class TestExplanation : public QObject
{
    Q_OBJECT

private slots:
    void bytesHaveTheirMeaning_data();
    void bytesHaveTheirMeaning();
    void everyCodeHasItsName_data();
    void everyCodeHasItsName();
    void soundFramesHaveNoFault_data();
    void soundFramesHaveNoFault();
    void dataHaveTheAddressesOfTheRequest();
    void returnCodesOfBitsHaveTheirAddresses();
    void whatIsWrongIsTold_data();
    void whatIsWrongIsTold();
    void aCutFrameTellsOnceWhatIsMissing();
    void everyCutIsExplainedAsFarAsItGoes_data();
    void everyCutIsExplainedAsFarAsItGoes();
    void everyChangedByteIsNoticed_data();
    void everyChangedByteIsNoticed();
    void framesBehindEachOtherAreSplit_data();
    void framesBehindEachOtherAreSplit();
};

void TestExplanation::bytesHaveTheirMeaning_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("meaning");
    const auto row = [](const char *frame, int offset, const char *meaning) {
        QTest::newRow(meaning) << bytes(frame) << offset << QString(meaning);
    };
    row("e5", 0, "acknowledgement: taken: ask for the answer");
    row("10 02 00 5c 5e 16", 1, "destination: station 2");
    row("10 02 00 5c 5e 16", 3, "function code: data or poll, to be answered; sequence bit 0");
    row("10 02 00 5d 5f 16", 3, "function code: data or poll with priority, to be answered; sequence bit 0");
    row("10 02 00 7c 7e 16", 3, "function code: data or poll, to be answered; sequence bit 1");
    row("10 02 00 49 4b 16", 3, "function code: question for the station's state");
    row("10 7f 00 49 c8 16", 1, "destination: all stations");
    row("10 02 00 5c 5e 16", 4, "check sum: right");
    row("10 00 02 02 04 16", 3, "function code: refused: no resource");
    row("10 00 02 03 05 16", 3, "function code: refused: service not active");
    row("10 00 02 09 0b 16", 3, "function code: no data to answer with");
    row(kRequest, 1, "length: 27 bytes from the destination to the end of the PDU");
    row(kRequest, 6, "function code: data or poll, to be answered; begins a sequence");
    row("68 03 03 68 02 00 6c 6e 16", 1, "length: 3 bytes from the destination to the end of the PDU");
    row(kRequest, 7, "protocol: S7");
    row(kRequest, 8, "message type: job: a request");
    row(kRequest, 11, "reference: 1");
    row(kRequest, 12, "reference: ");
    row(kRequest, 13, "parameter length: 14 bytes");
    row(kRequest, 15, "data length: 0 bytes");
    row(kRequest, 17, "function: read variables");
    row(kRequest, 22, "transport size: byte");
    row(kRequest, 23, "element count: 4 bytes");
    row(kRequest, 25, "data block: 1, variable memory");
    row(kRequest, 27, "area: V");
    row(kRequest, 28, "address: VB100 to VB103");
    row("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 02 00 04 00 01 84 00 03 23 90 16",
        28, "address: VB100 to VB103, from bit 3 on");
    row(kWordRequest, 28, "address: VW100 to VW102");
    row(kTimerRequest, 25, "data block: none");
    row(kTimerRequest, 28, "address: T37");
    row(kTwoBits, 18, "item count: 2");
    row(kTwoBits, 28, "item 1 address: V10.3");
    row(kTwoBits, 40, "item 2 address: V10.4");
    row(kTwoBits, 47, "item 1 data: V10.3: 1");
    row(kTwoBits, 48, "item 1 filler: to an even number of bytes");
    row(kTwoBits, 53, "item 2 data: V10.4: 1");
    row(kAnswer, 8, "message type: acknowledgement with data: an answer");
    row(kAnswer, 17, "error class: no error");
    row(kAnswer, 21, "return code: done");
    row(kAnswer, 22, "data kind: length in bits");
    row(kAnswer, 25, "data: 17");
    row(kTimerAnswer, 22, "data kind: length in bytes");
    row(kRefused, 17, "error class: the request does not fit the relationship");
    row("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 0a 53 16", 21,
        "return code: no such object, or wrong length");
    row("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 02 00 01 00 00 77 00 00 08 31 16",
        28, "address: area 77 B1");
    row("ab", 0, "! noise: ");
}

void TestExplanation::bytesHaveTheirMeaning()
{
    QFETCH(QByteArray, frame);
    QFETCH(int, offset);
    QTEST(told(FrameExplainer().explain(frame), offset), "meaning");
}

void TestExplanation::everyCodeHasItsName_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("meaning");
    const auto row = [](const char *frame, int offset, int code, const char *meaning) {
        QByteArray changed = bytes(frame);
        changed[offset] = char(code);
        QTest::newRow(meaning) << changed << offset << QString(meaning);
    };
    row(kQuestion, 3, 0x43, "function code: data, to be acknowledged");
    row(kQuestion, 3, 0x44, "function code: data, not acknowledged");
    row(kQuestion, 3, 0x45, "function code: data with priority, to be acknowledged");
    row(kQuestion, 3, 0x46, "function code: data with priority, not acknowledged");
    row(kQuestion, 3, 0x49, "function code: question for the station's state");
    row(kQuestion, 3, 0x4c, "function code: data or poll, to be answered");
    row(kQuestion, 3, 0x4d, "function code: data or poll with priority, to be answered");
    row(kQuestion, 3, 0x4e, "function code: question for the station's identity");
    row(kQuestion, 3, 0x4f, "function code: question for the station's services");
    row(kQuestion, 3, 0x00, "function code: taken");
    row(kQuestion, 3, 0x01, "function code: refused: user error");
    row(kQuestion, 3, 0x02, "function code: refused: no resource");
    row(kQuestion, 3, 0x03, "function code: refused: service not active");
    row(kQuestion, 3, 0x08, "function code: answer with data");
    row(kQuestion, 3, 0x09, "function code: no data to answer with");
    row(kQuestion, 3, 0x0a, "function code: answer with data of high priority");
    row(kQuestion, 3, 0x0c, "function code: answer with data, no resource");
    row(kQuestion, 3, 0x0d, "function code: answer with data of high priority, no resource");
    row(kRequest, 8, 0x01, "message type: job: a request");
    row(kAnswer, 8, 0x02, "message type: acknowledgement: an answer");
    row(kAnswer, 8, 0x03, "message type: acknowledgement with data: an answer");
    row(kRequest, 8, 0x07, "message type: user data");
    row(kRequest, 17, 0x04, "function: read variables");
    row(kRequest, 17, 0x05, "function: write variables");
    row(kRequest, 17, 0xf0, "function: set up communication");
    row(kRequest, 17, 0x1a, "function: request download");
    row(kRequest, 17, 0x1d, "function: start upload");
    row(kRequest, 17, 0x28, "function: start, or another control");
    row(kRequest, 17, 0x29, "function: stop");
    row(kAnswer, 17, 0x00, "error class: no error");
    row(kAnswer, 17, 0x81, "error class: the request does not fit the relationship");
    row(kAnswer, 17, 0x82, "error class: the object's definition");
    row(kAnswer, 17, 0x83, "error class: no resources");
    row(kAnswer, 17, 0x84, "error class: the service failed");
    row(kAnswer, 17, 0x85, "error class: the PDU is wrong");
    row(kAnswer, 17, 0x87, "error class: no access");
    row(kAnswer, 21, 0x01, "return code: hardware fault");
    row(kAnswer, 21, 0x03, "return code: access not allowed");
    row(kAnswer, 21, 0x05, "return code: no such address");
    row(kAnswer, 21, 0x06, "return code: type not supported");
    row(kAnswer, 21, 0x0a, "return code: no such object, or wrong length");
    row(kAnswer, 21, 0xff, "return code: done");
    row(kRequest, 27, 0x81, "area: I");
    row(kRequest, 27, 0x82, "area: Q");
    row(kRequest, 27, 0x83, "area: M");
    row(kRequest, 27, 0x84, "area: V");
    row(kRequest, 27, 0x04, "area: S");
    row(kRequest, 27, 0x05, "area: SM");
    row(kRequest, 27, 0x06, "area: AI");
    row(kRequest, 27, 0x07, "area: AQ");
    row(kRequest, 27, 0x1e, "area: C");
    row(kRequest, 27, 0x1f, "area: T");
    row(kRequest, 27, 0x20, "area: HC");
}

void TestExplanation::everyCodeHasItsName()
{
    QFETCH(QByteArray, frame);
    QFETCH(int, offset);
    QTEST(told(FrameExplainer().explain(frame), offset), "meaning");
}

void TestExplanation::soundFramesHaveNoFault_data()
{
    QTest::addColumn<QByteArray>("frame");
    const char *const frames[] = {"e5",          "10 02 00 5c 5e 16", kRequest, kWordRequest,   kAnswer,
                                  kTimerRequest, kTimerAnswer,        kTwoBits, kTwoBitsAnswer, kRefused};
    for (const char *frame : frames)
        QTest::newRow(frame) << bytes(frame);
}

void TestExplanation::soundFramesHaveNoFault()
{
    QFETCH(QByteArray, frame);
    const ExplainedFrame result = FrameExplainer().explain(frame);
    QCOMPARE(result.faults.join("; "), QString());
    QCOMPARE(int(result.bytes.size()), int(frame.size()));
}

void TestExplanation::dataHaveTheAddressesOfTheRequest()
{
    QCOMPARE(toldOfAnswer(kRequest, kAnswer, 26), QString("data: VB101: 34"));
    QCOMPARE(toldOfAnswer(kWordRequest, kAnswer, 27), QString("data: VW102: 13124"));
    QCOMPARE(toldOfAnswer(kWordRequest, kAnswer, 28), QString("data: "));
    QCOMPARE(toldOfAnswer(kTimerRequest, kTimerAnswer, 25), QString("data: T37: 300, status 02"));
}

void TestExplanation::returnCodesOfBitsHaveTheirAddresses()
{
    QCOMPARE(toldOfAnswer(kTwoBits, kTwoBitsAnswer, 22), QString("V10.4 return code: no such address"));
    QCOMPARE(told(explained(kTwoBitsAnswer), 22), QString("item 2 return code: no such address"));
}

void TestExplanation::whatIsWrongIsTold_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char *frame, const char *fault) {
        QTest::newRow(fault) << bytes(frame) << QString(fault);
    };
    row("10 02 00 5c 5f 16", "check sum: should be 5E");
    row("10 02 00 5c 5e 17", "end: should be 16");
    row("10 80 00 5c dc 16", "destination: station 128");
    row("68 03 04 68 02 00 6c 6e 16", "length again: should be the same: 03");
    row("68 03 03 69 02 00 6c 6e 16", "start again: should be 68");
    row("68 02 02 68 02 00 6c 6e", "length: too short: three bytes at least");
    row("68 0f 0f 68 00 02 08 32 02 00 07 00 01 00 00 00 00 81 04 cb 16", "reserved: should be 0000");
    row("68 0f 0f 68 00 02 08 32 02 00 00 00 01 00 00 00 02 81 04 c6 16",
        "data length: 2 bytes, with the parameters 2, but 0 stand behind the header");
    row("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 04 01 ff 47 16",
        "there are no bytes for \"data kind\" within the lengths");
    row("68 14 14 68 00 02 08 32 03 00 00 00 01 00 02 00 03 00 00 05 01 ff 01 02 4d 16",
        "2 bytes more than the fields before them account for");
    row("c3 00", "no frame begins so");
}

void TestExplanation::whatIsWrongIsTold()
{
    QFETCH(QByteArray, frame);
    QFETCH(QString, fault);
    const QStringList faults = FrameExplainer().explain(frame).faults;
    QVERIFY2(faults.contains(fault), qPrintable(faults.join("; ")));
}

void TestExplanation::aCutFrameTellsOnceWhatIsMissing()
{
    QCOMPARE(explained("68 19 19 68 00 02 08 32 03 00 00 00 01").faults.join("; "),
             QString("cut: 18 of 31 bytes are missing, from \"parameter length\" on"));
    QCOMPARE(explained("10 02").faults.join("; "),
             QString("cut: 4 of 6 bytes are missing, from \"source\" on"));
    QCOMPARE(explained("68").faults.join("; "), QString("cut: it ends before \"length\""));
}

void TestExplanation::everyCutIsExplainedAsFarAsItGoes_data()
{
    soundFramesHaveNoFault_data();
}

// In memory of its own size, so that a look behind its end is found by a sanitizer.
void TestExplanation::everyCutIsExplainedAsFarAsItGoes()
{
    QFETCH(QByteArray, frame);
    for (int size = 1; size < frame.size(); ++size) {
        const std::vector<char> memory(frame.begin(), frame.begin() + size);
        const ExplainedFrame result =
            FrameExplainer().explain(QByteArray::fromRawData(memory.data(), int(memory.size())));
        QCOMPARE(int(result.bytes.size()), size);
        QCOMPARE(int(result.faults.size()), 1);
        for (int i = 0; i < size; ++i)
            QCOMPARE(result.bytes.at(size_t(i)).offset, i);
    }
}

void TestExplanation::everyChangedByteIsNoticed_data()
{
    soundFramesHaveNoFault_data();
}

// The check sum finds every single change behind the lengths, the rest has one value only.
void TestExplanation::everyChangedByteIsNoticed()
{
    QFETCH(QByteArray, frame);
    for (int place = 0; place < frame.size(); ++place)
        for (int change = 1; change < 256; ++change) {
            QByteArray changed = frame;
            changed[place] = char(uchar(frame.at(place)) ^ uchar(change));
            const ExplainedFrame result = FrameExplainer().explain(changed);
            QCOMPARE(int(result.bytes.size()), int(changed.size()));
            const bool isOtherFrame = place == 0 && (changed.at(0) == '\xe5' || changed.size() == 1);
            QVERIFY2(isOtherFrame || !result.faults.isEmpty(), changed.toHex(' ').constData());
        }
}

void TestExplanation::framesBehindEachOtherAreSplit_data()
{
    QTest::addColumn<QByteArray>("all");
    QTest::addColumn<QString>("frames");
    const auto row = [](const char *name, const char *all, const char *frames) {
        QTest::newRow(name) << bytes(all) << QString(frames);
    };
    row("nothing", "", "");
    row("one behind the other", "e5 10 02 00 5c 5e 16 e5", "e5|1002005c5e16|e5");
    row("noise stays together", "00 01 e5 ff", "0001|e5|ff");
    row("by its length", "68 03 03 68 00 02 08 0a 16 e5",
        "68030368000208"
        "0a16|e5");
    row("cut at the end", "e5 68 09 09", "e5|680909");
    row("a start alone", "e5 68", "e5|68");
}

void TestExplanation::framesBehindEachOtherAreSplit()
{
    QFETCH(QByteArray, all);
    QStringList frames;
    for (const QByteArray &frame : splitFrames(all))
        frames << hex(frame);
    QTEST(frames.join('|'), "frames");
}

TEST_CLASS(TestExplanation)

#include "test_explanation.moc"
