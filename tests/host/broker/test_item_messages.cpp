// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Which polls are published, and as what.

#include "host/broker/item_messages.h"

#include "host/broker/discovery.h"
#include "host/items/tag_file.h"
#include "test_class.h"

#include <QtTest>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

using namespace host;

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

const char kTags[] = "name,address,type,scale,unit,interval,deadband,access,min,max\n"
                     "Level,VW0,i16,0.1,bar,100,0.5\n"
                     "Pump,V2.0\n"
                     "Speeds,VB3*2,,,,100,,rw\n"
                     "Setpoint,VW6,i16,,,,,rw,5,90\n"
                     "Order,VB20*3,str\n";

std::vector<Tag> tags()
{
    Outcome outcome;
    return parseTagFile("tags.csv", kTags, outcome);
}

std::vector<milliseconds> intervals()
{
    return {milliseconds(100), milliseconds(500), milliseconds(100), milliseconds(500), milliseconds(500)};
}

QByteArray word(int number)
{
    return QByteArray(1, char(number >> 8)) + char(number);
}

} // namespace

class TestItemMessages : public QObject
{
    Q_OBJECT

private slots:
    void aValueIsPublishedOnceAndOnChange();
    void aChangeWithinTheDeadbandIsNone();
    void everythingIsPublishedAtTheHeartbeat();
    void aFailureKeepsTheValueAndItsTime();
    void valuesAloneStayWhenTheyFail();
    void aGroupIsOneMessage();
    void everythingIsPublishedAgainForANewBroker();
    void homeAssistantFindsEachItem();
    void identifiersHaveLettersDigitsAndNothingElse();

private:
    void begin(PayloadForm form = PayloadForm::Record);
    void answer(int item, const QByteArray &data) { messages->answered(item, data, time, now); }
    QStringList published();

    std::unique_ptr<ItemMessages> messages;
    const std::chrono::system_clock::time_point time = {};
    ItemMessages::Time now{seconds(1000)};
};

void TestItemMessages::begin(PayloadForm form)
{
    messages = std::make_unique<ItemMessages>(tags(), intervals(), Topics("t"), form, seconds(10));
}

// What was published since the last call, without the times, which all are the same.
QStringList TestItemMessages::published()
{
    messages->endPoll(now);
    QStringList texts;
    for (const Message &message : messages->take())
        texts << QString::fromUtf8(message.topic + ' ' + message.payload)
                     .replace(QRegularExpression("\"time\":\"1970-01-01T[^\"]*\""), "TIME");
    return texts;
}

void TestItemMessages::aValueIsPublishedOnceAndOnChange()
{
    begin();
    answer(1, QByteArray(1, 1));
    answer(2, "\x01\x02");
    QCOMPARE(published(), QStringList({R"(t/Pump {"value":true,TIME,"quality":"good"})",
                                       R"(t/Speeds {"value":[1,2],TIME,"quality":"good"})"}));
    answer(1, QByteArray(1, 1));
    answer(2, "\x01\x03");
    QCOMPARE(published(), QStringList(R"(t/Speeds {"value":[1,3],TIME,"quality":"good"})"));
}

void TestItemMessages::aChangeWithinTheDeadbandIsNone()
{
    begin();
    answer(0, word(100));
    QCOMPARE(published(), QStringList(R"(t/Level {"value":10.0,"unit":"bar",TIME,"quality":"good"})"));
    for (const int raw : {101, 105, 95})
        answer(0, word(raw));
    QCOMPARE(published(), QStringList());
    answer(0, word(106));
    QCOMPARE(published(), QStringList(R"(t/Level {"value":10.6,"unit":"bar",TIME,"quality":"good"})"));
    answer(0, word(101)); // 0.5 less than what was published last
    QCOMPARE(published(), QStringList());
    answer(0, word(100));
    QCOMPARE(published().size(), 1);
}

void TestItemMessages::everythingIsPublishedAtTheHeartbeat()
{
    begin();
    answer(0, word(100));
    answer(1, QByteArray(1, 0));
    QCOMPARE(published().size(), 2);
    answer(0, word(103));
    now += milliseconds(9999);
    QCOMPARE(published(), QStringList());
    now += milliseconds(300);
    QCOMPARE(published(), QStringList({R"(t/Level {"value":10.3,"unit":"bar",TIME,"quality":"good"})",
                                       R"(t/Pump {"value":false,TIME,"quality":"good"})"}));
    QCOMPARE(published(), QStringList());
}

void TestItemMessages::aFailureKeepsTheValueAndItsTime()
{
    begin();
    messages->failed(3, Cause::NoAnswer, now);
    QCOMPARE(published(),
             QStringList(R"(t/Setpoint {"value":null,"time":null,"quality":"bad","cause":"no_answer"})"));
    answer(3, word(7));
    QCOMPARE(published(), QStringList(R"(t/Setpoint {"value":7,TIME,"quality":"good"})"));
    messages->failed(3, Cause::NoAnswer, now);
    messages->failed(3, Cause::NoAnswer, now);
    messages->failed(3, Cause::CutAnswer, now);
    QCOMPARE(published(),
             QStringList({R"(t/Setpoint {"value":7,TIME,"quality":"bad","cause":"no_answer"})",
                          R"(t/Setpoint {"value":7,TIME,"quality":"bad","cause":"cut_answer"})"}));
    answer(3, word(7));
    QCOMPARE(published(), QStringList(R"(t/Setpoint {"value":7,TIME,"quality":"good"})"));
}

void TestItemMessages::valuesAloneStayWhenTheyFail()
{
    begin(PayloadForm::Plain);
    messages->failed(0, Cause::NoAnswer, now);
    QCOMPARE(published(), QStringList());
    answer(0, word(105));
    answer(1, QByteArray(1, 1));
    answer(2, "\x01\x02");
    answer(4, "A\"7");
    messages->failed(0, Cause::NoAnswer, now);
    QCOMPARE(published(), QStringList({"t/Level 10.5", "t/Pump 1", "t/Speeds 1,2", "t/Order A\"7"}));
}

void TestItemMessages::aGroupIsOneMessage()
{
    begin(PayloadForm::Group);
    answer(0, word(100));
    answer(2, "\x01\x02");
    QCOMPARE(published(),
             QStringList(
                 R"(t/group/100ms {TIME,"values":{"Level":{"value":10.0,"unit":"bar",TIME,"quality":"good"},)"
                 R"("Speeds":{"value":[1,2],TIME,"quality":"good"}}})"));
    answer(0, word(101));
    QCOMPARE(published(), QStringList());
    messages->failed(2, Cause::NoAnswer, now);
    const QStringList failed = published();
    QCOMPARE(failed.size(), 1);
    QVERIFY(failed.front().contains(R"("Level":{"value":10.1,)"));
    QVERIFY(failed.front().contains(R"("Speeds":{"value":[1,2],TIME,"quality":"bad","cause":"no_answer"})"));
}

void TestItemMessages::everythingIsPublishedAgainForANewBroker()
{
    begin();
    answer(0, word(100));
    QCOMPARE(published().size(), 1);
    messages->repeatAll();
    QCOMPARE(published().size(), 1); // Level, and none of those that are not known
    QCOMPARE(published(), QStringList());
}

void TestItemMessages::homeAssistantFindsEachItem()
{
    const std::vector<Message> records =
        discoveryMessages(tags(), intervals(), Topics("plant/press 3"), PayloadForm::Record, "homeassistant");
    QStringList topics;
    for (const Message &record : records)
        topics << record.topic;
    QCOMPARE(topics, QStringList({"homeassistant/sensor/plant-press_203/Level/config",
                                  "homeassistant/binary_sensor/plant-press_203/Pump/config",
                                  "homeassistant/text/plant-press_203/Speeds/config",
                                  "homeassistant/number/plant-press_203/Setpoint/config",
                                  "homeassistant/sensor/plant-press_203/Order/config"}));
    const Json number = Json::parse(records.at(3).payload.toStdString());
    QCOMPARE(QString::fromStdString(number["state_topic"]), QString("plant/press 3/Setpoint"));
    QCOMPARE(QString::fromStdString(number["command_topic"]), QString("plant/press 3/Setpoint/set"));
    QCOMPARE(QString::fromStdString(number["availability_topic"]), QString("plant/press 3/status"));
    QCOMPARE(QString::fromStdString(number["value_template"]), QString("{{ value_json.value }}"));
    QCOMPARE(number["min"].get<double>(), 5.0);
    QCOMPARE(number["max"].get<double>(), 90.0);
    QVERIFY(!Json::parse(records.front().payload.toStdString()).contains("command_topic"));
}

void TestItemMessages::identifiersHaveLettersDigitsAndNothingElse()
{
    const std::vector<Message> records = discoveryMessages(
        tags(), intervals(), Topics("azAZ09-_/@[`{:.\u00e4"), PayloadForm::Record, "homeassistant");
    QCOMPARE(records.front().topic,
             QByteArray("homeassistant/sensor/azAZ09-_-_40_5b_60_7b_3a_2e_c3_a4/Level/config"));
}

TEST_CLASS(TestItemMessages)
#include "test_item_messages.moc"
