// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The checks and decoders of answers: values packed as text come out as they went in.

#include "hex_text.h"
#include "lots.h"

#include "simatic_s7_200_ppi/ppi_layer2.h"
#include "simatic_s7_200_ppi/ppi_response.h"
#include "test_class.h"

#include <QStringList>
#include <QtTest>

class TestAnswers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { lots::useSeedOfRun(); }
    void goodFramesPass();
    void oneChangedByteIsFound();
    void negativeFrames();
    void headers();
    void memory();
    void bits();
    void timersAndCounters();
    void fastCounters();
    void itemsThatTheFrameHolds();
    void returnCodesOfWrites();
    void messagesOfReturnCodes();
};

namespace {

using hextext::field;
using hextext::ofBytes;

typedef std::vector<uint32_t> Numbers;

rc::Gen<Numbers> numbers(size_t atMost, uint32_t limit)
{
    return rc::gen::mapcat(rc::gen::inRange<size_t>(1, atMost + 1), [limit](size_t size) {
        return rc::gen::container<Numbers>(size, rc::gen::inRange<uint32_t>(0, limit));
    });
}

// Text as bytes, zeros behind them as in the driver's buffer.
QByteArray bufferOf(const std::string &text)
{
    return QByteArray::fromHex(QByteArray::fromStdString(text)).leftJustified(kReceiveBufferSize, '\0');
}

const unsigned char *start(const QByteArray &buffer)
{
    return reinterpret_cast<const unsigned char *>(buffer.constData());
}

std::string readItem(int transportSize, int length, const std::string &data)
{
    return "0401ff" + field(uint64_t(transportSize), 2) + field(uint64_t(length), 4) + data;
}

std::string memoryItem(const std::string &data)
{
    return readItem(4, hextext::sizeOf(data) * 8, data);
}

// Least significant byte first.
std::string hostOrder(uint32_t value, int size)
{
    std::string digits;
    for (int i = 0; i < size; ++i)
        digits += field(value >> (8 * i), 2);
    return digits;
}

QByteArray goodFrame(int station, const QByteArray &pdu)
{
    return bufferOf(hextext::longFrame(0, station, 8, ofBytes(pdu)));
}

const char *faultOf(const QByteArray &buffer, int station)
{
    const int owed = start(buffer)[1] - 1;
    const char *const fault =
        S7_200_PPIFaultInAnswerHead(start(buffer), kAnswerHeadSize, 0, static_cast<unsigned char>(station));
    return fault ? fault : S7_200_PPIFaultInAnswerRest(start(buffer), owed, owed);
}

} // namespace

void TestAnswers::goodFramesPass()
{
    QVERIFY(rc::check("68 LE LE 68 00 SA 08 PDU FCS 16 with up to 252 bytes of PDU", [] {
        const int station = *rc::gen::inRange(0, 0x100);
        const QByteArray pdu = *lots::bytes(252);
        RC_ASSERT(faultOf(goodFrame(station, pdu), station) == nullptr);
    }));
}

void TestAnswers::oneChangedByteIsFound()
{
    QVERIFY(rc::check("whatever the frame, wherever the byte", [] {
        const int station = *rc::gen::inRange(0, 0x100);
        const QByteArray pdu = *lots::bytes(252);
        QByteArray frame = goodFrame(station, pdu);
        const int place = *rc::gen::inRange(0, int(pdu.size()) + 9);
        const int change = *rc::gen::inRange(1, 0x100);
        frame[place] = char(frame.at(place) + change);
        RC_ASSERT(faultOf(frame, station) != nullptr);
    }));
}

void TestAnswers::negativeFrames()
{
    QVERIFY(rc::check("the function code tells why, unless the sum needs more than 8 bits", [] {
        const int station = *rc::gen::inRange(0, 0x100);
        const int function = *rc::gen::oneOf(rc::gen::inRange(0, 5), rc::gen::inRange(0, 0x100));
        const QByteArray frame = bufferOf(hextext::shortFrame(0, station, function));
        const std::string reason =
            S7_200_PPIReasonOfRefusal(start(frame), kRefusalSize, 0, static_cast<unsigned char>(station));
        const std::string meaning = function == 2   ? "no resource"
                                    : function == 3 ? "no service actived"
                                                    : "unknown error";
        RC_ASSERT(reason == (station + function > 0xff ? "invalid response9" : meaning));
    }));
}

void TestAnswers::headers()
{
    QVERIFY(rc::check("32 MT 0000 RRRR PPPP DDDD EC EE", [] {
        const int type = *rc::gen::oneOf(rc::gen::inRange(0, 5), rc::gen::inRange(0, 0x100));
        const int reference = *lots::word();
        const int expected = *rc::gen::oneOf(rc::gen::just(reference), lots::word());
        const int parameterLength = *rc::gen::oneOf(rc::gen::inRange(0, 5), lots::word());
        const int dataLength = *lots::word();
        const int errors = *lots::word();
        const QByteArray header =
            bufferOf("32" + field(uint64_t(type), 2) + "0000" + field(uint64_t(reference), 4) +
                     field(uint64_t(parameterLength), 4) + field(uint64_t(dataLength), 4) +
                     field(uint64_t(errors), 4));
        unsigned short parametersFound = 0;
        unsigned short dataFound = 0;
        unsigned char classFound = 0;
        unsigned char codeFound = 0;
        const int size =
            S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(start(header), static_cast<unsigned short>(expected),
                                                        parametersFound, dataFound, classFound, codeFound);
        const bool isGood = (type == 2 || type == 3) && reference == expected &&
                            (parameterLength == 0 || parameterLength == 2);
        RC_ASSERT(size == (isGood ? 12 : -1));
        RC_ASSERT(int(parametersFound) == parameterLength);
        RC_ASSERT(int(dataFound) == dataLength);
        RC_ASSERT(classFound * 256 + codeFound == errors);
    }));
}

void TestAnswers::memory()
{
    QVERIFY(rc::check("each element of the prefix comes out least significant byte first", [] {
        const auto prefix = *lots::memoryPrefix();
        const char last = prefix.empty() ? ' ' : prefix.back();
        const int width = last == 'D' ? 4 : last == 'W' ? 2 : 1;
        const Numbers values = *numbers(size_t(234 / width), 0xffffffff);
        std::string wire;
        std::string host;
        for (const uint32_t value : values) {
            wire += field(value, 2 * width);
            host += hostOrder(value, width);
        }
        const QByteArray buffer = bufferOf(memoryItem(wire));
        unsigned char code = 0;
        RC_ASSERT(ofBytes(S7_200_PPIGetRspBytes(start(buffer), QByteArray::fromStdString(prefix), code)) ==
                  host);
        RC_ASSERT(int(code) == 0xff);
    }));
}

void TestAnswers::bits()
{
    QVERIFY(rc::check("as many bytes as the number of bits needs, and the bits in them", [] {
        const QByteArray data = *lots::bytes(32);
        const uint32_t first = *rc::gen::inRange<uint32_t>(0, 10);
        const int bitsThere = int(data.size()) * 8;
        const int count = qMax(0, bitsThere - *rc::gen::inRange(-2, 10));
        const QByteArray buffer = bufferOf(memoryItem(ofBytes(data)));
        const bool isGood =
            count <= bitsThere && count > bitsThere - 8 && (count == 0 || int(first) + count <= bitsThere);
        std::string expected;
        for (int i = int(first); isGood && i < int(first) + count; ++i)
            expected += data.at(i / 8) & (1 << i % 8) ? "01" : "00";
        QByteArray bits;
        RC_ASSERT(S7_200_PPIGetRspBits(start(buffer), first, count, bits) == isGood);
        RC_ASSERT(!isGood || ofBytes(bits) == expected);
    }));
}

void TestAnswers::timersAndCounters()
{
    QVERIFY(rc::check("the status bit and the low 16 bits of each", [] {
        const bool areTimers = *rc::gen::arbitrary<bool>();
        const Numbers values = *numbers(46, 0xffffffff);
        const int status = *rc::gen::inRange(0, 0x100);
        std::string records;
        for (const uint32_t value : values)
            records += field(uint64_t(status), 2) + field(value, areTimers ? 8 : 4);
        const QByteArray buffer = bufferOf(readItem(9, hextext::sizeOf(records), records));
        std::vector<S7_200_PPI_Timer> found;
        unsigned char code = 0;
        const bool isDecoded = areTimers ? S7_200_PPIGetRspTimers(start(buffer), found, code)
                                         : S7_200_PPIGetRspCounters(start(buffer), found, code);
        RC_ASSERT(isDecoded);
        RC_ASSERT(found.size() == values.size());
        for (size_t i = 0; i < found.size(); ++i) {
            RC_ASSERT(uint32_t(found[i].value) == values[i] % 0x10000);
            RC_ASSERT(int(found[i].status) == (status >> (areTimers ? 1 : 4)) % 2);
        }
    }));
}

void TestAnswers::fastCounters()
{
    QVERIFY(rc::check("the 32 bits of each, least significant byte first", [] {
        const Numbers values = *numbers(46, 0xffffffff);
        std::string records;
        std::string host;
        for (const uint32_t value : values) {
            records += field(*rc::gen::inRange(0u, 0x100u), 2) + field(value, 8);
            host += hostOrder(value, 4);
        }
        const QByteArray buffer = bufferOf(readItem(9, hextext::sizeOf(records), records));
        unsigned char code = 0;
        RC_ASSERT(ofBytes(S7_200_PPIGetRspHSC(start(buffer), code)) == host);
    }));
}

void TestAnswers::itemsThatTheFrameHolds()
{
    QVERIFY(rc::check("the whole elements that the length says are not more than the bytes there are", [] {
        const bool isMemory = *rc::gen::arbitrary<bool>();
        const int length = *lots::word();
        const int held = *rc::gen::inRange(0, 240);
        const QByteArray buffer = bufferOf(readItem(isMemory ? 4 : 9, length, ""));
        const int element = isMemory ? *rc::gen::element(1, 2, 4) : 1;
        const int needed = isMemory ? length / 8 / element * element : length;
        const PpiLayer7 transportSize = isMemory ? kLengthInBits : kLengthInBytes;
        RC_ASSERT(S7_200_PPIRspItemFits(start(buffer), transportSize, element, held) == (needed <= held));
    }));
}

void TestAnswers::returnCodesOfWrites()
{
    QVERIFY(rc::check("one byte each, 0 behind the end of the frame", [] {
        const QByteArray codes = *lots::bytes(60);
        const int number = *rc::gen::inRange(0, 0x100);
        const int parameters = 2;
        const QByteArray buffer = bufferOf("05" + field(uint64_t(number), 2) + ofBytes(codes));
        const QByteArray found = S7_200_PPIGetWriteRspCodes(start(buffer), parameters + int(codes.size()));
        RC_ASSERT(found == codes.left(number).leftJustified(number, '\0'));
    }));
}

void TestAnswers::messagesOfReturnCodes()
{
    QVERIFY(rc::check("a comma between each two, nothing for success", [] {
        const auto known = rc::gen::element(0x01, 0x03, 0x05, 0x06, 0x0a, 0xff, 0xff, 0x00);
        const auto codes = *rc::gen::nonEmpty(rc::gen::container<std::vector<int>>(known));
        QByteArray bytes;
        QStringList messages;
        for (const int code : codes) {
            bytes += char(code);
            messages += S7_200_PPIReadRspErrorCodeToStr(static_cast<unsigned char>(code));
            RC_ASSERT(messages.last().isEmpty() == (code == 0xff));
        }
        RC_ASSERT(S7_200_PPIWriteRspCodesToStr(bytes) == messages.join(','));
    }));
}

TEST_CLASS(TestAnswers)

#include "test_answers.moc"
