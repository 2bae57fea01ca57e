// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A sound frame that ends behind its header was told to have a function, whose number was that of its check
// sum. The words were read at fixed places, and nobody asked whether the PDU reaches so far.

#include "hex.h"
#include "host/frames/words.h"
#include "test_class.h"

#include <QString>
#include <QtTest>

using namespace host;

class ACheckSumIsToldAsAFunction : public QObject
{
    Q_OBJECT

private slots:
    void frameThatEndsEarlyHasNoFunction_data();
    void frameThatEndsEarlyHasNoFunction();
};

void ACheckSumIsToldAsAFunction::frameThatEndsEarlyHasNoFunction_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *frame, const char *words) {
        QTest::newRow(words) << QString(frame) << QString(words);
    };
    row("68 0d 0d 68 02 00 6c 32 01 00 00 00 01 00 00 00 00 a2 16",
        "request 1 to station 2: without a function");
    row("68 0f 0f 68 00 02 08 32 03 00 00 00 01 00 00 00 00 00 00 40 16",
        "answer to request 1 from station 2: without a function");
    row("68 11 11 68 00 02 08 32 03 00 00 00 01 00 02 00 00 00 00 04 00 46 16",
        "answer to request 1 from station 2: without data");
}

void ACheckSumIsToldAsAFunction::frameThatEndsEarlyHasNoFunction()
{
    QFETCH(QString, frame);
    QTEST(frameWords(bytes(qPrintable(frame))), "words");
}

TEST_CLASS(ACheckSumIsToldAsAFunction)
#include "a_check_sum_is_told_as_a_function.moc"
