// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// decode called frames without a header answers from stations that they do not name. Only the frame's ends
// were looked at, and its bytes were then read as those of a header that is not there.

#include "hex.h"
#include "host/frames/words.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

using namespace host;

class ADamagedFrameIsToldAsAnAnswer : public QObject
{
    Q_OBJECT

private slots:
    void frameWithoutAHeaderIsDamaged_data();
    void frameWithoutAHeaderIsDamaged();
};

void ADamagedFrameIsToldAsAnAnswer::frameWithoutAHeaderIsDamaged_data()
{
    QTest::addColumn<QString>("frame");
    const auto row = [](const char *name, const char *frame) { QTest::newRow(name) << frame; };
    row("empty", "68 00 00 68 00 16");
    row("no PDU", "68 03 03 68 02 00 6c 6e 16");
    row("header cut by a byte", "68 0c 0c 68 02 00 6c 32 01 00 00 00 01 00 02 00 a4 16");
    row("two lengths", "68 0f 0e 68 02 00 6c 32 01 00 00 00 01 00 02 00 00 f0 00 94 16");
}

void ADamagedFrameIsToldAsAnAnswer::frameWithoutAHeaderIsDamaged()
{
    QFETCH(QString, frame);
    QCOMPARE(frameWords(bytes(qPrintable(frame))), QString("damaged frame"));
}

TEST_CLASS(ADamagedFrameIsToldAsAnAnswer)
#include "a_damaged_frame_is_told_as_an_answer.moc"
