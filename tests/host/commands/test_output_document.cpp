// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// docs/json.md against what the commands in it really give: the members and their types, the tables as they
// stand there. A block of the document that is named like a file is that file.

#include "host/base/cause.h"
#include "tests/host/support/document.h"

#include <nlohmann/json.hpp>

#include <QtTest>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <set>
#include <string>

namespace {

using Json = nlohmann::json;
using Shapes = std::set<std::string>;

// ```KIND\nTEXT```
struct Block
{
    QString kind;
    QString text;
};

QString document()
{
    return contentOf(SOURCE_DIR "/docs/json.md");
}

QList<Block> blocks(const QString &text)
{
    static const QRegularExpression fence("^```(\\S+)\n(.*?)^```$",
                                          QRegularExpression::MultilineOption |
                                              QRegularExpression::DotMatchesEverythingOption);
    QList<Block> found;
    auto matches = fence.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found << Block{match.captured(1), match.captured(2)};
    }
    return found;
}

// "## s7ppi.read/1" and what follows up to the next one.
QStringList sections()
{
    return document()
        .split(QRegularExpression("^## ", QRegularExpression::MultilineOption))
        .filter(QRegularExpression("^s7ppi\\."));
}

// An object's members with their types: {"address":"string","values":["number"]}. Of a list every type that
// is in it.
Json shapeOf(const Json &value)
{
    if (value.is_array()) {
        std::set<Json> elements;
        for (const Json &element : value)
            elements.insert(shapeOf(element));
        return elements;
    }
    if (!value.is_object())
        return value.type_name();
    Json members = Json::object();
    for (const auto &[name, member] : value.items())
        members[name] = name == "format" ? member : shapeOf(member);
    return members;
}

Shapes shapesOfLines(const QString &text)
{
    Shapes shapes;
    for (const QString &line : text.split('\n', Qt::SkipEmptyParts))
        shapes.insert(shapeOf(Json::parse(line.toStdString())).dump());
    return shapes;
}

// The members' names at any depth.
void addNames(QStringList &names, const Json &value)
{
    if (!value.is_structured())
        return;
    for (const auto &[name, member] : value.items()) {
        if (value.is_object())
            names << QString::fromStdString(name);
        addNames(names, member);
    }
}

} // namespace

class TestOutputDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void examplesAreWhatTheCommandsGive_data();
    void examplesAreWhatTheCommandsGive();
    void everyMemberIsExplained_data();
    void everyMemberIsExplained();
    void everyCommandHasItsShape();
    void everyCauseIsExplained();

private:
    QString outputOf(const QString &commandLine) const;
    void compareShapes(const QString &output, const QString &example) const;

    QTemporaryDir directory;
};

void TestOutputDocument::initTestCase()
{
    qputenv("S7PPI_CONFIG", "");
    for (const Block &block : blocks(document())) {
        if (!block.kind.contains('.'))
            continue;
        QFile file(directory.filePath(block.kind));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(block.text.toUtf8());
    }
}

// Several of the commands meet an error on purpose, which is told on stderr.
QString TestOutputDocument::outputOf(const QString &commandLine) const
{
    QProcess shell;
    shell.setWorkingDirectory(directory.path());
    shell.start("/bin/sh", {"-c", "PATH='" START_DIR "':\"$PATH\"; " + commandLine});
    shell.waitForFinished();
    return QString::fromUtf8(shell.readAllStandardOutput());
}

void TestOutputDocument::examplesAreWhatTheCommandsGive_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("example");
    QString command;
    for (const Block &block : blocks(document())) {
        if (block.kind == "sh")
            command = block.text.trimmed();
        else if (!block.kind.contains('.'))
            QTest::newRow(qPrintable(command)) << block.kind << block.text;
    }
}

void TestOutputDocument::examplesAreWhatTheCommandsGive()
{
    QFETCH(QString, kind);
    QFETCH(QString, example);
    const QString output = outputOf(QTest::currentDataTag());
    if (kind == "json")
        compareShapes(output, example);
    else if (kind == "ndjson")
        QVERIFY(shapesOfLines(output) == shapesOfLines(example));
    else
        QCOMPARE(output, example);
}

// What ports a machine has is its own: each must look like one of the example's.
void TestOutputDocument::compareShapes(const QString &output, const QString &example) const
{
    Json real = shapeOf(Json::parse(output.toStdString()));
    Json documented = shapeOf(Json::parse(example.toStdString()));
    if (real["format"] == "s7ppi.ports/1")
        for (const Json &port : real["ports"]) {
            const Json &ports = documented["ports"];
            QVERIFY2(std::find(ports.begin(), ports.end(), port) != ports.end(), port.dump().c_str());
        }
    else
        QCOMPARE(QString::fromStdString(real.dump()), QString::fromStdString(documented.dump()));
}

void TestOutputDocument::everyMemberIsExplained_data()
{
    QTest::addColumn<QString>("section");
    for (const QString &section : sections())
        QTest::newRow(qPrintable(section.section('\n', 0, 0))) << section;
}

void TestOutputDocument::everyMemberIsExplained()
{
    QFETCH(QString, section);
    QStringList members;
    for (const Block &block : blocks(section))
        if (block.kind == "json") {
            const Json json = Json::parse(block.text.toStdString());
            QCOMPARE(QString::fromStdString(json["format"]), QString(QTest::currentDataTag()));
            addNames(members, json);
        }
    QVERIFY(!members.isEmpty());
    members.removeAll("format");
    const QStringList explained = captured("^\\| (`[^|]*`) \\|", section).join(", ").split(", ");
    for (const QString &member : members)
        QVERIFY2(explained.contains('`' + member + '`'), qPrintable(member));
}

void TestOutputDocument::everyCommandHasItsShape()
{
    const QString help = outputOf("s7ppi --help").section("Commands:\n", 1).section("\n\n", 0, 0);
    const QStringList commands = captured("^  (\\S+) ", help);
    QVERIFY(commands.contains("read"));
    const QString overview = document().section("\n## s7ppi.", 0, 0).section("| command |", 1);
    QCOMPARE(captured("^\\| `(\\S+)` \\|", overview), commands);
}

void TestOutputDocument::everyCauseIsExplained()
{
    const QString table = document().section("\n## Causes\n", 1);
    QStringList explained = captured("^\\| (`[^|]*`) \\|", table).join(", ").split(", ");
    explained.removeOne("`cause`"); // the head of the table
    QStringList words = host::allCauseWords().replaceInStrings(QRegularExpression("^(.*)$"), "`\\1`");
    explained.sort();
    words.sort();
    QCOMPARE(explained, words);
    QCOMPARE(host::causeWord(host::Cause::NotString),
             QString("not_string")); // the last: none is missing between
}

QTEST_GUILESS_MAIN(TestOutputDocument)
#include "test_output_document.moc"
