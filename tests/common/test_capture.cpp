// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Capture files: what is written is read back, and whatever else stands in such a file does no harm.

#include "common/capture.h"
#include "test_class.h"

#include <QtTest>

#include <vector>

using common::CaptureDirection;
using common::CaptureReader;

class TestCommonCapture : public QObject
{
    Q_OBJECT

private slots:
    void framesAreReadBackWithTimeAndDirection();
    void aFrameStandsInTheFileAsTheFormatHasIt();
    void dataHaveTheNameOfTheirDissectorInFront();
    void theOtherByteOrderAndOtherTicksAreRead();
    void aCaptureThatEndsAnywhereIsReadUpToThere();
    void anyByteMayBeWrong();
    void whatIsNoFrameOfTheLineIsLeftOut();
};

namespace {

constexpr std::uint64_t kTime = 1769860800250123;

std::vector<CaptureReader::Frame> framesOf(const std::string &file, bool *isDamaged = nullptr)
{
    std::vector<CaptureReader::Frame> frames;
    CaptureReader reader(file);
    CaptureReader::Frame frame = {};
    while (reader.next(frame))
        frames.push_back(frame);
    if (isDamaged)
        *isDamaged = reader.isDamaged();
    return frames;
}

std::string smallCapture()
{
    return common::captureHead("s7ppi", "/dev/ttyUSB0") +
           common::captureFrame(kTime, CaptureDirection::FromMaster, "\x10\x02\x5c") +
           common::captureData(kTime, CaptureDirection::FromMaster, "s7comm_cotp", "2") +
           common::captureComment(kTime, "silence") +
           common::captureFrame(kTime + 1, CaptureDirection::ToMaster, "\xe5");
}

QByteArray hex(const std::string &bytes)
{
    return QByteArray::fromStdString(bytes).toHex(' ');
}

std::string fromHex(const char *digits)
{
    return QByteArray::fromHex(digits).toStdString();
}

} // namespace

void TestCommonCapture::framesAreReadBackWithTimeAndDirection()
{
    bool isDamaged = true;
    const auto frames = framesOf(smallCapture(), &isDamaged);
    QCOMPARE(frames.size(), size_t(2));
    QCOMPARE(frames[0].time, kTime);
    QVERIFY(frames[0].direction == CaptureDirection::FromMaster);
    QCOMPARE(frames[0].bytes, std::string("\x10\x02\x5c"));
    QCOMPARE(frames[1].time, kTime + 1);
    QVERIFY(frames[1].direction == CaptureDirection::ToMaster);
    QCOMPARE(frames[1].bytes, std::string("\xe5"));
    QVERIFY(!isDamaged);
    QVERIFY(CaptureReader::isCapture(smallCapture()));
    QVERIFY(!CaptureReader::isCapture("# s7ppi"));
    QVERIFY(common::isCaptureName("line.pcapng") && !common::isCaptureName("line.txt"));
}

void TestCommonCapture::aFrameStandsInTheFileAsTheFormatHasIt()
{
    const std::string file = common::captureFrame(0x0102030405060708, CaptureDirection::ToMaster, "\xe5");
    QCOMPARE(hex(file),
             QByteArray("06 00 00 00 30 00 00 00 00 00 00 00 04 03 02 01 08 07 06 05 01 00 00 00 "
                        "01 00 00 00 e5 00 00 00 02 00 04 00 01 00 00 00 00 00 00 00 30 00 00 00"));
}

void TestCommonCapture::dataHaveTheNameOfTheirDissectorInFront()
{
    const std::string file = common::captureData(0, CaptureDirection::FromMaster, "s7comm_cotp", "2");
    QCOMPARE(hex(file.substr(28, 20)),
             QByteArray("00 0d 00 0c 73 37 63 6f 6d 6d 5f 63 6f 74 70 00 00 00 00 00"));
    QCOMPARE(hex(file.substr(48, 1)), QByteArray("32"));
}

// As another program may write it: big endian, nanoseconds, an option that is not known.
void TestCommonCapture::theOtherByteOrderAndOtherTicksAreRead()
{
    const std::string file =
        fromHex("0a0d0d0a 0000001c 1a2b3c4d 0001 0000 ffffffffffffffff 0000001c"
                "00000001 00000020 0093 0000 00000000 0009 0001 09 000000 0000 0000 00000020"
                "00000006 00000034 00000000 00000000 000007d0 00000001 00000001 e5 000000"
                "0005 0003 aabbcc 00 0002 0004 00000001 00000034");
    bool isDamaged = true;
    const auto frames = framesOf(file, &isDamaged);
    QVERIFY(!isDamaged);
    QCOMPARE(frames.size(), size_t(1));
    QCOMPARE(frames[0].time, std::uint64_t(2));
    QVERIFY(frames[0].direction == CaptureDirection::ToMaster);
}

void TestCommonCapture::aCaptureThatEndsAnywhereIsReadUpToThere()
{
    const std::string whole = smallCapture();
    const size_t first = common::captureHead("s7ppi", "/dev/ttyUSB0").size() + 44;
    for (size_t size = 0; size < whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        QCOMPARE(framesOf(cut).size(), size_t(size >= first + 4 ? 1 : 0));
    }
}

void TestCommonCapture::anyByteMayBeWrong()
{
    const std::string whole = smallCapture();
    for (size_t place = 0; place < whole.size(); ++place)
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
            std::string other = whole;
            other[place] = char(value);
            QVERIFY(framesOf(other).size() <= 3); // the data, when its interface is another
        }
}

void TestCommonCapture::whatIsNoFrameOfTheLineIsLeftOut()
{
    const std::string head = common::captureHead("s7ppi", "line");
    QVERIFY(framesOf(head + common::captureData(1, CaptureDirection::ToMaster, "s7comm_cotp", "2")).empty());
    QVERIFY(framesOf(head + common::captureComment(1, "a remark")).empty());
    QVERIFY(framesOf(head + fromHex("fe000000 10000000 01020304 10000000")).empty());
}

TEST_CLASS(TestCommonCapture)
#include "test_capture.moc"
