// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a tag file does not let be written.

#include "host/items/write_guard.h"

#include "host/items/assignment.h"
#include "host/items/tag_file.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace host;

namespace {

const char kGuardedTags[] = "name,address,type,scale,offset,unit,access,min,max\n"
                            "Boiler,VW100,i16,0.1,-40,°C,rw,5,90\n"
                            "Setting,VD20,f32,,,,,0.1,0.3\n"
                            "Speeds,VW10*3,,,,1/min,,,1500\n"
                            "Drop,VW30,i16,,,,,-3,\n"
                            "Hours,VW40,bcd,,,h,,0,24\n"
                            "Total,VD50,i32,,,,ro,0,10\n"
                            "Free,VW60,i16\n";

// Tags that lie in the same memory as others, and in other memory that has the same numbers.
const char kOverlapping[] = "name,address,type,access,min,max\n"
                            "Status,V10.3,,ro,,\n"
                            "Levels,VW20*3,i16,,0,100\n"
                            "Far,VB30@5,,ro,,\n"
                            "Near,VB31@2,,ro,,\n"
                            "Timer,T37,,,,300\n"
                            "Done,T38:bool,,ro,,\n"
                            "Block,VB40*8,,rw,,\n"
                            "Inside,VB42,,,,9\n"
                            "Flag,M2.0*10,,ro,,\n"
                            "Output,AQW4,,,0,\n"
                            "Digits,VW50,bcd,,0,5000\n";

} // namespace

class TestWriteGuard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void valuesWithinTheLimitsAreWritten_data();
    void valuesWithinTheLimitsAreWritten();
    void valuesOutsideAndTagsThatAreOnlyReadAreRefused_data();
    void valuesOutsideAndTagsThatAreOnlyReadAreRefused();
    void memoryOfTagsIsHeldToThemUnderEveryName_data();
    void memoryOfTagsIsHeldToThemUnderEveryName();
    void aRawAddressIsHeldToTheTagsOfTheSameText();

private:
    void check(const QString &text) const;

    QTemporaryDir directory;
};

void TestWriteGuard::initTestCase()
{
    QVERIFY(QDir::setCurrent(directory.path()));
    QFile file("plant.csv");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(kGuardedTags);
}

void TestWriteGuard::check(const QString &text) const
{
    const Assignment assignment = parseAssignment("@plant.csv:" + text);
    checkWritable(assignment.tag, assignment.data);
}

void TestWriteGuard::valuesWithinTheLimitsAreWritten_data()
{
    addRefusedTexts();
    for (const char *text : {"Boiler=5", "Boiler=90", "Boiler=90.04", "Setting=0.1", "Setting=0.3",
                             "Speeds=0,1500,7", "Drop=-3", "Drop=32767", "Hours=24", "Free=-32768"})
        QTest::newRow(text) << QString(text) << QString();
}

void TestWriteGuard::valuesWithinTheLimitsAreWritten()
{
    compareRefusal([this](const QString &text) { check(text); });
}

void TestWriteGuard::valuesOutsideAndTagsThatAreOnlyReadAreRefused_data()
{
    addRefusedTexts();
    const QString boiler = QString::fromUtf8("Boiler takes values from 5 to 90 °C, as plant.csv:2 says");
    refused("Boiler=90.1", QString::fromUtf8("90.1 °C is more than the maximum, 90 °C"), boiler);
    refused("Boiler=4.9", QString::fromUtf8("4.9 °C is less than the minimum, 5 °C"), boiler);
    const QString setting = "Setting takes values from 0.1 to 0.3, as plant.csv:3 says";
    refused("Setting=0.30000004", "0.30000004 is more than the maximum, 0.3", setting);
    refused("Setting=nan", "nan is no value between limits", setting);
    refused("Setting=-inf", "-inf is no value between limits", setting);
    refused("Speeds=1,1501,2", "1501 1/min is more than the maximum, 1500 1/min",
            "Speeds takes values up to 1500 1/min, as plant.csv:4 says");
    refused("Drop=-4", "-4 is less than the minimum, -3",
            "Drop takes values from -3 on, as plant.csv:5 says");
    refused("Hours=25", "25 h is more than the maximum, 24 h",
            "Hours takes values from 0 to 24 h, as plant.csv:6 says");
    refused("Total=5", "the tag is only to be read",
            "the access of Total is ro in plant.csv:7; rw or nothing there lets it be written");
}

void TestWriteGuard::valuesOutsideAndTagsThatAreOnlyReadAreRefused()
{
    compareRefusal([this](const QString &text) { check(text); });
}

void TestWriteGuard::memoryOfTagsIsHeldToThemUnderEveryName_data()
{
    QTest::addColumn<QString>("objections");
    const auto row = [](const char *assignment, const char *objections) {
        QTest::newRow(assignment) << objections;
    };
    row("V10.3=0", "Status: the tag is only to be read");
    row("VB10=0", "Status: the tag is only to be read");
    row("V9.0=0,0,0,0,0,0,0,0,0,0,0,0", "Status: the tag is only to be read");
    row("V9.0=0,0,0,0,0,0,0,0,0,0,0", "");
    row("V10.4=1", "");
    row("VB11=1", "");
    row("MB10=1", "");
    row("VW20=100,0,5", "");
    row("VW22=101", "Levels: 101 is more than the maximum, 100");
    row("VB22:hex=0065", "Levels: 101 is more than the maximum, 100");
    row("VD20:hex=00640065", "Levels: 101 is more than the maximum, 100");
    row("V22.0=0,0,0,0,0,0,0,0,1,0,1,0,0,1,1,0", "Levels: 101 is more than the maximum, 100");
    row("V22.0=0,0,0,0,0,0,0,0,0,0,1,0,0,1,1,0", "");
    row("VW18=7,65535", "Levels: -1 is less than the minimum, 0");
    row("VB23=1", "Levels: only a part of VW22 is written");
    row("VB19=1,0", "Levels: only a part of VW20 is written");
    row("VB30=1", "");
    row("VB30@5=1", "Far: the tag is only to be read");
    row("VB31=1", "Near: the tag is only to be read");
    row("VB31@2=1", "Near: the tag is only to be read");
    row("VB31@3=1", "");
    row("T37=300", "");
    row("T36=0,301", "Timer: 301 is more than the maximum, 300");
    row("T38=1", "");
    row("C37=301", "");
    row("VB40=1,2,9", "");
    row("VB40=1,2,10", "Inside: 10 is more than the maximum, 9");
    row("MB3=0", "Flag: the tag is only to be read");
    row("MB4=0", "");
    row("AQW2=0,-1", "Output: -1 is less than the minimum, 0");
    row("VW50:hex=5001", "Digits: 5001 is more than the maximum, 5000");
    row("VW50:hex=0a00", "Digits: 0x0a00 is not BCD");
    row("VB0:hex=00000000000000000000000000000000000000000000ff",
        "Status: the tag is only to be read; Levels: only a part of VW22 is written");
}

void TestWriteGuard::memoryOfTagsIsHeldToThemUnderEveryName()
{
    Outcome outcome;
    const WriteGuard guard(parseTagFile("overlapping.csv", kOverlapping, outcome), 2);
    QVERIFY(outcome.isSuccess());
    const Assignment assignment = parseAssignment(QTest::currentDataTag());
    QStringList objections;
    for (const Objection &objection : guard.objectionsTo(assignment.tag.item, assignment.data))
        objections << objection.failure.about(objection.tag.label()).text();
    QTEST(objections.join("; "), "objections");
}

void TestWriteGuard::aRawAddressIsHeldToTheTagsOfTheSameText()
{
    Outcome outcome;
    const char file[] = "name,address,type,access,max\nSpeed,4x1,u16*2,,50\nState,4x9,u8,ro\n";
    const WriteGuard guard(parseTagFile("raw.csv", file, outcome, Notation::Raw), 1);
    QVERIFY(outcome.isSuccess());
    const auto objectionsTo = [&guard](const char *text) {
        const Assignment assignment = parseAssignment(text, Notation::Raw);
        return guard.objectionsTo(assignment.tag.item, assignment.data).size();
    };
    QCOMPARE(objectionsTo("4x1:u16=50,50"), size_t(0));
    QCOMPARE(objectionsTo("4x1:u16=50,51"), size_t(1));
    QCOMPARE(objectionsTo("4x9:hex=00"), size_t(1));
    QCOMPARE(objectionsTo("4x8:u8=1"), size_t(0));
}

TEST_CLASS(TestWriteGuard)
#include "test_write_guard.moc"
