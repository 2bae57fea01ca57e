// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a library's file tells: good files, files for other machines, and files that are none.

#include "host/diagnosis/elf_file.h"

#include "hex.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <vector>

using namespace host;

namespace {

// A library for 32-bit ARM with one dynamic symbol table: nothing, "CreateDriver" defined, "puts" not.
//
//   0000  header, section headers at 0x90: none, dynamic symbols, their names
//   0034  names
//   0050  symbols of 16 bytes
QByteArray armLibrary()
{
    return bytes("7f454c46 01010100 00000000 00000000"
                 "0300 2800 01000000 00000000 00000000 90000000 00000000 3400 2000 0000 2800 0300 0000"
                 "00 437265617465447269766572 00 70757473 00 000000000000000000"
                 "00000000 00000000 00000000 00 00 0000"
                 "01000000 00100000 04000000 12 00 0500"
                 "0e000000 00000000 00000000 12 00 0000"
                 "00000000000000000000000000000000"
                 "00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000"
                 "00000000 0b000000 00000000 00000000 50000000 30000000 02000000 00000000 00000000 10000000"
                 "00000000 03000000 00000000 00000000 34000000 14000000 00000000 00000000 00000000 00000000");
}

// The same for x86-64, with a symbol behind its table: "beyond", which is defined, is none of its.
//
//   0000  header, section headers at 0xc0
//   0040  names
//   0060  symbols of 24 bytes
QByteArray longLibrary()
{
    return bytes("7f454c46 02010100 00000000 00000000"
                 "0300 3e00 01000000 0000000000000000 0000000000000000 c000000000000000 00000000"
                 "4000 0000 0000 4000 0300 0000"
                 "00 437265617465447269766572 00 70757473 00 6265796f6e64 00 000000000000"
                 "00000000 00 00 0000 0000000000000000 0000000000000000"
                 "01000000 12 00 0500 0010000000000000 0400000000000000"
                 "0e000000 12 00 0000 0000000000000000 0000000000000000"
                 "13000000 12 00 0500 0010000000000000 0400000000000000"
                 "00000000 00000000 0000000000000000 0000000000000000 0000000000000000 0000000000000000"
                 "00000000 00000000 0000000000000000 0000000000000000"
                 "00000000 0b000000 0000000000000000 0000000000000000 6000000000000000 4800000000000000"
                 "02000000 00000000 0000000000000000 1800000000000000"
                 "00000000 03000000 0000000000000000 0000000000000000 4000000000000000 2000000000000000"
                 "00000000 00000000 0000000000000000 0000000000000000");
}

QByteArray ownProgram()
{
    QFile file("/proc/self/exe");
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestElfFile : public QObject
{
    Q_OBJECT

private slots:
    void aLibraryForAnotherMachineIsRead();
    void aLibraryOf64BitsIsRead();
    void bytesOfABigMachineAreReadTheOtherWayRound();
    void thisProgramIsForThisMachine();
    void whatIsNoLibraryIsTold_data();
    void whatIsNoLibraryIsTold();
    void noCutAndNoChangedByteConfusesIt();
    void theVerificationTextIsFoundWhereverItIs();
};

void TestElfFile::aLibraryForAnotherMachineIsRead()
{
    const ElfFile file = parseElf(armLibrary());
    QCOMPARE(textOf(file.failure), QString());
    QCOMPARE(machineText(file), QString("ARM, 32 bits, little endian"));
    QCOMPARE(file.exports, QStringList("CreateDriver"));

    QByteArray shorter = armLibrary();
    shorter[204] = 0x20; // bytes of symbols: "CreateDriver" is the last one
    QCOMPARE(parseElf(shorter).exports, QStringList("CreateDriver"));
    shorter[204] = 0x1f;
    QCOMPARE(parseElf(shorter).exports, QStringList());
}

void TestElfFile::aLibraryOf64BitsIsRead()
{
    const ElfFile file = parseElf(longLibrary());
    QCOMPARE(textOf(file.failure), QString());
    QCOMPARE(machineText(file), QString("x86-64, 64 bits, little endian"));
    QCOMPARE(file.exports, QStringList("CreateDriver"));
}

void TestElfFile::bytesOfABigMachineAreReadTheOtherWayRound()
{
    QByteArray library = armLibrary();
    library.replace(5, 1, bytes("02"));
    library.replace(16, 4, bytes("0003 0014"));
    const ElfFile file = parseElf(library);
    QCOMPARE(textOf(file.failure), QString());
    QCOMPARE(machineText(file), QString("PowerPC, 32 bits, big endian"));
}

void TestElfFile::thisProgramIsForThisMachine()
{
    const ElfFile file = parseElf(ownProgram());
    QCOMPARE(textOf(file.failure), QString());
    QCOMPARE(file.bits, int(sizeof(void *)) * 8);
    QCOMPARE(file.isLittleEndian, Q_BYTE_ORDER == Q_LITTLE_ENDIAN);
}

void TestElfFile::whatIsNoLibraryIsTold_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("failure");
    QTest::newRow("empty") << QByteArray() << "the file is empty";
    QTest::newRow("text") << QByteArray("#!/bin/sh\necho a script\n") << "it begins with 23 21 2f 62";
    QTest::newRow("its beginning alone") << bytes("7f454c46") << "it begins with 7f 45 4c 46";
    QByteArray object = armLibrary();
    object[16] = 1;
    QTest::newRow("an object file") << object << "it is an ELF file, but no shared library";
}

void TestElfFile::whatIsNoLibraryIsTold()
{
    QFETCH(QByteArray, file);
    QTEST(textOf(parseElf(file).failure), "failure");
}

void TestElfFile::noCutAndNoChangedByteConfusesIt()
{
    const QByteArray library = armLibrary();
    for (int size = 0; size < library.size(); ++size) {
        const std::vector<char> memory(library.begin(), library.begin() + size);
        const QByteArray cut = QByteArray::fromRawData(memory.data(), size);
        QVERIFY(parseElf(cut).exports.size() <= 1);
    }
    for (int place = 0; place < library.size(); ++place)
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
            QByteArray changed = library;
            changed[place] = char(value);
            QVERIFY(parseElf(changed).exports.size() <= library.size() / 16);
        }
}

void TestElfFile::theVerificationTextIsFoundWhereverItIs()
{
    const QByteArray text(
        "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.0\ndebug=false\nbuildkey=a b c\0more", 81);
    QCOMPARE(verificationLines("before" + text),
             QStringList({"version=4.8.0", "debug=false", "buildkey=a b c"}));
    QCOMPARE(verificationLines("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4"), QStringList("version=4"));
    QCOMPARE(verificationLines("pattern=QT_PLUGIN_"), QStringList());
    QCOMPARE(verificationLines(QByteArray("pattern=QT_PLUGIN_VERIFICATION_DATA\n\0version=4.8.0", 49)),
             QStringList());
    QCOMPARE(verificationLines(QByteArray()), QStringList());
}

TEST_CLASS(TestElfFile)

#include "test_elf_file.moc"
