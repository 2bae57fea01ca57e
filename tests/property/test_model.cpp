// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver against the model of it: any request, any answer. Compared are the data, the error, the log
// and every call of the port in order, frames and pauses included.

#include "draw.h"
#include "liar.h"
#include "test_class.h"

#include <QSet>
#include <QtTest>

class TestModel : public QObject
{
    Q_OBJECT

private slots:
    void driverDoesAsTheModel();
    void bitsBehindAStrangeFirstBit_data();
    void bitsBehindAStrangeFirstBit();

private:
    void count(const Record &record);

    int requests = 0;
    int good = 0;
    QSet<QString> reasons;
};

namespace {

const int kScenes = 20000;
const QLatin1String kRefusal("can not write data to ");

const char *const kReasons[] = {"plc no response",
                                "invalid response",
                                "invalid response1",
                                "invalid response2",
                                "invalid response9",
                                "invalid PLC response",
                                "invalid request to PLC",
                                "first NAK packet loss",
                                "no resource",
                                "no service actived",
                                "unknown error",
                                "packet length < minimum second response",
                                "packet loss",
                                "checksum error",
                                "can not write data to ",
                                "Hardware fault",
                                "Illegal object access",
                                "Invalid address (incorrect variable address)",
                                "Data type is not supported",
                                "Object does not exist or length error",
                                "unknow error"};

} // namespace

void TestModel::count(const Record &record)
{
    for (const Outcome &outcome : record.outcomes) {
        ++requests;
        good += outcome.sends > 0 && !outcome.failed ? 1 : 0;
        reasons += outcome.reason.startsWith(kRefusal) ? kRefusal : outcome.reason;
    }
}

// Enough of the requests must be good, and every reason must have come up, or the lots say little.
void TestModel::driverDoesAsTheModel()
{
    Random random(seedOfRun());
    for (int i = drawsOfRun(kScenes); i > 0; --i) {
        const Scene scene = drawScene(random);
        const quint32 seed = quint32(random.below(INT_MAX));
        const int honesty = random.between(2, 8);
        Liar toDriver(scene.port.station & 0xff, seed, honesty);
        Liar toModel(scene.port.station & 0xff, seed, honesty);
        const Comparison comparison =
            compared(scene, playToDriver(scene, toDriver), playToModel(scene, toModel));
        QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
        count(comparison.driver);
    }
    QVERIFY(good > requests / 3 && good < requests * 2 / 3);
    for (const char *reason : kReasons)
        QVERIFY2(reasons.contains(QLatin1String(reason)), reason);
}

void TestModel::bitsBehindAStrangeFirstBit_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("bit 7") << "V10.7";
    QTest::newRow("bit 8") << "V10.8";
    QTest::newRow("bit 17") << "V10.A";
    QTest::newRow("bit 180") << QString("V10.") + QChar(0xe4);
    QTest::newRow("two below zero, wrapped") << "V10.";
    QTest::newRow("one below zero, wrapped") << "V10/";
}

// The first bit is sent as it is; behind bit 7, or any higher number, comes the next byte's bit 0.
void TestModel::bitsBehindAStrangeFirstBit()
{
    QFETCH(QString, address);
    HostRequest request = {true, CommunicatorCommand(), QByteArray(2, '\1')};
    request.command.dataType = kBits;
    request.command.count = 2;
    request.command.address = address;
    Scene scene;
    scene.requests << request;
    scene.replies << Reply{QByteArray("\x05\x02\xff\xff"), 0, 0};
    const Comparison comparison = compared(scene);
    QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
    QVERIFY(comparison.driver.outcomes.at(0).isWritten);
}

TEST_CLASS(TestModel)

#include "test_model.moc"
