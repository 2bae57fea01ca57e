// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What commands over the broker may ask for.

#include "host/broker/set_request.h"

#include "host/broker/rate_limit.h"
#include "host/items/tag_file.h"
#include "test_class.h"
#include "tests/host/support/failure_of.h"

#include <QtTest>

#include <chrono>
#include <vector>

using namespace host;

namespace {

const char kWritableTags[] = "name,address,type,scale,access,min,max\n"
                             "Level,VW0,i16,0.1,rw,5,90.5\n"
                             "Pump,V2.0,,,rw\n"
                             "Speeds,VB3*3,,,rw\n"
                             "Flows,VD6*2,f32,,rw\n"
                             "Label,VB20:str*4,,,rw\n"
                             "Seen,VB9,,,ro\n"
                             "Other,VB10\n";

Tag tagNamed(const QString &name)
{
    Outcome outcome;
    for (const Tag &tag : parseTagFile("tags.csv", kWritableTags, outcome))
        if (tag.name == name)
            return tag;
    return parseItem("VB0");
}

Assignment parsed(const QString &name, const QByteArray &payload, bool isRetained = false)
{
    return parseSetRequest(tagNamed(name),
                           {"t/" + name.toUtf8() + "/set", payload, isRetained, QByteArray()});
}

QString refusalOf(const QString &name, const QByteArray &payload, bool isRetained = false)
{
    try {
        parsed(name, payload, isRetained);
    } catch (const Failure &failure) {
        return causeWord(failure.cause()) + ": " + failure.text();
    }
    return "none";
}

} // namespace

class TestSetRequest : public QObject
{
    Q_OBJECT

private slots:
    void valuesAreTakenAsTextAndAsJson_data();
    void valuesAreTakenAsTextAndAsJson();
    void whatIsNotAllowedIsRefused_data();
    void whatIsNotAllowedIsRefused();
    void anyBytesAreRefusedOrAValue();
    void commandsThatTheBrokerKeptAreRefused();
    void answersTellWhatWasWritten();
    void aRateIsKeptWithinAnySecond();
};

void TestSetRequest::valuesAreTakenAsTextAndAsJson_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const char *payload, const char *bytes) {
        QTest::addRow("%s %s", name, payload) << QString(name) << QByteArray(payload) << QByteArray(bytes);
    };
    row("Level", "21.5", "00d7");
    row("Level", " 21.5\n", "00d7");
    row("Level", "{\"value\":21.5,\"by\":\"me\"}", "00d7");
    row("Level", "[21.5]", "00d7");
    row("Pump", "on", "01");
    row("Pump", "true", "01");
    row("Pump", "{\"value\":false}", "00");
    row("Pump", "\"off\"", "00");
    row("Speeds", "1,2,0xff", "0102ff");
    row("Speeds", "[1,2,255]", "0102ff");
    row("Speeds", "7", "07");
    row("Flows", "[1,5]", "3f80000040a00000");
    row("Label", "ab", "6162");
    row("Label", "12", "3132");
    row("Label", "\"a\\\"b\"", "612262");
    row("Label", "{\"value\":\"\\u00e9\"}", "e9");
}

void TestSetRequest::valuesAreTakenAsTextAndAsJson()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, payload);
    QTEST(parsed(name, payload).data.toHex(), "bytes");
}

void TestSetRequest::whatIsNotAllowedIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, const QByteArray &payload, const char *refusal) {
        QTest::addRow("%s %s", name, payload.left(20).constData())
            << QString(name) << payload << QString(refusal);
    };
    row("Seen", "1", "not_writable: Seen cannot be written over the broker");
    row("Other", "1", "not_writable: Other cannot be written over the broker");
    row("Level", "4.9", "out_of_range: 4.9 is less than the minimum, 5");
    row("Level", "{\"value\":91}", "out_of_range: 91 is more than the maximum, 90.5");
    row("Level", "", "wrong_usage: the payload is empty");
    row("Level", " \n", "wrong_usage: the payload is empty");
    row("Level", "warm", "wrong_usage: \"warm\" is not a number");
    row("Level", "{\"value\":", "wrong_usage: the payload is no JSON");
    row("Level", "{\"values\":1}", "wrong_usage: the JSON has no member \"value\"");
    row("Level", "{\"value\":{}}", "wrong_usage: the JSON is no value");
    row("Level", "[[1]]", "wrong_usage: the JSON is no value");
    row("Level", "{\"value\":null}", "wrong_usage: the JSON is no value");
    row("Level", "\xff\xfe", "wrong_usage: the payload is no text");
    row("Level", QByteArray("2\0001", 3), "wrong_usage: the payload is no text");
    row("Level", QByteArray(4097, '1'), "wrong_usage: the payload has 4097 bytes");
    row("Speeds", "1,2,3,4", "wrong_usage: there are more values than the tag has");
    row("Label", "{\"value\":\"\\u4e2d\"}", "wrong_usage: the text has characters that are no bytes");
}

void TestSetRequest::whatIsNotAllowedIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, payload);
    QTEST(refusalOf(name, payload), "refusal");
}

// Nested as deeply as a payload can be, and every pair of bytes around a number.
void TestSetRequest::anyBytesAreRefusedOrAValue()
{
    QVERIFY(refusalOf("Level", QByteArray(4096, '[')) != "none");
    QVERIFY(refusalOf("Level", QByteArray("{\"value\":").repeated(400)) != "none");
    int values = 0;
    for (int byte = 0; byte < 256; ++byte)
        values += refusalOf("Level", QByteArray("21") + char(byte)) == "none";
    QCOMPARE(values, 7); // six blanks and a point; with another digit it is too large
}

void TestSetRequest::commandsThatTheBrokerKeptAreRefused()
{
    QCOMPARE(refusalOf("Level", "21.5", true),
             QString("retained_command: the command is retained, and was sent at some time before"));
}

void TestSetRequest::answersTellWhatWasWritten()
{
    const std::chrono::system_clock::time_point time = {};
    const Json done = Json::parse(doneText(parsed("Level", "21.5"), time).toStdString());
    QCOMPARE(QString::fromStdString(done["result"]), QString("done"));
    QCOMPARE(done["value"].get<double>(), 21.5);
    const Json refused =
        Json::parse(refusedText(Failure(ExitCode::Usage, Cause::TooFast, "too \"fast\"", "send fewer"), time)
                        .toStdString());
    QCOMPARE(QString::fromStdString(refused["result"]), QString("refused"));
    QCOMPARE(QString::fromStdString(refused["cause"]), QString("too_fast"));
    QCOMPARE(QString::fromStdString(refused["error"]), QString("too \"fast\""));
    QCOMPARE(QString::fromStdString(refused["hint"]), QString("send fewer"));
}

void TestSetRequest::aRateIsKeptWithinAnySecond()
{
    RateLimit limit(2);
    const std::chrono::steady_clock::time_point start{};
    const auto isTaken = [&](int milliseconds) {
        return limit.take(start + std::chrono::milliseconds(milliseconds));
    };
    QVERIFY(isTaken(0));
    QVERIFY(isTaken(900));
    QVERIFY(!isTaken(999));
    QVERIFY(isTaken(1000));
    QVERIFY(!isTaken(1899));
    QVERIFY(isTaken(1900));
}

TEST_CLASS(TestSetRequest)
#include "test_set_request.moc"
