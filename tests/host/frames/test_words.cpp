// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Frames in plain words.

#include "host/frames/words.h"

#include "frame_vectors.h"
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
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *frame, const char *words) {
        QTest::newRow(words) << bytes(frame) << words;
    };
    row("68 19 19 68 00 02 08 32 03", "incomplete frame");
    row("ff", "no frame");
    row("", "no frame");
    row("10 02 00 5c 5f 16", "damaged frame");
    const FrameVectors frames("host/frames/words.frames");
    for (const QByteArray &words : frames.names())
        QTest::newRow(words.constData()) << frames.frame(words) << QString(words);
}

void TestWords::framesAreToldInWords()
{
    QFETCH(QByteArray, frame);
    QTEST(frameWords(frame), "words");
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
