// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The sign of life as it is published.

#include "host/broker/health.h"

#include "test_class.h"

#include <QtTest>

#include <chrono>

using namespace host;

class TestHealth : public QObject
{
    Q_OBJECT

private slots:
    void everyFigureIsTold();
    void whatIsNotKnownIsNull();
};

void TestHealth::everyFigureIsTold()
{
    Health health;
    health.time = Health::Time(std::chrono::milliseconds(1500));
    health.isSimulated = true;
    health.attempts = 1;
    health.answers = 2;
    health.errors = {{Cause::PortLost, 3}, {Cause::RefusedAddress, 4}};
    health.usualAnswerTime = std::chrono::microseconds(20040);
    health.longAnswerTime = std::chrono::microseconds(20050);
    health.longestAnswerTime = std::chrono::milliseconds(1250);
    health.polls = 5;
    health.latePolls = 6;
    health.queued = 7;
    health.dropped = 8;
    health.writes = 9;
    health.refusals = 10;
    health.connections = 11;
    health.connectedSince = Health::Time(std::chrono::milliseconds(500));
    QCOMPARE(
        healthText(health),
        QByteArray("{\"time\":\"1970-01-01T00:00:01.500Z\",\"attempts\":1,\"answers\":2,"
                   "\"errors\":{\"port_lost\":3,\"refused_address\":4},"
                   "\"answerTimes\":{\"p50\":20.0,\"p90\":20.1,\"longest\":1250.0},"
                   "\"polls\":5,\"latePolls\":6,\"queued\":7,\"dropped\":8,\"writes\":9,\"refusals\":10,"
                   "\"connections\":11,\"connectedSince\":\"1970-01-01T00:00:00.500Z\",\"simulated\":true}"));
}

void TestHealth::whatIsNotKnownIsNull()
{
    const QByteArray text = healthText(Health());
    QVERIFY(text.contains("\"errors\":{}"));
    QVERIFY(text.contains("\"connectedSince\":null"));
    QVERIFY(!text.contains("simulated"));
}

TEST_CLASS(TestHealth)

#include "test_health.moc"
