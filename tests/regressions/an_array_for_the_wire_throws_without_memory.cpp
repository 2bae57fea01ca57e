// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that made a big-endian array without enough memory was thrown an exception, or lost the array's
// last zero bytes. The array was filled with zeros first, and nobody looked whether it had become as long as
// it should.

#include "short_memory.h"
#include "test_class.h"
#include "tools/byte_order.h"

#include <QByteArray>
#include <QtTest>

class AnArrayForTheWireThrowsWithoutMemory : public QObject
{
    Q_OBJECT

private slots:
    void arrayIsEmpty();
};

void AnArrayForTheWireThrowsWithoutMemory::arrayIsEmpty()
{
    const char first = '\1';
    const QByteArray host = QByteArray::fromRawData(&first, 1000000001); // refused before it is read
    const ShortMemory shortage;
    QVERIFY(toBigEndianUShortArray(host).isEmpty());
    QVERIFY(toBigEndianULongArray(host).isEmpty());
}

TEST_CLASS(AnArrayForTheWireThrowsWithoutMemory)
#include "an_array_for_the_wire_throws_without_memory.moc"
