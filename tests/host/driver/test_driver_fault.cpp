// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Every error text of the driver and the exit code it leads to.

#include "host/driver/driver_fault.h"

#include "test_class.h"

#include <QtTest>

using namespace host;

class TestDriverFault : public QObject
{
    Q_OBJECT

private slots:
    void everyErrorTextHasItsExitCodeAndAHint_data();
    void everyErrorTextHasItsExitCodeAndAHint();
    void aMissingTextIsReplaced();
    void refusedBitsAreNamedByTheirPlace_data();
    void refusedBitsAreNamedByTheirPlace();
    void theLineIsNotToBlameForWhatWasNotSent_data();
    void theLineIsNotToBlameForWhatWasNotSent();
    void ofAnotherDriverOnlyItsWordsAreKnown();
};

void TestDriverFault::everyErrorTextHasItsExitCodeAndAHint_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    for (const char *text :
         {"Hardware fault", "Illegal object access", "Invalid address (incorrect variable address)",
          "Data type is not supported", "Object does not exist or length error", "unknow error",
          "no resource", "no service actived", "unknown error", "invalid request to PLC",
          "can not write data to HC0", "can not write data to T37"})
        QTest::newRow(text) << text << 1;
    QTest::newRow("plc no response") << "plc no response" << 4;
    for (const char *text :
         {"invalid response", "invalid response1", "invalid response2", "invalid response9",
          "invalid PLC response", "packet loss", "first NAK packet loss",
          "packet length < minimum second response", "checksum error", "something new"})
        QTest::newRow(text) << text << 5;
}

void TestDriverFault::everyErrorTextHasItsExitCodeAndAHint()
{
    QFETCH(QString, text);
    const Failure failure = driverFailure(text);
    QTEST(int(failure.code()), "code");
    QCOMPARE(failure.text(), text);
    QVERIFY(!failure.hint().isEmpty());
}

void TestDriverFault::aMissingTextIsReplaced()
{
    const Failure failure = driverFailure(QString());
    QCOMPARE(int(failure.code()), 5);
    QCOMPARE(failure.text(), QString("the driver gives no reason"));
    QVERIFY(!failure.hint().isEmpty());
}

void TestDriverFault::refusedBitsAreNamedByTheirPlace_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow(",Hardware fault") << 1 << "Hardware fault (bit 2 of 2)";
    QTest::newRow("Hardware fault,,Hardware fault") << 1 << "Hardware fault (bit 1, 3 of 3)";
    QTest::newRow("Illegal object access,Hardware fault")
        << 1 << "Illegal object access (bit 1 of 2), Hardware fault (bit 2 of 2)";
    QTest::newRow(",unheard of") << 5 << ",unheard of";
    QTest::newRow(",") << 5 << ",";
}

void TestDriverFault::refusedBitsAreNamedByTheirPlace()
{
    const Failure failure = driverFailure(QTest::currentDataTag());
    QTEST(int(failure.code()), "code");
    QTEST(failure.text(), "text");
}

void TestDriverFault::theLineIsNotToBlameForWhatWasNotSent_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a text of another driver") << "there are no scales 5 and up";
    QTest::newRow("a text that means silence otherwise") << "plc no response";
    QTest::newRow("a text that means a bad line otherwise") << "checksum error";
}

void TestDriverFault::theLineIsNotToBlameForWhatWasNotSent()
{
    QFETCH(QString, text);
    const Failure failure = unsentFailure(text);
    QCOMPARE(int(failure.code()), 1);
    QCOMPARE(failure.text(), text);
    QVERIFY(failure.hint().contains("has sent nothing"));
    QVERIFY(!failure.hint().contains("cable"));
    QCOMPARE(unsentFailure("can not write data to HC0").hint(),
             driverFailure("can not write data to HC0").hint());
}

void TestDriverFault::ofAnotherDriverOnlyItsWordsAreKnown()
{
    const Failure silence = otherDriverFailure("no resource", false);
    QCOMPARE(int(silence.code()), 4);
    QCOMPARE(silence.text(), QString("no resource"));
    const Failure answer = otherDriverFailure("no resource", true);
    QCOMPARE(int(answer.code()), 5);
    QVERIFY(!answer.hint().contains("controller"));
    QCOMPARE(otherDriverFailure(QString(), true).text(), QString("the driver gives no reason"));
}

TEST_CLASS(TestDriverFault)
#include "test_driver_fault.moc"
