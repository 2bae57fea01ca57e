// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tag files: what they mean, what is wrong with them, and values to and from what people see.

#include "host/items/tag_file.h"

#include "hex.h"
#include "host/items/assignment.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QTemporaryDir>
#include <QtTest>

#include <optional>
#include <string>
#include <vector>

using namespace host;

namespace {

const char kTags[] = "name,address,type,scale,offset,unit\n"
                     "Boiler,VW100,i16,0.1,-40,°C\n"
                     "Levels,VW10*4,,0.5,,mm\n"
                     "Speed,VD20,f32,60,,1/min\n"
                     "Pump,Q0.3\n"
                     "Label,VB40:str*5\n";

// "Boiler VW100:i16*1 * 0.1 + -40 °C"
QString textOf(const Tag &tag)
{
    return QString("%1 %2:%3*%4 * %5 + %6 %7")
        .arg(tag.name, tag.item.address.text(), typeName(tag.item.type))
        .arg(tag.item.count)
        .arg(tag.scaling.scale)
        .arg(tag.scaling.offset)
        .arg(tag.unit)
        .trimmed();
}

QStringList textsOf(const char *file)
{
    Outcome outcome;
    QStringList texts;
    for (const Tag &tag : parseTagFile("tags.csv", file, outcome))
        texts << textOf(tag);
    return texts;
}

} // namespace

class TestTagFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyColumnHasItsMeaning();
    void filesOfSpreadsheetsAreRead_data();
    void filesOfSpreadsheetsAreRead();
    void aTagHasTheStationOfItsAddressOrOfItsColumn_data();
    void aTagHasTheStationOfItsAddressOrOfItsColumn();
    void aTagHasTheIntervalOfItsColumn();
    void aTagHasTheAccessTheLimitsAndTheDeadbandOfItsColumns_data();
    void aTagHasTheAccessTheLimitsAndTheDeadbandOfItsColumns();
    void whatIsWrongInAFileIsAUsageError_data();
    void whatIsWrongInAFileIsAUsageError();
    void oneTagOfAFileIsFound();
    void aTagThatIsNotThereIsToldWithThoseThatAre();
    void itemsAndFilesMix();
    void valuesAreShownScaledWithTheirUnit_data();
    void valuesAreShownScaledWithTheirUnit();
    void valuesAreAssignedAsTheyAreShown_data();
    void valuesAreAssignedAsTheyAreShown();
    void wrongAssignmentsToTagsAreRefused_data();
    void wrongAssignmentsToTagsAreRefused();

private:
    QString reference(const QString &name) const { return '@' + directory.filePath("tags.csv") + ':' + name; }

    QTemporaryDir directory;
};

void TestTagFile::initTestCase()
{
    QFile file(directory.filePath("tags.csv"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(kTags);
}

void TestTagFile::everyColumnHasItsMeaning()
{
    QCOMPARE(textsOf(kTags), QStringList({"Boiler VW100:i16*1 * 0.1 + -40 °C",
                                          "Levels VW10:u16*4 * 0.5 + 0 mm", "Speed VD20:f32*1 * 60 + 0 1/min",
                                          "Pump Q0.3:bool*1 * 1 + 0", "Label VB40:str*5 * 1 + 0"}));
}

void TestTagFile::filesOfSpreadsheetsAreRead_data()
{
    QTest::addColumn<QByteArray>("file");
    const auto row = [](const char *name, const char *file) { QTest::newRow(name) << QByteArray(file); };
    row("semicolons", "name;address;type\nBoiler;VW100;i16\n");
    row("tabulators", "name\taddress\ttype\nBoiler\tVW100\ti16");
    row("another order", "type,address,name\ni16,VW100,Boiler\n");
    row("quotes", "\"name\",\"address\",\"type\"\n\"Boiler\",\"VW100\",\"i16\"\n");
    row("ends of lines as on Windows, and a byte order mark",
        "\xef\xbb\xbfname,address,type\r\nBoiler,VW100,i16\r\n");
    row("comments, blanks and empty lines",
        "# tags\n\nname, address, type\n# one\n Boiler , VW100 , i16 \n\n");
    row("the type with the address", "name,address,type\nBoiler,VW100:i16,u32\n");
}

void TestTagFile::filesOfSpreadsheetsAreRead()
{
    QFETCH(QByteArray, file);
    QCOMPARE(textsOf(file), QStringList({"Boiler VW100:i16*1 * 1 + 0"}));
}

void TestTagFile::aTagHasTheStationOfItsAddressOrOfItsColumn_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("count");
    const auto row = [](const char *line, const char *place, const char *type, int count) {
        QTest::newRow(line) << place << type << count;
    };
    row("Boiler,VW100,,", "VW100", "u16", 1);
    row("Boiler,VW100,,3", "VW100@3", "u16", 1);
    row("Boiler,VW100@3,,", "VW100@3", "u16", 1);
    row("Boiler,VW100@3,,3", "VW100@3", "u16", 1);
    row("Boiler,VW100@3,i16,", "VW100@3", "i16", 1);
    row("Boiler,VW100*4@3,i16,", "VW100@3", "i16", 4);
    row("Boiler,VW100@3*4,i16,3", "VW100@3", "i16", 4);
    row("Boiler,VW100*4,i16,126", "VW100@126", "i16", 4);
    row("Boiler,VW100:hex*4@3,i16,", "VW100@3", "hex", 4);
    row("Boiler,VD100*2@3,f32:swap,", "VD100@3", "f32:swap", 2);
    row("Label,VB100*20,string,", "VB100", "string", 20);
    row("Label,VB100,string*20,3", "VB100@3", "string", 20);
    row("Levels,VB0..VB15,hex,3", "VB0@3", "hex", 16);
    row("Levels,VW0..VW30@3,i16,", "VW0@3", "i16", 16);
    row("Levels,VB0..VB7:u64:swap,i16,", "VB0", "u64:swap", 1);
    row("Doors,V0.0..V1.7,,", "V0.0", "bool", 16);
}

void TestTagFile::aTagHasTheStationOfItsAddressOrOfItsColumn()
{
    Outcome outcome;
    const QByteArray file = QByteArray("name,address,type,station\n") + QTest::currentDataTag();
    const std::vector<Tag> tags = parseTagFile("tags.csv", file, outcome);
    QCOMPARE(tags.size(), size_t(1));
    const Item &item = tags.front().item;
    QTEST(item.place(), "place");
    QTEST(item.typeText(), "type");
    QTEST(item.count, "count");
}

void TestTagFile::aTagHasTheIntervalOfItsColumn()
{
    Outcome outcome;
    const char file[] =
        "name,address,interval\nFast,VW0,1\nSlow,VW2,3600000\nUnit,VW8,1.5s\nUsual,VW4,\nShort,VW6\n";
    QList<int> intervals;
    for (const Tag &tag : parseTagFile("tags.csv", file, outcome))
        intervals << tag.interval.value_or(-1);
    QVERIFY(outcome.isSuccess());
    QCOMPARE(intervals, QList<int>({1, 3600000, 1500, -1, -1}));
}

void TestTagFile::aTagHasTheAccessTheLimitsAndTheDeadbandOfItsColumns_data()
{
    QTest::addColumn<QString>("meaning");
    const auto row = [](const char *line, const char *meaning) { QTest::newRow(line) << meaning; };
    row("Boiler,VW100,,ro,,,", "ro - - -");
    row("Boiler,VW100,,rw,5,90.5,0.5", "rw 5 90.5 0.5");
    row("Boiler,VW100,i16,,-40,,", "unsaid -40 - -");
    row("Boiler,VD100,f32,,,1e3,0", "unsaid - 1000 0");
    row("Boiler,VW100,bcd,,7,7,", "unsaid 7 7 -");
    row("Pump,Q0.3,,ro,,,", "ro - - -");
    row("Label,VB40:str*5,,rw,,,", "rw - - -");
    row("Boiler,VW100", "unsaid - - -");
    row("Boiler,VW100,i16,,5,,", "unsaid 5 - -");
    row("Boiler,VW100,i16,,,-5,", "unsaid - -5 -");
    row("Boiler,VB0,u64,,9007199254740991,,", "unsaid 9.0072e+15 - -");
}

void TestTagFile::aTagHasTheAccessTheLimitsAndTheDeadbandOfItsColumns()
{
    Outcome outcome;
    const QByteArray file =
        QByteArray("# a comment\nname,address,type,access,min,max,deadband\n") + QTest::currentDataTag();
    const std::vector<Tag> tags = parseTagFile("tags.csv", file, outcome);
    QCOMPARE(tags.size(), size_t(1));
    const Tag &tag = tags.front();
    QStringList meaning(QStringList({"unsaid", "ro", "rw"}).at(int(tag.access)));
    for (const std::optional<double> &number : {tag.minimum, tag.maximum, tag.deadband})
        meaning << (number ? QString::number(*number) : "-");
    QTEST(meaning.join(' '), "meaning");
    QCOMPARE(tag.definedAt, QString("tags.csv:3"));
}

void TestTagFile::whatIsWrongInAFileIsAUsageError_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("nothing in it") << QByteArray("");
    QTest::newRow("no tags") << QByteArray("name,address\n");
    QTest::newRow("no head") << QByteArray("Boiler,VW100\n");
    QTest::newRow("a column twice in two cases") << QByteArray("name,address,Name\nBoiler,VW100,Boiler\n");
    QTest::newRow("a column twice") << QByteArray("name,address,name\nBoiler,VW100,Boiler\n");
    QTest::newRow("no column for the address") << QByteArray("name,type\nBoiler,i16\n");
    QTest::newRow("a wrong address") << QByteArray("name,address\nBoiler,vw100\n");
    QTest::newRow("a wrong type") << QByteArray("name,address,type\nBoiler,VW100,INT\n");
    QTest::newRow("no name") << QByteArray("name,address\n,VW100\n");
    QTest::newRow("a name twice") << QByteArray("name,address\nBoiler,VW100\nBoiler,VW102\n");
    QTest::newRow("a scale that is no number") << QByteArray("name,address,scale\nBoiler,VW100,\"0,1\"\n");
    QTest::newRow("a scale of nothing") << QByteArray("name,address,scale\nBoiler,VW100,0\n");
    QTest::newRow("an endless scale") << QByteArray("name,address,scale\nBoiler,VW100,inf\n");
    QTest::newRow("a scaled bit") << QByteArray("name,address,scale\nPump,Q0.3,2\n");
    for (const char *station : {"0", "127", "-1", "2.5", "press"})
        QTest::addRow("the station %s", station) << QByteArray("name,address,station\nPump,Q0.3,") + station;
    QTest::newRow("two stations") << QByteArray("name,address,station\nPump,Q0.3@3,4\n");
    QTest::newRow("a wrong station with the address") << QByteArray("name,address\nPump,Q0.3@127\n");
    for (const char *interval : {"0", "-1", "3600001", "1.5", "2h", "1 t", "fast"})
        QTest::addRow("the interval %s", interval)
            << QByteArray("name,address,interval\nPump,Q0.3,") + interval;
    for (const char *line :
         {"VW0,,RO", "VW0,,xy", "VW0,,,low", "VW0,,,,inf", "VW0,,,,,nan", "VW0,,,5,4.9", "VW0,,,,,-0.1",
          "V1.0,,,0", "VB1,hex,,,5", "VB1,str,,0,5", "V1.0,,,,,0", "VB1,hex,,,,0", "VB1,str,,,,1",
          "VB0,u64,,9007199254740992", "VB0,i64,,,-9007199254740992"})
        QTest::addRow("writing as in %s", line)
            << QByteArray("name,address,type,access,min,max,deadband\nBoiler,") + line;
    QTest::newRow("too many cells") << QByteArray("name,address\nBoiler,VW100,i16\n");
    QTest::newRow("an open quote") << QByteArray("name,address\n\"Boiler,VW100\n");
}

void TestTagFile::whatIsWrongInAFileIsAUsageError()
{
    QFETCH(QByteArray, file);
    Outcome outcome;
    parseTagFile("tags.csv", file, outcome);
    QCOMPARE(outcome.exitCode(), int(ExitCode::Usage));
}

void TestTagFile::oneTagOfAFileIsFound()
{
    QCOMPARE(textOf(findTag(reference("Speed"))), QString("Speed VD20:f32*1 * 60 + 0 1/min"));
}

void TestTagFile::aTagThatIsNotThereIsToldWithThoseThatAre()
{
    QCOMPARE(failureOf([this] { findTag(reference("boiler")); }),
             QString("2: there is no tag \"boiler\" in the file / its tags are Boiler, Levels, Speed, Pump, "
                     "Label"));
    QVERIFY(
        failureOf([] { findTag("@/no/such.csv:Boiler"); }).startsWith("2: /no/such.csv cannot be read: "));
}

void TestTagFile::itemsAndFilesMix()
{
    Outcome outcome;
    const QString file = "@" + directory.filePath("tags.csv");
    QStringList labels;
    for (const Tag &tag : parseTags({"VB0", file + ":Pump", file, "VB1:i8"}, outcome))
        labels << tag.label();
    QVERIFY(outcome.isSuccess());
    QCOMPARE(labels.join(' '), QString("VB0 Pump Boiler Levels Speed Pump Label VB1"));
}

void TestTagFile::valuesAreShownScaledWithTheirUnit_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *data, const char *text) {
        QTest::newRow(name) << data << text;
    };
    row("Boiler", "0267", "21.5 °C");
    row("Levels", "0001000300000005", "0.5 1.5 0 2.5 mm");
    row("Speed", "41c80000", "1500 1/min");
    row("Pump", "01", "1");
    row("Label", "48656c6c6f", "\"Hello\"");
}

void TestTagFile::valuesAreShownScaledWithTheirUnit()
{
    QFETCH(QString, data);
    const Tag tag = findTag(reference(QTest::currentDataTag()));
    QTEST(valueLines(tag, shownTexts(tag, decodeValues(tag.item, bytes(qPrintable(data))))).front().text,
          "text");
}

void TestTagFile::valuesAreAssignedAsTheyAreShown_data()
{
    QTest::addColumn<QString>("data");
    QTest::newRow("Boiler=21.5") << "0267";
    QTest::newRow("Boiler=-40") << "0000";
    QTest::newRow("Boiler=-45.04") << "ffce"; // -50.4 is nearest to -50
    QTest::newRow("Levels=0.5,1.5,0,2.5") << "0001000300000005";
    QTest::newRow("Levels=0.5") << "0001";
    QTest::newRow("Levels=0.0,5.0") << "0000000a";
    QTest::newRow("Speed=1500") << "41c80000";
    QTest::newRow("Pump=on") << "01";
    QTest::newRow("Label=Hello") << "48656c6c6f";
}

void TestTagFile::valuesAreAssignedAsTheyAreShown()
{
    const Assignment assignment = parseAssignment(reference(QTest::currentDataTag()));
    QTEST(hex(assignment.data), "data");
    QCOMPARE(assignment.tag.item.size(), int(assignment.data.size()));
}

void TestTagFile::wrongAssignmentsToTagsAreRefused_data()
{
    addRefusedTexts();
    refused("Boiler=warm", "\"warm\" is not a number",
            "Boiler is scaled: write a number with a point, as 21.5");
    refused("Boiler=4000", "40400 is too large for i16: -32768 to 32767", "the nearest value is 32767");
    refused("Boiler=1,2", "there are more values than the tag has", "Boiler has 1");
    refused("Levels=0,5", "\"0,5\" may be one number or two",
            "write Levels=0.5 for one number, Levels=0.0,5.0 for two");
    refused("Label=Hello!", "there are more values than the tag has", "Label has 5");
}

void TestTagFile::wrongAssignmentsToTagsAreRefused()
{
    compareRefusal([this](const QString &text) { parseAssignment(reference(text)); });
}

TEST_CLASS(TestTagFile)
#include "test_tag_file.moc"
