// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames in plain words.

#include "host/frames/words.h"

#include "hex.h"
#include "test_class.h"

#include <QtTest>

using namespace host;

class TestWords : public QObject
{
    Q_OBJECT

private slots:
    void framesAreToldInWords_data();
    void framesAreToldInWords();
    void theSizeOfAFrameIsInItsBeginning_data();
    void theSizeOfAFrameIsInItsBeginning();
    void noBytesWhateverConfuseIt();
};

void TestWords::framesAreToldInWords_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *frame, const char *words) {
        QTest::newRow(words) << QString(frame) << QString(words);
    };
    row("e5", "acknowledgement");
    row("10 02 00 5c 5e 16", "poll of station 2");
    row("10 07 00 7c 83 16", "poll of station 7");
    row("10 00 02 02 04 16", "refused by station 2: no resource");
    row("10 00 02 03 05 16", "refused by station 2: service not active");
    row("10 00 02 01 03 16", "short frame with function code 01");
    row("68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00 04 01 12 0a 10 02 00 04 00 01 84 00 03 20 8f 16",
        "request 1 to station 2: read 4 bytes at V byte 100");
    row("68 1b 1b 68 02 00 6c 32 01 00 00 01 02 00 0e 00 00 04 01 12 0a 10 1f 00 01 00 00 1f 00 00 25 47 16",
        "request 258 to station 2: read 1 timer at T37");
    row("68 20 20 68 02 00 6c 32 01 00 00 00 01 00 0e 00 05 05 01 12 0a 10 01 00 01 00 01 84 00 00 53 00 03 "
        "00 01 "
        "01 c6 16",
        "request 1 to station 2: write 1 bit at V byte 10 bit 3");
    row("68 0f 0f 68 02 00 6c 32 01 00 00 00 01 00 02 00 00 f0 00 94 16",
        "request 1 to station 2: function F0");
    row("68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 04 00 20 11 22 33 44 1c 16",
        "answer to request 1 from station 2: 4 bytes of data");
    row("68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 68 16",
        "answer to request 1 from station 2: 1 byte of data");
    row("68 18 18 68 00 02 08 32 03 00 00 00 01 00 02 00 07 00 00 04 01 ff 09 00 03 10 00 05 6e 16",
        "answer to request 1 from station 2: 3 bytes of data");
    row("68 15 15 68 00 02 08 32 03 00 00 00 01 00 02 00 04 00 00 04 01 05 00 00 00 50 16",
        "answer to request 1 from station 2: refused, no such address (05)");
    row("68 12 12 68 00 02 08 32 03 00 00 00 01 00 02 00 01 00 00 05 01 ff 48 16",
        "answer to request 1 from station 2: done (FF)");
    row("68 13 13 68 00 02 08 32 03 00 00 00 01 00 02 00 02 00 00 05 02 ff 7b c5 16",
        "answer to request 1 from station 2: done (FF), unknown reason (7B)");
    row("68 0f 0f 68 00 02 08 32 02 00 00 00 01 00 00 00 00 81 04 c4 16",
        "answer to request 1 from station 2: not taken, error class 81, code 04");
    row("68 11 11 68 00 02 08 32 03 00 00 00 01 00 02 00 00 00 00 f0 00 32 16",
        "answer to request 1 from station 2: function F0");
    row("68 19 19 68 00 02 08 32 03", "incomplete frame");
    row("ff", "no frame");
    row("", "no frame");
    row("10 02 00 5c 5f 16", "damaged frame");
}

void TestWords::framesAreToldInWords()
{
    QFETCH(QString, frame);
    QTEST(frameWords(bytes(qPrintable(frame))), "words");
}

void TestWords::theSizeOfAFrameIsInItsBeginning_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<int>("size");
    QTest::newRow("nothing yet") << "" << 0;
    QTest::newRow("acknowledgement") << "e5" << 1;
    QTest::newRow("short frame") << "10" << 6;
    QTest::newRow("long frame, length to come") << "68" << 0;
    QTest::newRow("long frame") << "6819" << 31;
    QTest::newRow("longest frame") << "68ff" << 261;
    QTest::newRow("garbage") << "ff" << 1;
}

void TestWords::theSizeOfAFrameIsInItsBeginning()
{
    QFETCH(QString, start);
    QTEST(frameSize(bytes(qPrintable(start))), "size");
}

// Every start of every length with a sum that fits: the words are some text, nothing is read outside.
void TestWords::noBytesWhateverConfuseIt()
{
    for (int length = 0; length < 256; ++length) {
        QByteArray frame =
            bytes("68") + char(length) + char(length) + bytes("68") + QByteArray(length, '\x05');
        frame += char(length * 5);
        frame += '\x16';
        QVERIFY(!frameWords(frame).isEmpty());
        QVERIFY(frameWords(frame) != "incomplete frame");
    }
}

TEST_CLASS(TestWords)
#include "test_words.moc"
