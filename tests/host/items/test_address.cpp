// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Address texts: what is valid, and what is proposed for what is not.

#include "host/items/address.h"

#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

using namespace host;

class TestAddress : public QObject
{
    Q_OBJECT

private slots:
    void everyAreaHasItsForms_data();
    void everyAreaHasItsForms();
    void invalidTextsGetTheNearestValidOne_data();
    void invalidTextsGetTheNearestValidOne();
    void aStationBelongsToItemsOnly();
    void textsWithoutAnythingNearGetTheListOfAreas_data();
    void textsWithoutAnythingNearGetTheListOfAreas();
};

void TestAddress::everyAreaHasItsForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("bit");
    QTest::addColumn<int>("width");
    const auto row = [](const char *text, AddressKind kind, const char *prefix, int number, int bit,
                        int width) {
        QTest::newRow(text) << QString(text) << int(kind) << QString(prefix) << number << bit << width;
    };
    for (const char *area : {"I", "Q", "V", "M", "SM", "S"}) {
        const QByteArray name = area;
        row(name + "10.7", AddressKind::Bit, area, 10, 7, 1);
        row(name + "B10", AddressKind::Memory, name + "B", 10, 0, 1);
        row(name + "W10", AddressKind::Memory, name + "W", 10, 0, 2);
        row(name + "D10", AddressKind::Memory, name + "D", 10, 0, 4);
    }
    row("AIW30", AddressKind::Analog, "AIW", 30, 0, 2);
    row("AQW0", AddressKind::Analog, "AQW", 0, 0, 2);
    row("T37", AddressKind::Timer, "T", 37, 0, 2);
    row("C255", AddressKind::Counter, "C", 255, 0, 2);
    row("HC5", AddressKind::HighSpeedCounter, "HC", 5, 0, 4);
    row("VB2097151", AddressKind::Memory, "VB", 2097151, 0, 1);
    row("T65535", AddressKind::Timer, "T", 65535, 0, 2);
}

void TestAddress::everyAreaHasItsForms()
{
    QFETCH(QString, text);
    const Address address = parseAddress(text);
    QTEST(int(address.kind), "kind");
    QTEST(address.prefix, "prefix");
    QTEST(address.number, "number");
    QTEST(address.bit, "bit");
    QTEST(address.elementWidth, "width");
    QCOMPARE(address.text(), text);
}

void TestAddress::invalidTextsGetTheNearestValidOne_data()
{
    addRefusedTexts();
    const auto row = [](const QString &text, const QString &nearest) {
        refused(text, "not an address of the controller", "write " + nearest + " instead of " + text);
    };
    row("vb1", "VB1");
    row("vb100", "VB100");
    row("Vb100", "VB100");
    row("VB0100", "VB100");
    row(" VB100", "VB100");
    row("VB 100", "VB100");
    row("AI0", "AIW0");
    row("AQ4", "AQW4");
    row("AIW3", "AIW2");
    for (const QString text : {"V10.9", "V10.12", "VB10.8"})
        refused(text, "not an address of the controller", "bits are 0 to 7: write V10.7 instead of " + text);
    row("V10.03", "V10.3");
    row("V10", "VB10 or V10.0");
    row("sm0", "SMB0 or SM0.0");
    row("VB10.3", "V10.3");
    row("VW10.3", "V10.3");
    row("T37.0", "T37");
    row("AIW2.1", "AIW2");
    row("E0.1", "I0.1");
    row("AB4", "QB4");
    row("AEW2", "AIW2");
    row("Z5", "C5");
    row("HSC1", "HC1");
    row("VX1.2", "V1.2");
    row("DBW8", "VW8");
    row("VB2097152", "VB2097151");
    row("VB999999999999999999", "VB2097151");
    row("T65536", "T65535");
}

void TestAddress::invalidTextsGetTheNearestValidOne()
{
    compareRefusal([](const QString &text) { parseAddress(text); });
}

void TestAddress::aStationBelongsToItemsOnly()
{
    QCOMPARE(failureOf([] { parseAddress("VB0@3"); }),
             QString("2: no station can stand here / name it with --station"));
}

void TestAddress::textsWithoutAnythingNearGetTheListOfAreas_data()
{
    addRefusedTexts();
    const QString areas = "areas are I Q V M SM S (bits, as V10.3, or with B, W or D, as VB100), AIW, AQW, "
                          "T, C and HC";
    refused("X1", "not an address of the controller", areas);
    for (const char *text :
         {"", "100", "VB", "VB-1", "VB1.", "V1.x", "VB1VB2", "V1.2.3", "V\u00c41", "VB\u0661", "VB1\nVB2"})
        refused(text, "not an address of the controller", "an address is letters and a number; " + areas);
}

void TestAddress::textsWithoutAnythingNearGetTheListOfAreas()
{
    compareRefusal([](const QString &text) { parseAddress(text); });
}

TEST_CLASS(TestAddress)
#include "test_address.moc"
