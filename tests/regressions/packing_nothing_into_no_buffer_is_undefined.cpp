// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A driver that packed no bytes of padding into no buffer ran into what the language leaves undefined, and a
// checked build ended there. memset was given the null pointer, with a length of 0.

#include "test_class.h"
#include "tools/pack.h"

#include <QtTest>

class PackingNothingIntoNoBufferIsUndefined : public QObject
{
    Q_OBJECT

private slots:
    void nothingNeedsNoBuffer();
};

void PackingNothingIntoNoBufferIsUndefined::nothingNeedsNoBuffer()
{
    QCOMPARE(DataPack(nullptr, ""), 0);
    QCOMPARE(DataPack(nullptr, "0x"), 0);
    QCOMPARE(DataPack(nullptr, "0X"), 0);
}

TEST_CLASS(PackingNothingIntoNoBufferIsUndefined)
#include "packing_nothing_into_no_buffer_is_undefined.moc"
