// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Topics of items, and names that cannot be in one.

#include "host/broker/topics.h"
#include "host/items/item.h"
#include "test_class.h"
#include "tests/host/support/refused_text.h"

#include <QtTest>

#include <chrono>
#include <vector>

using namespace host;

namespace {

std::vector<Tag> tagsNamed(const QStringList &names)
{
    std::vector<Tag> tags;
    for (const QString &name : names) {
        tags.emplace_back(parseItem("VB0"));
        tags.back().name = name;
    }
    return tags;
}

} // namespace

class TestTopics : public QObject
{
    Q_OBJECT

private slots:
    void everyTopicIsBelowThePrefix();
    void commandsAreForTheNameBetweenPrefixAndSet();
    void eachDepthOfNamesHasAFilter();
    void theUsualTopicHasTheDeviceWithoutItsDirectory();
    void prefixesThatNoTopicCanHaveAreRefused_data();
    void prefixesThatNoTopicCanHaveAreRefused();
    void namesThatNoTopicCanHaveAreRefused_data();
    void namesThatNoTopicCanHaveAreRefused();
    void twoItemsDoNotShareATopic_data();
    void twoItemsDoNotShareATopic();
};

void TestTopics::everyTopicIsBelowThePrefix()
{
    const Topics topics("plant/press");
    QCOMPARE(topics.item("Boiler"), QByteArray("plant/press/Boiler"));
    QCOMPARE(topics.set("Hall/Pump"), QByteArray("plant/press/Hall/Pump/set"));
    QCOMPARE(topics.result("Boiler"), QByteArray("plant/press/Boiler/set/result"));
    QCOMPARE(topics.group(std::chrono::milliseconds(1500)), QByteArray("plant/press/group/1500ms"));
    QCOMPARE(topics.status(), QByteArray("plant/press/status"));
    QCOMPARE(topics.health(), QByteArray("plant/press/health"));
}

void TestTopics::commandsAreForTheNameBetweenPrefixAndSet()
{
    const Topics topics("a/b");
    QCOMPARE(topics.commandedName("a/b/Hall/Pump/set").value_or("none"), QString("Hall/Pump"));
    for (const char *topic : {"a/b/set", "a/b//set", "a/bc/Pump/set", "a/b/Pump", "a/b/Pump/set/result", ""})
        QCOMPARE(topics.commandedName(topic).value_or("none"), QString("none"));
}

void TestTopics::eachDepthOfNamesHasAFilter()
{
    const std::vector<QByteArray> filters = Topics("a").commandFilters(tagsNamed({"x/y/z", "p/q/r"}));
    QCOMPARE(filters, std::vector<QByteArray>({"a/+/set", "a/+/+/+/set"}));
}

void TestTopics::theUsualTopicHasTheDeviceWithoutItsDirectory()
{
    QCOMPARE(usualTopic("panel", "/dev/ttyUSB0"), QString("s7ppi/panel/ttyUSB0"));
    QCOMPARE(usualTopic("a/b", "a#b+c"), QString("s7ppi/a_b/a_b_c"));
}

void TestTopics::prefixesThatNoTopicCanHaveAreRefused_data()
{
    addRefusedTexts();
    const QString hint = "name another with --topic, as --topic plant/press3";
    const QString forbidden = " has a +, a # or a control character in it";
    refused("a/+", "the topic \"a/+\"" + forbidden, hint);
    refused("#", "the topic \"#\"" + forbidden, hint);
    refused(QString("a") + QChar(0) + "b", "the topic \"a\\x00b\"" + forbidden, hint);
    refused("a\nb", "the topic \"a\\x0ab\"" + forbidden, hint);
    refused("", "the topic \"\" is empty", hint);
    refused("$SYS", "the topic \"$SYS\" begins with a $, as the broker's own topics do", hint);
    const QString levels = " has an empty level: a / at its beginning or end, or two in a row";
    for (const QString text : {"/a", "a/", "a//b"})
        refused(text, "the topic \"" + text + '"' + levels, hint);
    refused(QString(1001, 'a'), "the topic \"" + QString(1001, 'a') + "\" has more than 1000 bytes", hint);
}

void TestTopics::prefixesThatNoTopicCanHaveAreRefused()
{
    compareRefusal([](const QString &text) { Topics topics(text); });
}

void TestTopics::namesThatNoTopicCanHaveAreRefused_data()
{
    addRefusedTexts();
    const QString hint = "give it another name in a tag file";
    refused("A+B", "\"A+B\" cannot stand in a topic: it has a +, a # or a control character in it", hint);
    refused("A#", "\"A#\" cannot stand in a topic: it has a +, a # or a control character in it", hint);
    refused(
        "/A",
        "\"/A\" cannot stand in a topic: it has an empty level: a / at its beginning or end, or two in a row",
        hint);
    refused("group/A", "\"group/A\" cannot stand in a topic: group/ is for groups", hint);
}

void TestTopics::namesThatNoTopicCanHaveAreRefused()
{
    compareRefusal([](const QString &text) { checkNames(tagsNamed({text}), Topics("t")); });
}

void TestTopics::twoItemsDoNotShareATopic_data()
{
    addRefusedTexts();
    const auto row = [](const char *names, const char *first, const char *second, const char *topic) {
        refused(names,
                QString("\"%1\" and \"%2\" would be published under the same topic, t/%3")
                    .arg(first, second, topic),
                "give one of them another name in a tag file");
    };
    row("A,A", "A", "A", "A");
    row("status", "status", "status", "status");
    row("A,A/set", "A", "A/set", "A/set");
    row("A/set/result,A", "A/set/result", "A", "A/set/result");
}

void TestTopics::twoItemsDoNotShareATopic()
{
    compareRefusal([](const QString &text) { checkNames(tagsNamed(text.split(',')), Topics("t")); });
}

TEST_CLASS(TestTopics)
#include "test_topics.moc"
