// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulator's frames: built, and found among noise.

#include "conversation.h"
#include "test_class.h"

#include <QtTest>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

const QString kRequest = "68 07 07 68 02 00 6c 32 01 00 00 a1 16";

sim::FrameReader readerOf(const QString &hexText)
{
    sim::FrameReader reader;
    for (const uint8_t byte : frameBytes(hexText))
        reader.push(byte);
    return reader;
}

QString nextFrame(sim::FrameReader &reader)
{
    const std::optional<sim::Frame> frame = reader.next();
    return frame ? hex(frame->wire) : QString();
}

} // namespace

class TestSimulatorLayer2 : public QObject
{
    Q_OBJECT

private slots:
    void shortFrameIsBuilt();
    void checkSumIsReducedModulo256();
    void longFrameCarriesThePdu();
    void emptyAndLargestPduAreFramed();
    void pollIsTakenApart();
    void requestIsTakenApart();
    void frameCountBitsDoNotMatter();
    void frameIsFoundAtItsLastByte();
    void noiseBeforeAFrameIsSkipped_data();
    void noiseBeforeAFrameIsSkipped();
    void damagedFrameIsSkippedAndTheNextOneFound_data();
    void damagedFrameIsSkippedAndTheNextOneFound();
    void framesInsideAFalseLongFrameAreFoundWhenItEnds();
    void abandonedFrameGivesWayAtOnce();
};

void TestSimulatorLayer2::shortFrameIsBuilt()
{
    QCOMPARE(hex(sim::sd1(0, 2, 2)), plain("10 00 02 02 04 16"));
    QCOMPARE(hex(sim::sd1(2, 0, 0x5C)), plain(kPoll));
}

void TestSimulatorLayer2::checkSumIsReducedModulo256()
{
    QCOMPARE(hex(sim::sd1(0x7E, 0x7D, 0x5C)), plain("10 7e 7d 5c 57 16"));
    QCOMPARE(hex(sim::sd2(0x7E, 0x7D, 0x6C, {0xFF, 0xFF})), plain("68 05 05 68 7e 7d 6c ff ff 65 16"));
}

void TestSimulatorLayer2::longFrameCarriesThePdu()
{
    QCOMPARE(hex(sim::sd2(2, 0, 0x6C, {0x32, 0x01, 0x00, 0x00})), plain(kRequest));
}

void TestSimulatorLayer2::emptyAndLargestPduAreFramed()
{
    QCOMPARE(hex(sim::sd2(2, 0, 0x6C, {})), plain("68 03 03 68 02 00 6c 6e 16"));
    const sim::Bytes largest = sim::sd2(2, 0, 0x6C, sim::Bytes(252));
    QCOMPARE(largest.size(), size_t(261));
    QVERIFY(hex(largest).startsWith(plain("68 ff ff 68 02 00 6c 00")));
    sim::FrameReader reader = readerOf(hex(largest));
    QCOMPARE(nextFrame(reader), hex(largest));
}

void TestSimulatorLayer2::pollIsTakenApart()
{
    sim::FrameReader reader = readerOf(kPoll);
    const std::optional<sim::Frame> frame = reader.next();
    QVERIFY(frame);
    QVERIFY(!frame->hasPdu);
    QCOMPARE(int(frame->destination), 2);
    QCOMPARE(int(frame->source), 0);
    QCOMPARE(int(frame->function), 0x5C);
    QCOMPARE(hex(frame->pdu), QString());
    QVERIFY(!reader.next());
}

void TestSimulatorLayer2::requestIsTakenApart()
{
    sim::FrameReader reader = readerOf(kRequest);
    const std::optional<sim::Frame> frame = reader.next();
    QVERIFY(frame);
    QVERIFY(frame->hasPdu);
    QCOMPARE(int(frame->destination), 2);
    QCOMPARE(int(frame->source), 0);
    QCOMPARE(int(frame->function), 0x6C);
    QCOMPARE(hex(frame->pdu), plain("32 01 00 00"));
}

void TestSimulatorLayer2::frameCountBitsDoNotMatter()
{
    for (const int function : {0x4C, 0x5C, 0x6C, 0x7C}) {
        sim::Frame frame;
        frame.function = uint8_t(function);
        QVERIFY(sim::isRequest(frame));
        QVERIFY(sim::isSendAndRequestData(frame));
    }
    sim::Frame answer;
    answer.function = 0x08;
    QVERIFY(!sim::isRequest(answer));
    QVERIFY(!sim::isSendAndRequestData(answer));
    sim::Frame statusRequest;
    statusRequest.function = 0x49;
    QVERIFY(sim::isRequest(statusRequest));
    QVERIFY(!sim::isSendAndRequestData(statusRequest));
}

void TestSimulatorLayer2::frameIsFoundAtItsLastByte()
{
    sim::FrameReader reader;
    sim::Bytes begun = frameBytes(kRequest);
    const uint8_t last = begun.back();
    begun.pop_back();
    for (const uint8_t byte : begun) {
        reader.push(byte);
        QVERIFY(!reader.next());
    }
    reader.push(last);
    QCOMPARE(nextFrame(reader), plain(kRequest));
    QCOMPARE(hex(reader.takeSkipped()), QString());
}

void TestSimulatorLayer2::noiseBeforeAFrameIsSkipped_data()
{
    QTest::addColumn<QString>("noise");
    QTest::newRow("zero") << "00";
    QTest::newRow("acknowledgement of another station") << "e5";
    QTest::newRow("start byte of a poll") << "10";
    QTest::newRow("start bytes of polls") << "10 10 10";
    QTest::newRow("start byte of a request") << "68";
    QTest::newRow("start and length") << "68 1b";
    QTest::newRow("lengths that differ") << "68 05 06 68";
    QTest::newRow("wrong second start byte") << "68 05 05 67";
    QTest::newRow("length 0") << "68 00 00 68";
    QTest::newRow("length 2") << "68 02 02 68";
    QTest::newRow("half a poll") << "10 02 00";
}

void TestSimulatorLayer2::noiseBeforeAFrameIsSkipped()
{
    QFETCH(QString, noise);
    for (const QString &good : {kPoll, kRequest}) {
        sim::FrameReader reader = readerOf(noise + good);
        QCOMPARE(nextFrame(reader), plain(good));
        QCOMPARE(hex(reader.takeSkipped()), plain(noise));
        QCOMPARE(hex(reader.takeSkipped()), QString());
    }
}

void TestSimulatorLayer2::damagedFrameIsSkippedAndTheNextOneFound_data()
{
    QTest::addColumn<QString>("damaged");
    QTest::newRow("poll, check sum") << "10 02 00 5c 5f 16";
    QTest::newRow("poll, end") << "10 02 00 5c 5e 17";
    QTest::newRow("poll, station") << "10 03 00 5c 5e 16";
    QTest::newRow("request, check sum") << "68 07 07 68 02 00 6c 32 01 00 00 a2 16";
    QTest::newRow("request, end") << "68 07 07 68 02 00 6c 32 01 00 00 a1 15";
    QTest::newRow("request, PDU") << "68 07 07 68 02 00 6c 32 01 00 01 a1 16";
    QTest::newRow("request, length 2") << "68 02 02 68 02 00 02 16";
    QTest::newRow("request, too long for its length") << "68 07 07 68 02 00 6c 32 01 00 00 00 a1 16";
}

void TestSimulatorLayer2::damagedFrameIsSkippedAndTheNextOneFound()
{
    QFETCH(QString, damaged);
    sim::FrameReader reader = readerOf(damaged + kPoll);
    QCOMPARE(nextFrame(reader), plain(kPoll));
    QCOMPARE(hex(reader.takeSkipped()), plain(damaged));
}

void TestSimulatorLayer2::framesInsideAFalseLongFrameAreFoundWhenItEnds()
{
    sim::FrameReader reader = readerOf("68 0d 0d 68" + kPoll + kPoll + "00 00");
    QVERIFY(!reader.next());
    reader.push(0x00);
    QCOMPARE(nextFrame(reader), plain(kPoll));
    QCOMPARE(nextFrame(reader), plain(kPoll));
    QVERIFY(!reader.next());
}

void TestSimulatorLayer2::abandonedFrameGivesWayAtOnce()
{
    sim::FrameReader reader = readerOf("68 ff ff 68 02");
    QVERIFY(!reader.next());
    reader.abandon();
    QCOMPARE(hex(reader.takeSkipped()), plain("68 ff ff 68 02"));
    for (const uint8_t byte : frameBytes(kPoll))
        reader.push(byte);
    QCOMPARE(nextFrame(reader), plain(kPoll));
}

TEST_CLASS(TestSimulatorLayer2)
#include "test_layer2.moc"
