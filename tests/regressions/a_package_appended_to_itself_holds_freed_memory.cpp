// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A package whose own bytes were appended to it as a section held other bytes now and then. Its array was
// made longer, and so moved, before the section, a view of the old place, was copied.

#include "hex.h"
#include "test_class.h"
#include "tools/tx_package.h"

#include <QByteArray>
#include <QtTest>

class APackageAppendedToItselfHoldsFreedMemory : public QObject
{
    Q_OBJECT

private slots:
    void viewOfItsOwnBytesIsAppended();
};

void APackageAppendedToItselfHoldsFreedMemory::viewOfItsOwnBytesIsAppended()
{
    TxPackage package;
    package.appendSection(bytes("01 02 03"));
    for (int i = 0; i < 6; ++i) {
        const QByteArray view = QByteArray::fromRawData(package.data(), package.totalSize());
        QCOMPARE(package.appendSection(view), true);
    }
    QCOMPARE(package.byteArrayData(), QByteArray("\1\2\3").repeated(64));
}

TEST_CLASS(APackageAppendedToItselfHoldsFreedMemory)
#include "a_package_appended_to_itself_holds_freed_memory.moc"
