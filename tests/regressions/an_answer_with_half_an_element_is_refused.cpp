// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Words and double words were not read at all when an answer had a few bits more than whole elements. The
// length was compared with the frame before the remainder, which does not count, was dropped.

#include "answer.h"
#include "commands.h"
#include "outcome.h"
#include "test_class.h"

#include <QtTest>

class AnAnswerWithHalfAnElementIsRefused : public QObject
{
    Q_OBJECT

private slots:
    void remainderIsDropped_data();
    void remainderIsDropped();
};

void AnAnswerWithHalfAnElementIsRefused::remainderIsDropped_data()
{
    QTest::addColumn<CommunicatorCommand>("read");
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("data");
    const auto row = [](const CommunicatorCommand &read, const char *item, const char *data) {
        QTest::newRow(textOf(read).constData()) << read << item << data;
    };
    row(byteCommand("VD100", 6), "04 01 ff 04 00 48 11 22 33 44 55 66 77 88", "443322118877"); // 72 bits
    row(doubleWordCommand("VD100", 1), "04 01 ff 04 00 38 11 22 33 44", "44332211");           // 56 bits
    row(wordCommand("VW100", 2), "04 01 ff 04 00 28 11 22 33 44", "22114433");                 // 40 bits
}

void AnAnswerWithHalfAnElementIsRefused::remainderIsDropped()
{
    QFETCH(CommunicatorCommand, read);
    QFETCH(QString, item);
    QFETCH(QString, data);
    const Outcome outcome = outcomeOfRead(read, Answer(item));
    QCOMPARE(outcome.result, data);
    QVERIFY(!outcome.failed);
}

TEST_CLASS(AnAnswerWithHalfAnElementIsRefused)
#include "an_answer_with_half_an_element_is_refused.moc"
