// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "hex.h"
#include "short_memory.h"
#include "test_class.h"
#include "tools/tx_package.h"

#include <QtTest>

#include <climits>

namespace {

QString frameOf(const TxPackage &package)
{
    return hex(package.byteArrayData());
}

// "1 2 2"
QString sizesOf(const TxPackage &package)
{
    QStringList sizes;
    for (int i = 0; i < package.numberOfSections(); ++i)
        sizes += QString::number(package.sectionSize(i));
    return sizes.join(" ");
}

QList<int> sizeList(const QString &text)
{
    const QStringList words = text.isEmpty() ? QStringList() : text.split(' ');
    QList<int> sizes;
    for (const QString &size : words)
        sizes += size.toInt();
    return sizes;
}

void fill(TxPackage &package, const char *frame, const QString &sizes)
{
    package.setSectionSize(sizeList(sizes));
    package.setData(bytes(frame));
}

} // namespace

class TestTxPackage : public QObject
{
    Q_OBJECT

private slots:
    void aNewPackageIsEmpty();
    void sectionsKeepTheirSizes();
    void anEmptySectionCounts();
    void valuesGoLowestByteFirst();
    void textIsOneByteForEachCharacter();
    void byteInAsciiHasTwoUpperCaseDigits_data();
    void byteInAsciiHasTwoUpperCaseDigits();
    void lrcIsTheSumOfAllBytesSoFar();
    void lrcInAsciiIsASectionOfTwo();
    void fcsIsTheExclusiveOrOfAllBytesSoFar();
    void fcsDoesNotDependOnItsArgument();
    void fcsLeavesOutTheLastBytes_data();
    void fcsLeavesOutTheLastBytes();
    void fcsOfNoPackageIsZero();
    void sectionNumbersAreCountedFromZero();
    void invalidSectionHasNoPlaceNoSizeAndNoData_data();
    void invalidSectionHasNoPlaceNoSizeAndNoData();
    void dataAtGivesASectionBack();
    void dataAtEndsWithTheFrame();
    void sizeMayStandInAnotherSection();
    void sizeInAnotherSectionFollowsItsByte();
    void sizeMayBeLookedUpThroughSeveralSections();
    void referenceToAnEmptyOrMissingSectionIsZero_data();
    void referenceToAnEmptyOrMissingSectionIsZero();
    void referenceThatLeadsBackIsZero_data();
    void referenceThatLeadsBackIsZero();
    void longChainOfReferencesIsGivenUp();
    void referenceInFrontCountsAsStored();
    void startsBeyondAnIntAreClipped();
    void arrayToIntIsTheFirstByteUnsigned_data();
    void arrayToIntIsTheFirstByteUnsigned();
    void setSectionSizeCutsAndFillsTheFrame_data();
    void setSectionSizeCutsAndFillsTheFrame();
    void setSectionSizeChangesNothingWhenTheFrameWouldBeTooLong();
    void setDataLeavesTheSections();
    void setDataTakesACount_data();
    void setDataTakesACount();
    void setDataMayTakeThePackagesOwnBytes();
    void dataIsThePackagesOwn();
    void byteArrayDataIsACopy();
    void appendingItsOwnBytesWorks();
    void appendingWithoutMemoryLeavesThePackage();
    void appendingTextWithoutMemoryLeavesThePackage();
    void sectionThatMakesTheFrameTooLongIsRefused();
    void settingDataWithoutMemoryLeavesThePackage();
    void toStringShowsBytesAndText_data();
    void toStringShowsBytesAndText();
    void clearAllStartsAgain();
};

void TestTxPackage::aNewPackageIsEmpty()
{
    const TxPackage package;
    QCOMPARE(package.totalSize(), 0);
    QCOMPARE(package.numberOfSections(), 0);
    QCOMPARE(frameOf(package), QString());
    QVERIFY(!package.validSectionNumber(0));
}

void TestTxPackage::sectionsKeepTheirSizes()
{
    TxPackage package;
    QCOMPARE(package.appendByte(0x10), true);
    QCOMPARE(package.appendWord(0x0201), true);
    QCOMPARE(package.appendLRCAscii(), true);
    QCOMPARE(frameOf(package), QString("1001023133"));
    QCOMPARE(sizesOf(package), QString("1 2 2"));
    QCOMPARE(package.totalSize(), 5);
}

void TestTxPackage::anEmptySectionCounts()
{
    TxPackage package;
    QCOMPARE(package.appendSection(QByteArray()), true);
    QCOMPARE(package.appendSection(bytes("aa bb cc")), true);
    QCOMPARE(package.appendString(QString()), true);
    QCOMPARE(sizesOf(package), QString("0 3 0"));
    QCOMPARE(frameOf(package), QString("aabbcc"));
}

void TestTxPackage::valuesGoLowestByteFirst()
{
    TxPackage package;
    QCOMPARE(package.appendByte(0xFE), true);
    QCOMPARE(package.appendWord(0x89AB), true);
    QCOMPARE(package.appendDWord(0x89ABCDEFu), true);
    QCOMPARE(frameOf(package), QString("feab89efcdab89"));
    QCOMPARE(sizesOf(package), QString("1 2 4"));
}

void TestTxPackage::textIsOneByteForEachCharacter()
{
    TxPackage package;
    QCOMPARE(package.appendString(QString("VW1") + QChar(0xE4) + QChar(0x0142)), true);
    QCOMPARE(frameOf(package), QString("565731e43f")); // what Latin-1 lacks is a question mark
    QCOMPARE(sizesOf(package), QString("5"));
}

void TestTxPackage::byteInAsciiHasTwoUpperCaseDigits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("digits");
    QTest::newRow("0") << 0 << "00";
    QTest::newRow("leading zero") << 0x0A << "0A";
    QTest::newRow("both digits") << 0x3C << "3C";
    QTest::newRow("highest") << 0xFF << "FF";
}

void TestTxPackage::byteInAsciiHasTwoUpperCaseDigits()
{
    QFETCH(int, value);
    QFETCH(QString, digits);
    TxPackage package;
    QCOMPARE(package.appendByte2Ascii(static_cast<unsigned char>(value)), true);
    QCOMPARE(QString::fromLatin1(package.byteArrayData()), digits);
    QCOMPARE(sizesOf(package), QString("2"));
}

void TestTxPackage::lrcIsTheSumOfAllBytesSoFar()
{
    TxPackage package;
    package.appendSection(bytes("ff 02"));
    QCOMPARE(package.appendLRCByte(), true);
    QCOMPARE(package.appendLRCByte(), true);
    QCOMPARE(frameOf(package), QString("ff020102"));
    QCOMPARE(sizesOf(package), QString("2 1 1"));
    TxPackage empty;
    QCOMPARE(empty.appendLRCByte(), true);
    QCOMPARE(frameOf(empty), QString("00"));
}

void TestTxPackage::lrcInAsciiIsASectionOfTwo()
{
    TxPackage package;
    package.appendSection(bytes("ff ff"));
    QCOMPARE(package.appendLRCAscii(), true);
    QCOMPARE(frameOf(package), QString("ffff4645"));
    QCOMPARE(sizesOf(package), QString("2 2"));
}

void TestTxPackage::fcsIsTheExclusiveOrOfAllBytesSoFar()
{
    TxPackage package;
    package.appendSection(bytes("ff 02 51"));
    QCOMPARE(package.appendFCSAscii(0), true);
    QCOMPARE(frameOf(package), QString("ff02514143"));
    QCOMPARE(sizesOf(package), QString("3 2"));
}

void TestTxPackage::fcsDoesNotDependOnItsArgument()
{
    TxPackage five;
    TxPackage none;
    five.appendSection(bytes("12 34 56 78"));
    none.appendSection(bytes("12 34 56 78"));
    QCOMPARE(five.appendFCSAscii(5), true);
    QCOMPARE(none.appendFCSAscii(0), true);
    QCOMPARE(frameOf(five), QString("123456783038"));
    QCOMPARE(frameOf(none), QString("123456783038"));
}

void TestTxPackage::fcsLeavesOutTheLastBytes_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("fcs");
    QTest::newRow("none") << 0 << 0x0F;
    QTest::newRow("one") << 1 << 0x07;
    QTest::newRow("all but one") << 3 << 0x01;
    QTest::newRow("all") << 4 << 0;
    QTest::newRow("more than all") << 5 << 0;
    QTest::newRow("far more") << INT_MAX << 0;
    QTest::newRow("negative") << -1 << 0x0F;
    QTest::newRow("lowest") << INT_MIN << 0x0F;
}

void TestTxPackage::fcsLeavesOutTheLastBytes()
{
    QFETCH(int, n);
    QFETCH(int, fcs);
    TxPackage package;
    package.appendSection(bytes("01 02 04 08"));
    QCOMPARE(int(package.calculateFCS(&package, n)), fcs);
}

void TestTxPackage::fcsOfNoPackageIsZero()
{
    QCOMPARE(int(TxPackage::calculateFCS(nullptr, 0)), 0);
}

void TestTxPackage::sectionNumbersAreCountedFromZero()
{
    TxPackage package;
    package.appendSection(bytes("01 02 03"));
    package.appendByte(4);
    package.appendWord(5);
    QCOMPARE(package.sectionStartIndex(0), 0);
    QCOMPARE(package.sectionStartIndex(1), 3);
    QCOMPARE(package.sectionStartIndex(2), 4);
    QVERIFY(package.validSectionNumber(0));
    QVERIFY(package.validSectionNumber(2));
}

void TestTxPackage::invalidSectionHasNoPlaceNoSizeAndNoData_data()
{
    QTest::addColumn<int>("i");
    QTest::newRow("below") << -1;
    QTest::newRow("number of sections") << 2;
    QTest::newRow("lowest") << INT_MIN;
    QTest::newRow("highest") << INT_MAX;
}

void TestTxPackage::invalidSectionHasNoPlaceNoSizeAndNoData()
{
    QFETCH(int, i);
    TxPackage package;
    package.appendByte(7);
    package.appendByte(8);
    QVERIFY(!package.validSectionNumber(i));
    QCOMPARE(package.sectionStartIndex(i), -1);
    QCOMPARE(package.sectionSize(i), 0);
    QVERIFY(package.dataAt(i).isEmpty());
}

void TestTxPackage::dataAtGivesASectionBack()
{
    TxPackage package;
    package.appendByte(0x10);
    package.appendSection(bytes("01 02 03"));
    package.appendString("end");
    QCOMPARE(hex(package.dataAt(0)), QString("10"));
    QCOMPARE(hex(package.dataAt(1)), QString("010203"));
    QCOMPARE(hex(package.dataAt(2)), QString("656e64"));
}

void TestTxPackage::dataAtEndsWithTheFrame()
{
    TxPackage package;
    fill(package, "01 02 03", "2 4 1");
    QCOMPARE(hex(package.dataAt(1)), QString("03"));
    QVERIFY(package.dataAt(2).isEmpty());
    package.setData(QByteArray());
    QVERIFY(package.dataAt(0).isEmpty());
}

void TestTxPackage::sizeMayStandInAnotherSection()
{
    TxPackage package;
    fill(package, "01 02 07 aa bb", "1 2 -1");
    QCOMPARE(package.sectionSize(2), 2);
    QCOMPARE(package.sectionStartIndex(2), 3);
    QCOMPARE(hex(package.dataAt(2)), QString("aabb"));
}

void TestTxPackage::sizeInAnotherSectionFollowsItsByte()
{
    TxPackage package;
    fill(package, "01 00 aa", "1 1 -1");
    QCOMPARE(package.sectionSize(2), 0);
    package.data()[1] = '\xff';
    QCOMPARE(package.sectionSize(2), 255);
    QCOMPARE(hex(package.dataAt(2)), QString("aa"));
}

// Section 3 is as long as section 2 says, section 2 as section 1: one byte, 02.
void TestTxPackage::sizeMayBeLookedUpThroughSeveralSections()
{
    TxPackage package;
    fill(package, "09 01 02 aa bb", "1 1 -1 -2");
    QCOMPARE(package.sectionSize(2), 1);
    QCOMPARE(hex(package.dataAt(2)), QString("02"));
    QCOMPARE(package.sectionSize(3), 2);
}

void TestTxPackage::referenceToAnEmptyOrMissingSectionIsZero_data()
{
    QTest::addColumn<int>("entry");
    QTest::newRow("empty section") << -1;
    QTest::newRow("no such section") << -3;
    QTest::newRow("lowest") << INT_MIN;
    QTest::newRow("lowest but one") << -INT_MAX;
}

void TestTxPackage::referenceToAnEmptyOrMissingSectionIsZero()
{
    QFETCH(int, entry);
    TxPackage package;
    fill(package, "05 06", QString("2 0 %1").arg(entry));
    QCOMPARE(package.sectionSize(2), 0);
    QVERIFY(package.dataAt(2).isEmpty());
}

void TestTxPackage::referenceThatLeadsBackIsZero_data()
{
    QTest::addColumn<QString>("sizes");
    QTest::newRow("to itself") << "1 -1";
    QTest::newRow("over another") << "1 -2 -1";
    QTest::newRow("into a ring") << "1 -2 -3 -2";
}

void TestTxPackage::referenceThatLeadsBackIsZero()
{
    QFETCH(QString, sizes);
    TxPackage package;
    fill(package, "03 03 03 03", sizes);
    QCOMPARE(package.sectionSize(1), 0);
    QVERIFY(package.dataAt(1).isEmpty());
}

// Each section from the second on takes its size from the one behind it, the last one has 1 byte. The first
// one, long enough for all their negative entries, brings every start back into the frame of bytes 01.
void TestTxPackage::longChainOfReferencesIsGivenUp()
{
    QList<int> sizes;
    sizes << 100000;
    for (int next = 2; next <= 300; ++next)
        sizes << -next;
    sizes << 1;
    TxPackage package;
    package.setSectionSize(sizes);
    package.setData(QByteArray(100000, '\1'));
    QCOMPARE(package.sectionSize(300), 1);
    QCOMPARE(package.sectionSize(300 - 256), 1);
    QCOMPARE(package.sectionSize(300 - 257), 0);
}

void TestTxPackage::referenceInFrontCountsAsStored()
{
    TxPackage package;
    fill(package, "01 02 aa bb cc", "1 1 -1 2");
    QCOMPARE(package.sectionStartIndex(3), 1); // 1 + 1 - 1
    QCOMPARE(hex(package.dataAt(3)), QString("02aa"));
    fill(package, "01 02 aa bb cc", "0 -2 3");
    QCOMPARE(package.sectionStartIndex(2), -2);
    QCOMPARE(hex(package.dataAt(2)), QString("01")); // what of -2 to 0 lies in the frame
}

void TestTxPackage::startsBeyondAnIntAreClipped()
{
    TxPackage package;
    package.setSectionSize(QList<int>() << INT_MAX << 5 << -INT_MAX << -INT_MAX << 5);
    QCOMPARE(package.numberOfSections(), 5);
    QCOMPARE(package.sectionStartIndex(2), INT_MAX);
    QVERIFY(package.dataAt(2).isEmpty());
    package.setSectionSize(QList<int>() << -INT_MAX << -INT_MAX << 5);
    QCOMPARE(package.sectionStartIndex(2), INT_MIN);
    package.setSectionSize(QList<int>() << 5 << INT_MAX << -INT_MAX);
    package.setData(bytes("01 02 03 04 05 06"));
    QCOMPARE(hex(package.dataAt(1)), QString("06"));
}

void TestTxPackage::arrayToIntIsTheFirstByteUnsigned_data()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<int>("value");
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("one byte") << "05" << 5;
    QTest::newRow("unsigned") << "ff" << 255;
    QTest::newRow("further bytes do not count") << "0102" << 1;
}

void TestTxPackage::arrayToIntIsTheFirstByteUnsigned()
{
    QFETCH(QString, array);
    QFETCH(int, value);
    const TxPackage package;
    QCOMPARE(int(package.arrayToInt(QByteArray::fromHex(array.toLatin1()))), value);
}

void TestTxPackage::setSectionSizeCutsAndFillsTheFrame_data()
{
    QTest::addColumn<QString>("sizes");
    QTest::addColumn<QString>("frame");
    const auto row = [](const char *name, const char *sizes, const char *frame) {
        QTest::newRow(name) << sizes << frame;
    };
    row("as long", "1 2", "010203");
    row("longer", "4 1", "0102030000");
    row("shorter", "1 0", "01");
    row("no section", "", "");
    row("reference counts as stored", "1 2 -1", "0102");
    row("below 0", "1 -2", "");
}

void TestTxPackage::setSectionSizeCutsAndFillsTheFrame()
{
    QFETCH(QString, sizes);
    QFETCH(QString, frame);
    TxPackage package;
    package.appendSection(bytes("01 02 03"));
    package.setSectionSize(sizeList(sizes));
    QCOMPARE(frameOf(package), frame);
    QCOMPARE(package.numberOfSections(), int(sizeList(sizes).size()));
}

void TestTxPackage::setSectionSizeChangesNothingWhenTheFrameWouldBeTooLong()
{
    TxPackage package;
    package.appendSection(bytes("01 02 03"));
    package.setSectionSize(QList<int>() << INT_MAX << INT_MAX);
    QCOMPARE(sizesOf(package), QString("3"));
    const ShortMemory shortage;
    package.setSectionSize(QList<int>() << 1000000000);
    QCOMPARE(sizesOf(package), QString("3"));
    QCOMPARE(frameOf(package), QString("010203"));
}

void TestTxPackage::setDataLeavesTheSections()
{
    TxPackage package;
    package.appendByte(1);
    package.appendWord(2);
    QCOMPARE(package.setData(bytes("aa bb cc dd")), true);
    QCOMPARE(frameOf(package), QString("aabbccdd"));
    QCOMPARE(sizesOf(package), QString("1 2"));
    char raw[] = {'\x11', '\x22', '\x33'};
    QCOMPARE(package.setData(raw, 2), true);
    QCOMPARE(frameOf(package), QString("1122"));
    QCOMPARE(sizesOf(package), QString("1 2"));
}

void TestTxPackage::setDataTakesACount_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("frame");
    QTest::newRow("one") << 1 << "01";
    QTest::newRow("some") << 2 << "0100";
    QTest::newRow("zero bytes do not end it") << 4 << "01000200";
    QTest::newRow("none") << 0 << "";
    QTest::newRow("negative") << -1 << "";
    QTest::newRow("lowest") << INT_MIN << "";
}

void TestTxPackage::setDataTakesACount()
{
    QFETCH(int, length);
    QFETCH(QString, frame);
    char raw[] = {1, 0, 2, 0};
    TxPackage package;
    package.appendByte(9);
    QCOMPARE(package.setData(raw, length), true);
    QCOMPARE(frameOf(package), frame);
    QCOMPARE(package.setData(nullptr, length), true);
    QCOMPARE(frameOf(package), QString());
}

void TestTxPackage::setDataMayTakeThePackagesOwnBytes()
{
    TxPackage package;
    package.setData(bytes("01 02 03 04"));
    QCOMPARE(package.setData(package.data() + 1, 2), true);
    QCOMPARE(frameOf(package), QString("0203"));
}

void TestTxPackage::dataIsThePackagesOwn()
{
    TxPackage package;
    package.appendSection(bytes("01 02"));
    const QByteArray copy = package.byteArrayData();
    package.data()[1] = 0x55;
    QCOMPARE(frameOf(package), QString("0155"));
    QCOMPARE(hex(copy), QString("0102"));
}

void TestTxPackage::byteArrayDataIsACopy()
{
    TxPackage package;
    package.appendSection(bytes("01 02"));
    QByteArray copy = package.byteArrayData();
    copy[0] = 0x55;
    QCOMPARE(frameOf(package), QString("0102"));
}

void TestTxPackage::appendingItsOwnBytesWorks()
{
    TxPackage package;
    package.appendSection(bytes("01 02 03"));
    for (int i = 0; i < 6; ++i)
        QCOMPARE(package.appendSection(package.byteArrayData()), true);
    QCOMPARE(package.totalSize(), 192);
    QCOMPARE(package.byteArrayData(), QByteArray("\1\2\3").repeated(64));
}

void TestTxPackage::appendingWithoutMemoryLeavesThePackage()
{
    const int kSize = 30000000; // far fewer than ten of these fit
    const QByteArray large(kSize, 'x');
    TxPackage package;
    package.appendByte(1);
    int appended = 0;
    const ShortMemory shortage;
    while (appended < 10 && package.appendSection(large))
        ++appended;
    QVERIFY(appended < 10);
    QCOMPARE(package.numberOfSections(), 1 + appended);
    QCOMPARE(package.totalSize(), 1 + appended * kSize);
    QCOMPARE(hex(package.dataAt(0)), QString("01"));
}

// Of the text and the section only the first character and byte exist; no more of them is looked at.
void TestTxPackage::appendingTextWithoutMemoryLeavesThePackage()
{
    const QChar character('x');
    const QString text = QString::fromRawData(&character, 1000000000);
    TxPackage package;
    package.appendByte(1);
    const ShortMemory shortage;
    QCOMPARE(package.appendString(text), false);
    QCOMPARE(sizesOf(package), QString("1"));
    QCOMPARE(frameOf(package), QString("01"));
}

void TestTxPackage::sectionThatMakesTheFrameTooLongIsRefused()
{
    const char byte = 2;
    const QByteArray longest = QByteArray::fromRawData(&byte, INT_MAX);
    TxPackage package;
    package.appendByte(1);
    QCOMPARE(package.appendSection(longest), false);
    QCOMPARE(sizesOf(package), QString("1"));
    QCOMPARE(frameOf(package), QString("01"));
}

void TestTxPackage::settingDataWithoutMemoryLeavesThePackage()
{
    TxPackage package;
    package.appendByte(1);
    char *const nowhereNearEnough = package.data();
    const ShortMemory shortage;
    QCOMPARE(package.setData(nowhereNearEnough, 1000000000), false);
    QCOMPARE(frameOf(package), QString("01"));
}

void TestTxPackage::toStringShowsBytesAndText_data()
{
    QTest::addColumn<QString>("array");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *array, const QString &text) {
        QTest::newRow(name) << array << text;
    };
    row("empty", "", "() : ");
    row("no leading zero, lower case", "0aff", QString("(0Xa 0Xff ) : ") + QChar(0x0A) + QChar(0xFF));
    row("0X5 and 0Xfe", "05fe", QString("(0X5 0Xfe ) : ") + QChar(0x05) + QChar(0xFE));
    row("text ends at a zero byte", "41004200", "(0X41 0X0 0X42 0X0 ) : A");
}

void TestTxPackage::toStringShowsBytesAndText()
{
    QFETCH(QString, array);
    QFETCH(QString, text);
    TxPackage package;
    package.appendSection(QByteArray::fromHex(array.toLatin1()));
    QCOMPARE(package.toString(), text);
}

void TestTxPackage::clearAllStartsAgain()
{
    TxPackage package;
    package.appendDWord(1);
    package.clearAll();
    QCOMPARE(package.totalSize(), 0);
    QCOMPARE(package.numberOfSections(), 0);
    QCOMPARE(package.toString(), QString("() : "));
    QCOMPARE(package.appendByte(2), true);
    QCOMPARE(frameOf(package), QString("02"));
    QCOMPARE(sizesOf(package), QString("1"));
}

TEST_CLASS(TestTxPackage)
#include "test_tx_package.moc"
