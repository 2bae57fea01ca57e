// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The builders of frames and requests against the same frames written as text.

#include "hex_text.h"
#include "lots.h"

#include "simatic_s7_200_ppi/ppi_address.h"
#include "simatic_s7_200_ppi/ppi_layer2.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "test_class.h"

#include <QtTest>

class TestBuilders : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { lots::useSeedOfRun(); }
    void polls();
    void requestFramesOfAnyPdu();
    void memoryReads();
    void objectReads();
    void memoryReadsOfElements();
    void memoryWrites();
    void timerAndCounterWrites();
    void bitWrites();
    void fittedData();
    void addressTexts();
};

namespace {

using hextext::field;
using hextext::item;
using hextext::job;
using hextext::longFrame;
using hextext::ofBytes;

// What every request draws: who asks whom, and the reference before it.
struct Head
{
    int da = *rc::gen::inRange(0, 0x100);
    int sa = *rc::gen::inRange(0, 0x100);
    int before = *lots::word();

    int reference() const { return (before + 1) % 0x10000; }
    unsigned char destination() const { return static_cast<unsigned char>(da); }
    unsigned char source() const { return static_cast<unsigned char>(sa); }
};

QByteArray prefixBytes(const std::string &prefix)
{
    return QByteArray::fromStdString(prefix);
}

bool isObject(const std::string &prefix)
{
    return prefix == "T" || prefix == "C" || prefix == "HC";
}

uint64_t wireAddress(const std::string &prefix, uint32_t number)
{
    return isObject(prefix) ? uint64_t(number) : uint64_t(number) * 8;
}

int widthOf(const std::string &prefix)
{
    const char last = prefix.empty() ? ' ' : prefix.back();
    return last == 'D' ? 4 : last == 'W' ? 2 : 1;
}

int transportSizeOf(int width)
{
    return width == 4 ? 6 : width == 2 ? 4 : 2;
}

std::string writeJob(int reference, const std::string &itemText, const std::string &payload)
{
    const int bits = hextext::sizeOf(payload) * 8;
    return job(reference, "0501" + itemText, "0004" + field(uint64_t(bits), 4) + payload);
}

// The digits of each element of that many bytes in the opposite order of bytes, zeros behind the last.
std::string turned(const QByteArray &data, int width)
{
    std::string digits = ofBytes(data);
    while (digits.size() % size_t(2 * width) != 0)
        digits += "00";
    std::string result;
    for (size_t element = 0; element < digits.size(); element += size_t(2 * width)) {
        for (int i = width - 1; i >= 0; --i)
            result += digits.substr(element + size_t(2 * i), 2);
    }
    return result;
}

} // namespace

void TestBuilders::polls()
{
    QVERIFY(rc::check("10 DA SA 5C FCS 16", [] {
        const Head head;
        const QByteArray frame = S7_200_PPIPackLayer2SD1Poll(head.destination(), head.source());
        RC_ASSERT(ofBytes(frame) == hextext::shortFrame(head.da, head.sa, 0x5c));
    }));
}

void TestBuilders::requestFramesOfAnyPdu()
{
    QVERIFY(rc::check("68 LE LE 68 DA SA 6C PDU FCS 16, of 0 to 700 bytes", [] {
        const Head head;
        const QByteArray pdu = *lots::bytes(700);
        const QByteArray frame = S7_200_PPIPackLayer2SD2Request(head.destination(), head.source(), pdu);
        RC_ASSERT(ofBytes(frame) == longFrame(head.da, head.sa, 0x6c, ofBytes(pdu)));
    }));
}

void TestBuilders::memoryReads()
{
    QVERIFY(rc::check("bytes are asked for in the elements of the prefix", [] {
        const Head head;
        const auto prefix = *lots::prefix();
        const auto number = *lots::doubleWord();
        const int bytes = *lots::word();
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray frame =
            S7_200_PPIPackReadBytesReq(reference, head.destination(), head.source(), prefixBytes(prefix),
                                       number, static_cast<unsigned short>(bytes));
        const int width = widthOf(prefix);
        const int count = bytes / width + (bytes % width ? 1 : 0);
        const std::string text = item(prefix, transportSizeOf(width), count, wireAddress(prefix, number));
        RC_ASSERT(ofBytes(frame) ==
                  longFrame(head.da, head.sa, 0x6c, job(head.reference(), "0401" + text, "")));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::objectReads()
{
    QVERIFY(rc::check("counters, timers, and anything else as high-speed counters", [] {
        const Head head;
        const auto prefix = *lots::prefix();
        const auto number = *lots::doubleWord();
        const int count = *lots::word();
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray frame =
            S7_200_PPIPackReadObjectsReq(reference, head.destination(), head.source(), prefixBytes(prefix),
                                         number, static_cast<unsigned short>(count));
        const int transportSize = prefix == "C" ? 0x1e : prefix == "T" ? 0x1f : 0x20;
        const std::string text = item(prefix, transportSize, count, wireAddress(prefix, number));
        RC_ASSERT(ofBytes(frame) ==
                  longFrame(head.da, head.sa, 0x6c, job(head.reference(), "0401" + text, "")));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::memoryReadsOfElements()
{
    QVERIFY(rc::check("bytes, words and double words whatever the prefix", [] {
        const Head head;
        const auto prefix = *lots::prefix();
        const auto number = *lots::doubleWord();
        const auto count = static_cast<unsigned short>(*lots::word());
        const int width = *rc::gen::element(1, 2, 4);
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray name = prefixBytes(prefix);
        const QByteArray pdu =
            width == 4   ? S7_200_PPIPackLayer7ReadDWordsReqPDU(reference, name, number, count)
            : width == 2 ? S7_200_PPIPackLayer7ReadWordsReqPDU(reference, name, number, count)
                         : S7_200_PPIPackLayer7ReadBytesReqPDU(reference, name, number, count);
        const std::string text = item(prefix, transportSizeOf(width), count, wireAddress(prefix, number));
        RC_ASSERT(ofBytes(pdu) == job(head.reference(), "0401" + text, ""));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::memoryWrites()
{
    QVERIFY(rc::check("whole elements, most significant byte first, the last one filled", [] {
        const Head head;
        const auto prefix = *lots::memoryPrefix();
        const auto number = *lots::doubleWord();
        const QByteArray data = *lots::bytes(300);
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray frame = S7_200_PPIPackWriteMemoryReq(reference, head.destination(), head.source(),
                                                              prefixBytes(prefix), number, data);
        const int width = widthOf(prefix);
        const std::string payload = turned(data, width);
        const std::string text = item(prefix, transportSizeOf(width), hextext::sizeOf(payload) / width,
                                      wireAddress(prefix, number));
        RC_ASSERT(ofBytes(frame) ==
                  longFrame(head.da, head.sa, 0x6c, writeJob(head.reference(), text, payload)));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::timerAndCounterWrites()
{
    QVERIFY(rc::check("zeros and 16 bits for each; an odd byte makes one that is not counted", [] {
        const Head head;
        const bool areTimers = *rc::gen::arbitrary<bool>();
        const auto number = *lots::doubleWord();
        const QByteArray values = *lots::bytes(120);
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray frame = areTimers ? S7_200_PPIPackWriteTimersReq(reference, head.destination(),
                                                                          head.source(), number, values)
                                           : S7_200_PPIPackWriteCountersReq(reference, head.destination(),
                                                                            head.source(), number, values);
        const std::string digits = turned(values, 2);
        std::string payload;
        for (size_t i = 0; i < digits.size(); i += 4)
            payload += (areTimers ? "000000" : "00") + digits.substr(i, 4);
        const std::string text =
            item(areTimers ? "T" : "C", areTimers ? 0x1f : 0x1e, int(values.size()) / 2, number);
        RC_ASSERT(ofBytes(frame) ==
                  longFrame(head.da, head.sa, 0x6c, writeJob(head.reference(), text, payload)));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::bitWrites()
{
    QVERIFY(rc::check("consecutive bits, one item and one byte each, a fill byte between", [] {
        const Head head;
        const auto prefix = *lots::prefix();
        const auto byte = *rc::gen::inRange<uint32_t>(0, 0x1f0000);
        const auto bit = *rc::gen::inRange<uint32_t>(0, 8);
        const QByteArray values =
            *rc::gen::suchThat(lots::bytes(255), [](const QByteArray &b) { return !b.isEmpty(); });
        auto reference = static_cast<unsigned short>(head.before);
        const QByteArray frame = S7_200_PPIPackWriteBitsReq(reference, head.destination(), head.source(),
                                                            prefixBytes(prefix), byte, bit, values);
        std::string block = "05" + field(uint64_t(values.size()), 2);
        std::string data;
        for (int i = 0; i < values.size(); ++i) {
            block += item(prefix, 1, 1, byte * 8 + bit + uint32_t(i));
            data += "00030001" + ofBytes(values.mid(i, 1)) + (i + 1 < values.size() ? "00" : "");
        }
        RC_ASSERT(ofBytes(frame) == longFrame(head.da, head.sa, 0x6c, job(head.reference(), block, data)));
        RC_ASSERT(int(reference) == head.reference());
    }));
}

void TestBuilders::fittedData()
{
    QVERIFY(rc::check("words and double words are cut or filled with zeros, the rest is left alone", [] {
        CommunicatorCommand command;
        command.dataType = *rc::gen::inRange(-1, 9);
        command.count = *rc::gen::inRange(0, 100);
        const QByteArray data = *lots::bytes(300);
        const int size = command.dataType == kWords         ? command.count * 2
                         : command.dataType == kDoubleWords ? command.count * 4
                                                            : int(data.size());
        const std::string zeros(size_t(2 * size), '0');
        const std::string expected = (ofBytes(data) + zeros).substr(0, size_t(2 * size));
        RC_ASSERT(ofBytes(DriverS7_200_PPIGetSafeData(command, data)) == expected);
    }));
}

void TestBuilders::addressTexts()
{
    QVERIFY(rc::check("prefix, byte and bit come out of the text that was made of them", [] {
        const auto prefix = *lots::prefix();
        const auto byte = *lots::doubleWord();
        const auto bit = *rc::gen::inRange(0, 8);
        const QString text = QString::fromStdString(prefix + std::to_string(byte));
        unsigned int byteFound = 0;
        unsigned int bitFound = 0;
        RC_ASSERT(S7_200_PPIExtractByteAddress(text) == byte);
        RC_ASSERT(S7_200_PPIExtractAddress(text + '.' + QString::number(bit), byteFound, bitFound));
        RC_ASSERT(byteFound == byte);
        RC_ASSERT(int(bitFound) == bit);
        RC_ASSERT(S7_200_PPIIsObj(prefixBytes(prefix)) == isObject(prefix));
    }));
}

TEST_CLASS(TestBuilders)

#include "test_builders.moc"
