// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts with places to fill.

#include "host/base/filled.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestFilled : public QObject
{
    Q_OBJECT

private slots:
    void textsAndNumbersStandInTheirPlaces();
    void placesThatATextBringsAlongStay();
};

void TestFilled::textsAndNumbersStandInTheirPlaces()
{
    QCOMPARE(filled("%1:%2: %3", "tags.csv", 7, QString("no name")), QString("tags.csv:7: no name"));
    QCOMPARE(filled("%2 %1 %2", 1, -2LL), QString("-2 1 -2"));
    QCOMPARE(filled("%1 \xc2\xb0\x43", 21U), QString::fromUtf8("21 \xc2\xb0\x43"));
}

void TestFilled::placesThatATextBringsAlongStay()
{
    QCOMPARE(filled("%1:%2: %3", "50%2%3.csv", 7, "%1"), QString("50%2%3.csv:7: %1"));
}

TEST_CLASS(TestFilled)
#include "test_filled.moc"
