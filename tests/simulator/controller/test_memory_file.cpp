// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The simulator's memory as a file.

#include "complaint.h"
#include "seed.h"

#include "simulator/controller/areas.h"
#include "simulator/controller/memory.h"
#include "simulator/controller/memory_file.h"
#include "simulator/controller/memory_file_error.h"
#include "simulator/controller/memory_json.h"
#include "test_class.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdint>
#include <random>
#include <string>

namespace {

QString errorIn(const char *text)
{
    return complaintOf<sim::MemoryFileError>([&] { sim::parseMemory(text); });
}

QString errorLoading(const QString &path)
{
    return complaintOf<sim::MemoryFileError>([&] { sim::loadMemory(path.toStdString()); });
}

QString errorSaving(const QString &path)
{
    return complaintOf<sim::MemoryFileError>([&] {
        sim::saveMemory({sim::exampleMemory(), {}}, path.toStdString());
    });
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray fileContent(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

// Mostly zero, as memories are, so that runs begin and end everywhere.
sim::Memory randomMemory(std::mt19937 &random)
{
    sim::Memory memory;
    const auto sometimes = [&random] { return random() % 4 == 0 ? unsigned(random()) : 0u; };
    for (auto &area : memory.byteAreas) {
        for (uint8_t &byte : area.second)
            byte = uint8_t(sometimes());
    }
    for (auto *objects : {&memory.timers, &memory.counters}) {
        for (sim::TimerOrCounter &object : *objects)
            object = {uint16_t(sometimes()), uint16_t(sometimes()), sometimes() % 2 == 1};
    }
    for (uint32_t &value : memory.highSpeedCounters)
        value = sometimes();
    return memory;
}

} // namespace

class TestSimulatorMemoryFile : public QObject
{
    Q_OBJECT

private slots:
    void everyAreaIsRead();
    void anyFieldMakesMemoriesDiffer();
    void whatTheFileLeavesOutIsZero();
    void exampleIsWrittenAsPeopleWouldWriteIt();
    void emptyMemoryIsAnEmptyObject();
    void writtenMemoryReadsBackAsItWas();
    void edgesOfAreasReadBack();
    void badTextIsRefusedWithItsPlace_data();
    void badTextIsRefusedWithItsPlace();
    void largestValuesAreTaken();
    void errorsNameTheLine_data();
    void errorsNameTheLine();
    void textThatIsNotJsonIsRefused_data();
    void textThatIsNotJsonIsRefused();
    void liveValuesAreReadAndWritten();
    void fileIsSavedAndLoaded();
    void savingReplacesTheFileAndLeavesNothingBeside();
    void loadErrorsNameTheFile();
    void saveErrorsNameTheFile();
    void failedSavingLeavesNothingBeside();
};

void TestSimulatorMemoryFile::everyAreaIsRead()
{
    const sim::Memory memory = sim::parseMemory(R"({
        "I": { "0": "01" }, "Q": { "1": "02" }, "V": { "100": "11223344", "200": "00 ff Ab" },
        "M": { "2": "03" }, "SM": { "549": "04" }, "S": { "3": "05" },
        "AI": { "4": "0607" }, "AQ": { "6": "0809" },
        "T": { "37": { "value": 300, "status": true, "preset": 500 } },
        "C": { "5": { "value": 7 } },
        "HC": { "0": 100000, "5": 4294967295 }
    })")
                                   .memory;
    QCOMPARE(int(memory.bytes(sim::kAreaI)[0]), 0x01);
    QCOMPARE(int(memory.bytes(sim::kAreaQ)[1]), 0x02);
    QCOMPARE(int(memory.bytes(sim::kAreaV)[100]), 0x11);
    QCOMPARE(int(memory.bytes(sim::kAreaV)[103]), 0x44);
    QCOMPARE(int(memory.bytes(sim::kAreaV)[201]), 0xFF);
    QCOMPARE(int(memory.bytes(sim::kAreaV)[202]), 0xAB);
    QCOMPARE(int(memory.bytes(sim::kAreaM)[2]), 0x03);
    QCOMPARE(int(memory.bytes(sim::kAreaSM)[549]), 0x04);
    QCOMPARE(int(memory.bytes(sim::kAreaS)[3]), 0x05);
    QCOMPARE(int(memory.bytes(sim::kAreaAI)[5]), 0x07);
    QCOMPARE(int(memory.bytes(sim::kAreaAQ)[6]), 0x08);
    QVERIFY((memory.timers[37] == sim::TimerOrCounter{300, 500, true}));
    QVERIFY((memory.counters[5] == sim::TimerOrCounter{7, 0, false}));
    QCOMPARE(memory.highSpeedCounters[0], 100000u);
    QCOMPARE(memory.highSpeedCounters[5], 4294967295u);
}

void TestSimulatorMemoryFile::anyFieldMakesMemoriesDiffer()
{
    const sim::Memory memory;
    for (const sim::TimerOrCounter &object :
         {sim::TimerOrCounter{1, 0, false}, sim::TimerOrCounter{0, 1, false},
          sim::TimerOrCounter{0, 0, true}}) {
        sim::Memory timer;
        timer.timers[3] = object;
        QVERIFY(!(timer == memory));
        sim::Memory counter;
        counter.counters[3] = object;
        QVERIFY(!(counter == memory));
    }
    sim::Memory fast;
    fast.highSpeedCounters[0] = 1;
    QVERIFY(!(fast == memory));
    sim::Memory bytes;
    bytes.bytes(sim::kAreaM)[0] = 1;
    QVERIFY(!(bytes == memory));
    QVERIFY(sim::Memory() == memory);
}

void TestSimulatorMemoryFile::whatTheFileLeavesOutIsZero()
{
    QVERIFY(sim::parseMemory("{}").memory == sim::Memory());
    QVERIFY(sim::parseMemory(R"({ "V": {}, "T": { "1": {} }, "M": { "0": "" } })").memory == sim::Memory());
}

void TestSimulatorMemoryFile::exampleIsWrittenAsPeopleWouldWriteIt()
{
    QCOMPARE(QString::fromStdString(sim::formatMemory({sim::exampleMemory(), {}})), QString(R"({
    "V": {
        "100": "11223344"
    },
    "SM": {
        "0": "01"
    },
    "T": {
        "37": {
            "value": 300,
            "preset": 100,
            "status": true
        }
    },
    "C": {
        "5": {
            "value": 5,
            "preset": 10,
            "status": false
        }
    },
    "HC": {
        "0": 100000
    }
}
)"));
}

void TestSimulatorMemoryFile::emptyMemoryIsAnEmptyObject()
{
    QCOMPARE(QString::fromStdString(sim::formatMemory({})), QString("{}\n"));
}

void TestSimulatorMemoryFile::writtenMemoryReadsBackAsItWas()
{
    std::mt19937 random(chooseSeed());
    for (int i = 0; i < 20; ++i) {
        const sim::Memory memory = randomMemory(random);
        QVERIFY2(sim::parseMemory(sim::formatMemory({memory, {}})).memory == memory,
                 qPrintable(QString::number(i)));
    }
}

void TestSimulatorMemoryFile::edgesOfAreasReadBack()
{
    sim::Memory memory;
    for (auto &area : memory.byteAreas) {
        area.second.front() = 0x01;
        area.second.back() = 0xFE;
    }
    memory.timers.front().status = true;
    memory.timers.back().preset = 1;
    memory.counters.back().value = 65535;
    QVERIFY(sim::parseMemory(sim::formatMemory({memory, {}})).memory == memory);
}

void TestSimulatorMemoryFile::badTextIsRefusedWithItsPlace_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *text, const char *error) {
        QTest::newRow(name) << text << error;
    };
    row("not an object", R"([1])", "the whole file: must be an object in braces");
    row("unknown area", R"({ "X": {} })",
        "\"X\": is not a part of the memory; there are I Q V M SM S AI AQ T C HC live");
    row("lower case area", R"({ "v": {} })",
        "\"v\": is not a part of the memory; there are I Q V M SM S AI AQ T C HC live");
    row("area without braces", R"({ "V": "00" })", "V: must be an object in braces");
    row("area twice", R"({ "V": {}, "V": {} })", "\"V\": comes twice");
    row("byte twice", R"({ "V": { "1": "01", "1": "02" } })", "\"1\": comes twice");
    row("address without number", R"({ "V": { "a": "00" } })", "V: \"a\" is not a number");
    row("address with sign", R"({ "V": { "-1": "00" } })", "V: \"-1\" is not a number");
    row("empty address", R"({ "V": { "": "00" } })", "V: \"\" is not a number");
    row("address with letters behind", R"({ "V": { "1b": "00" } })", "V: \"1b\" is not a number");
    row("huge address", R"({ "V": { "99999999999999999999": "00" } })",
        "V: \"99999999999999999999\" is not a number");
    row("address behind the area", R"({ "M": { "32": "00" } })",
        "M: \"32\" is too large, the last one is 31");
    row("bytes behind the area", R"({ "M": { "31": "0102" } })",
        "M31: goes on behind the area's last byte, M31");
    row("bytes as a number", R"({ "M": { "0": 11 } })", "M0: must be a text of hexadecimal bytes");
    row("odd digits", R"({ "M": { "0": "123" } })", "M0: \"123\" is not a text of hexadecimal bytes");
    row("blank in a byte", R"({ "M": { "0": "1 23 4" } })",
        "M0: \"1 23 4\" is not a text of hexadecimal bytes");
    row("no hexadecimal digit", R"({ "M": { "0": "0g" } })", "M0: \"0g\" is not a text of hexadecimal bytes");
    row("overlap", R"({ "M": { "1": "0102", "2": "03" } })", "M2: M2 was given before");
    row("overlap within", R"({ "M": { "10": "03", "9": "0102" } })", "M9: M10 was given before");
    row("overlap by another spelling", R"({ "M": { "1": "01", "01": "03" } })", "M1: M1 was given before");
    row("timer behind the last", R"({ "T": { "256": {} } })", "T: \"256\" is too large, the last one is 255");
    row("timer by another spelling", R"({ "T": { "1": {}, "01": {} } })", "T1: was given before");
    row("timer as a number", R"({ "T": { "1": 5 } })", "T1: must be an object in braces");
    row("timer field", R"({ "T": { "1": { "valu": 5 } } })",
        "T1: \"valu\" is unknown; there are value, preset and status");
    row("timer value too large", R"({ "T": { "1": { "value": 65536 } } })",
        "T1 value: must be a whole number from 0 to 65535");
    row("counter preset negative", R"({ "C": { "1": { "preset": -1 } } })",
        "C1 preset: must be a whole number from 0 to 65535");
    row("counter value broken", R"({ "C": { "1": { "value": 1.5 } } })",
        "C1 value: must be a whole number from 0 to 65535");
    row("status as a number", R"({ "C": { "1": { "status": 1 } } })", "C1 status: must be true or false");
    row("high-speed counter behind the last", R"({ "HC": { "6": 1 } })",
        "HC: \"6\" is too large, the last one is 5");
    row("high-speed counter too large", R"({ "HC": { "0": 4294967296 } })",
        "HC0: must be a whole number from 0 to 4294967295");
    row("live without braces", R"({ "live": [] })", "live: must be an object in braces");
    row("live number", R"({ "live": { "VW0": 5 } })", "live: VW0 must be a text, as \"ramp:0..1000/10s\"");
    row("live kind", R"({ "live": { "VW0": "rmp:0..1/1s" } })",
        "live: \"rmp\" is no kind of live value; the nearest is ramp");
    row("high-speed counter as a text", R"({ "HC": { "0": "1" } })",
        "HC0: must be a whole number from 0 to 4294967295");
}

void TestSimulatorMemoryFile::badTextIsRefusedWithItsPlace()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    QCOMPARE(errorIn(text.toUtf8().constData()), "line 1: " + error);
}

void TestSimulatorMemoryFile::largestValuesAreTaken()
{
    QCOMPARE(errorIn(R"({ "T": { "255": { "value": 65535, "preset": 65535 } }, "HC": { "5": 4294967295 } })"),
             QString("none"));
}

void TestSimulatorMemoryFile::errorsNameTheLine_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *text, const char *error) {
        QTest::newRow(name) << QByteArray(text) << error;
    };
    row("area", "{\n  \"V\": {},\n  \"X\": {}\n}",
        "line 3: \"X\": is not a part of the memory; there are I Q V M SM S AI AQ T C HC live");
    row("byte behind others", "{\n\"V\": {\n\"1\": \"00\",\n\"2\": \"0\"\n},\n\"M\": {}\n}",
        "line 4: V2: \"0\" is not a text of hexadecimal bytes");
    row("field behind other objects", "{ \"T\": {\n\"1\": { \"value\": 1 },\n\"2\": {\n\"preset\": -1 } } }",
        "line 4: T2 preset: must be a whole number from 0 to 65535");
    row("twin", "{\n\"M\": {},\n\n\"M\": {}\n}", "line 4: \"M\": comes twice");
    row("syntax", "{\n  \"V\": ,\n}",
        "line 2, column 8: not JSON: syntax error while parsing value - unexpected "
        "','; expected '[', '{', or a literal");
    row("number beyond all numbers", "{ \"HC\": {\n \"0\": 1e9999 } }",
        "line 2: not JSON: number overflow parsing '1e9999'");
}

void TestSimulatorMemoryFile::errorsNameTheLine()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, error);
    QCOMPARE(errorIn(text.constData()), error);
}

void TestSimulatorMemoryFile::liveValuesAreReadAndWritten()
{
    const std::string text = R"({
    "live": {
        "VW200": "ramp:0..1000/10s",
        "V210.3": "blink:1s"
    }
}
)";
    const sim::StoredMemory stored = sim::parseMemory(text);
    QCOMPARE(int(stored.live.size()), 2);
    QVERIFY(stored.memory == sim::Memory());
    QCOMPARE(QString::fromStdString(sim::formatMemory(stored)), QString::fromStdString(text));
}

void TestSimulatorMemoryFile::textThatIsNotJsonIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("cut") << QByteArray("{ \"V\": {");
    QTest::newRow("bare words") << QByteArray("V100 = 1");
    QTest::newRow("comma behind the last") << QByteArray("{ \"V\": {}, }");
    QTest::newRow("not UTF-8") << QByteArray("{ \"\xff\": {} }");
    QTest::newRow("number beyond all numbers") << QByteArray("{ \"HC\": { \"0\": 1e9999 } }");
    QTest::newRow("deeply nested") << QByteArray(100000, '[');
}

void TestSimulatorMemoryFile::textThatIsNotJsonIsRefused()
{
    QFETCH(QByteArray, text);
    const QString error = errorIn(text.constData());
    QVERIFY2(QRegularExpression("^line 1(, column [0-9]+)?: not JSON: ").match(error).hasMatch(),
             qPrintable(error));
}

void TestSimulatorMemoryFile::fileIsSavedAndLoaded()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath("memory.json").toStdString();
    sim::saveMemory({sim::exampleMemory(), {}}, path);
    QVERIFY(sim::loadMemory(path).memory == sim::exampleMemory());
}

void TestSimulatorMemoryFile::savingReplacesTheFileAndLeavesNothingBeside()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("memory.json");
    writeFile(path, "something longer than an empty memory");
    sim::saveMemory({}, path.toStdString());
    QCOMPARE(fileContent(path), QByteArray("{}\n"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("memory.json"));
}

void TestSimulatorMemoryFile::loadErrorsNameTheFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("memory.json");
    QCOMPARE(errorLoading(path), path + ": cannot open: No such file or directory");
    QCOMPARE(errorLoading(folder.path()), folder.path() + ": cannot open: file to open is a directory");
    writeFile(path, "{ \"M\": { \"0\": \"xx\" } }");
    QCOMPARE(errorLoading(path), path + ": line 1: M0: \"xx\" is not a text of hexadecimal bytes");
    writeFile(path, "");
    QVERIFY2(errorLoading(path).startsWith(path + ": line 1, column 1: not JSON: "),
             qPrintable(errorLoading(path)));
}

void TestSimulatorMemoryFile::saveErrorsNameTheFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("missing/memory.json");
    QCOMPARE(errorSaving(path), path + ": cannot save: No such file or directory");
}

void TestSimulatorMemoryFile::failedSavingLeavesNothingBeside()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("memory.json");
    QVERIFY(QDir().mkpath(path)); // a folder cannot be replaced with a file
    QCOMPARE(errorSaving(path), path + ": cannot save: Filename refers to a directory");
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("memory.json"));
}

TEST_CLASS(TestSimulatorMemoryFile)
#include "test_memory_file.moc"
