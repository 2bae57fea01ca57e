// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex.h"
#include "test_class.h"
#include "tools/bits.h"

#include <QtTest>

#include <climits>

// Of 256 MiB, whose bits an int just counts; the system provides only the pages that are touched.
class TestLargestArray : public QObject
{
    Q_OBJECT

private slots:
    void bitsAreCopiedUpToTheLast();
};

void TestLargestArray::bitsAreCopiedUpToTheLast()
{
    QByteArray dest(INT_MAX / 8 + 1, Qt::Uninitialized);
    dest[dest.size() - 1] = 0;
    QByteArray src = bytes("0f");
    CopyBits(dest, src, INT_MAX - 1, 4);
    QCOMPARE(int(dest.size()), INT_MAX / 8 + 1);
    QCOMPARE(hex(dest.right(1)), QString("c0"));
}

TEST_CLASS(TestLargestArray)
#include "test_largest_array.moc"
