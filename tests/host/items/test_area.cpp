// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The table of areas: what the letters of an address name.

#include "host/items/area.h"

#include "test_class.h"

#include <QtTest>

#include <optional>

using namespace host;

class TestArea : public QObject
{
    Q_OBJECT

private slots:
    void lettersNameAnAreaAndItsElements_data();
    void lettersNameAnAreaAndItsElements();
    void otherLettersNameNothing_data();
    void otherLettersNameNothing();
    void bytesOfAnAreaHaveLettersOfTheirOwn();
    void timersAndCountersAreObjects();
};

void TestArea::lettersNameAnAreaAndItsElements_data()
{
    QTest::addColumn<QString>("area");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("width");
    const auto row = [](const QByteArray &letters, const char *area, const char *name, AddressKind kind,
                        int width) {
        QTest::newRow(letters) << QString(area) << QString(name) << int(kind) << width;
    };
    const auto rows = [&](const char *area, const char *name) {
        const QByteArray letters = area;
        row(letters, area, name, AddressKind::Bit, 1);
        row(letters + "B", area, name, AddressKind::Memory, 1);
        row(letters + "W", area, name, AddressKind::Memory, 2);
        row(letters + "D", area, name, AddressKind::Memory, 4);
    };
    rows("I", "inputs");
    rows("Q", "outputs");
    rows("V", "variable memory");
    rows("M", "bit memory");
    rows("SM", "special memory");
    rows("S", "sequence control relays");
    row("AIW", "AIW", "analogue inputs", AddressKind::Analog, 2);
    row("AQW", "AQW", "analogue outputs", AddressKind::Analog, 2);
    row("T", "T", "timers", AddressKind::Timer, 2);
    row("C", "C", "counters", AddressKind::Counter, 2);
    row("HC", "HC", "high-speed counters", AddressKind::HighSpeedCounter, 4);
}

void TestArea::lettersNameAnAreaAndItsElements()
{
    const std::optional<AreaElement> element = elementNamed(QTest::currentDataTag());
    QVERIFY(element.has_value());
    QTEST(element->area.letters, "area");
    QTEST(element->area.name, "name");
    QTEST(int(element->kind), "kind");
    QTEST(element->width, "width");
    QCOMPARE(&areaOf(QTest::currentDataTag()), &element->area);
}

void TestArea::otherLettersNameNothing_data()
{
    QTest::addColumn<QString>("letters");
    for (const char *letters : {"", "B", "v", "vb", "AI", "AIB", "AIWB", "TB", "HCD", "VBB", "VX", "DB"})
        QTest::newRow(letters) << QString(letters);
}

void TestArea::otherLettersNameNothing()
{
    QFETCH(QString, letters);
    QVERIFY(!elementNamed(letters));
}

void TestArea::bytesOfAnAreaHaveLettersOfTheirOwn()
{
    for (const char *letters : {"SM", "SMB", "SMW", "SMD"}) {
        QVERIFY(areaOf(letters).hasBits());
        QCOMPARE(areaOf(letters).byteLetters(), QString("SMB"));
    }
    QVERIFY(!areaOf("AIW").hasBits());
    QVERIFY(!areaOf("T").hasBits());
}

void TestArea::timersAndCountersAreObjects()
{
    for (const char *letters : {"T", "C", "HC"})
        QVERIFY(isObject(elementNamed(letters)->kind));
    for (const char *letters : {"V", "VB", "AIW"})
        QVERIFY(!isObject(elementNamed(letters)->kind));
}

TEST_CLASS(TestArea)
#include "test_area.moc"
