// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The trace told another number of data bytes than decode found in the same frame. The words of the trace
// took lengths of the kind 04 alone as bits and all others as bytes, where those of the kinds 03 and 05 are
// in bits, too.

#include "hex.h"
#include "host/frames/explanation.h"
#include "host/frames/words.h"
#include "test_class.h"

#include <QString>
#include <QStringList>
#include <QtTest>

using namespace host;

class DataInBitsAreToldAsBytes : public QObject
{
    Q_OBJECT

private slots:
    void allKindsHaveTheSameSizeInBothViews_data();
    void allKindsHaveTheSameSizeInBothViews();
};

void DataInBitsAreToldAsBytes::allKindsHaveTheSameSizeInBothViews_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *frame, const char *name, const char *words) {
        QTest::newRow(name) << QString(frame) << QString(words);
    };
    row("68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 03 00 01 01 50 16",
        "one bit, kind 03", "answer to request 1 from station 2: 1 byte of data");
    row("68 17 17 68 00 02 08 32 03 00 00 00 01 00 02 00 06 00 00 04 01 ff 03 00 09 01 01 5a 16",
        "nine bits, kind 03", "answer to request 1 from station 2: 2 bytes of data");
    row("68 17 17 68 00 02 08 32 03 00 00 00 01 00 02 00 06 00 00 04 01 ff 05 00 10 11 22 94 16", "kind 05",
        "answer to request 1 from station 2: 2 bytes of data");
    row("68 18 18 68 00 02 08 32 03 00 00 00 01 00 02 00 07 00 00 04 01 ff 06 00 03 11 22 33 bc 16",
        "kind 06", "answer to request 1 from station 2: 3 bytes of data");
    row("68 19 19 68 00 02 08 32 03 00 00 00 01 00 02 00 08 00 00 04 01 ff 07 00 04 11 22 33 44 03 16",
        "kind 07", "answer to request 1 from station 2: 4 bytes of data");
    row("68 18 18 68 00 02 08 32 03 00 00 00 01 00 02 00 07 00 00 04 01 ff 04 00 14 11 22 33 cb 16",
        "kind 04, a last byte that is not full", "answer to request 1 from station 2: 3 bytes of data");
    row("68 17 17 68 00 02 08 32 03 00 00 00 01 00 02 00 06 00 00 04 01 ff 01 00 02 11 22 82 16",
        "a kind that nobody knows", "answer to request 1 from station 2: 2 bytes of data");
}

// The explanation finds every byte accounted for.
void DataInBitsAreToldAsBytes::allKindsHaveTheSameSizeInBothViews()
{
    QFETCH(QString, frame);
    QTEST(frameWords(bytes(qPrintable(frame))), "words");
    QCOMPARE(FrameExplainer().explain(bytes(qPrintable(frame))).faults, QStringList());
}

TEST_CLASS(DataInBitsAreToldAsBytes)
#include "data_in_bits_are_told_as_bytes.moc"
