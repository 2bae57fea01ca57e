// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "samples.h"

#include "hex.h"

#include <QtTest>

#include <cstring>

namespace {

const char kGone[] = "Object does not exist or length error";
const char kRefused[] = "invalid request to PLC";

// clang-format off
const Sample kSamples[] = {
    {"bytes",           false, kBytes,       "VB100", 4, "", "04 01 ff 04 00 20 91 a2 b3 c4", 0, 0, "91a2b3c4", nullptr},
    {"words",           false, kWords,       "VW100", 2, "", "04 01 ff 04 00 20 91 a2 b3 c4", 0, 0, "a291c4b3", nullptr},
    {"double words",    false, kDoubleWords, "VD100", 1, "", "04 01 ff 04 00 20 91 a2 b3 c4", 0, 0, "c4b3a291", nullptr},
    {"bits",            false, kBits,        "M3.0",  8, "", "04 01 ff 04 00 08 a5", 0, 0, "0100010000010001", nullptr},
    {"timers",          false, kWords,       "T37",   2, "", "04 01 ff 09 00 0a 02 00 00 91 a2 00 00 00 b3 c4", 0, 0, "a291c4b3", nullptr},
    {"counters",        false, kBytes,       "C5",    4, "", "04 01 ff 09 00 06 10 91 a2 00 b3 c4", 0, 0, "a291c4b3", nullptr},
    {"timer bits",      false, kBits,        "T37",   2, "", "04 01 ff 09 00 0a 02 00 00 91 a2 00 00 00 b3 c4", 0, 0, "0100", nullptr},
    {"counter bits",    false, kBitBlock,    "C5",    2, "", "04 01 ff 09 00 06 10 91 a2 00 b3 c4", 0, 0, "0100", nullptr},
    {"fast counters",   false, kDoubleWords, "HC0",   1, "", "04 01 ff 09 00 05 00 91 a2 b3 c4", 0, 0, "c4b3a291", nullptr},
    {"byte write",      true,  kBytes,       "VB100", 3, "91a2b3", "05 01 ff", 0, 0, "", nullptr},
    {"word write",      true,  kWords,       "VW100", 2, "91a2b3c4", "05 01 ff", 0, 0, "", nullptr},
    {"timer write",     true,  kWords,       "T37",   1, "2c01", "05 01 ff", 0, 0, "", nullptr},
    {"bit write",       true,  kBits,        "Q0.6",  3, "010001", "05 03 ff ff ff", 0, 0, "", nullptr},
    {"read refused",    false, kBytes,       "VB100", 4, "", "04 01 0a 00 00 00", 0, 0, "", kGone},
    {"write refused",   true,  kBytes,       "VB100", 3, "91a2b3", "05 01 0a", 0, 0, "", kGone},
    {"one bit refused", true,  kBits,        "Q0.6",  3, "010001", "05 03 ff 0a ff", 0, 0, "", ",Object does not exist or length error,"},
    {"error class set", false, kBytes,       "VB100", 4, "", "04 01 ff 04 00 20 91 a2 b3 c4", 0x8104, 0, "", kRefused},
    {"negative frame",  false, kBytes,       "VB100", 4, "", "", 0, 2, "", "no resource"},
};
// clang-format on

bool isAny(const Sample &)
{
    return true;
}

bool isAnswered(const Sample &sample)
{
    return sample.refusal == 0;
}

bool isGoodRead(const Sample &sample)
{
    return !sample.isWrite && !sample.reason;
}

bool isWrite(const Sample &sample)
{
    return sample.isWrite;
}

void addRows(bool (*isWanted)(const Sample &))
{
    QTest::addColumn<QString>("name");
    for (const Sample &sample : kSamples) {
        if (isWanted(sample))
            QTest::newRow(sample.name) << QString::fromLatin1(sample.name);
    }
}

} // namespace

Reply Sample::reply() const
{
    const Reply reply = {bytes(item), errors, refusal};
    return reply;
}

HostRequest Sample::request() const
{
    HostRequest request;
    request.isWrite = isWrite;
    request.command.dataType = dataType;
    request.command.count = count;
    request.command.address = QString::fromLatin1(address);
    request.data = bytes(data);
    return request;
}

Scene Sample::scene() const
{
    Scene scene;
    scene.requests += request();
    scene.replies += reply();
    return scene;
}

Scene Sample::sceneOfTwo() const
{
    Scene two = scene();
    two.requests += request();
    two.replies += reply();
    return two;
}

bool Sample::isMetBy(const Outcome &outcome) const
{
    const bool isGood = reason == nullptr;
    return outcome.data == bytes(result) && outcome.isWritten == (isWrite && isGood) &&
           outcome.failed != isGood && outcome.reason == QString::fromLatin1(reason);
}

QByteArray Sample::replyBytes(int number) const
{
    if (refusal != 0)
        return bytes("10 00 02 02 04 16");
    return number == 1 ? bytes("e5") : answerFrame(PortSettings().station, 1, bytes(item), errors);
}

QString complaintAbout(const Sample &sample, const Scene &scene, const Comparison &comparison)
{
    if (!comparison.difference.isEmpty())
        return comparison.difference;
    const Outcome &disturbed = comparison.driver.outcomes.at(0);
    if (!disturbed.failed && !sample.isMetBy(disturbed))
        return QLatin1String("a wrong value was taken: ") + toString(disturbed) + toString(scene);
    const Outcome &next = comparison.driver.outcomes.at(1);
    return sample.isMetBy(next) ? QString()
                                : QLatin1String("next request: ") + toString(next) + toString(scene);
}

QList<Sample> samples()
{
    QList<Sample> all;
    for (const Sample &sample : kSamples)
        all += sample;
    return all;
}

Sample sample(const char *name)
{
    for (const Sample &sample : kSamples) {
        if (std::strcmp(sample.name, name) == 0)
            return sample;
    }
    qFatal("there is no sample of the name %s", name);
    return kSamples[0];
}

void addSampleRows()
{
    addRows(isAny);
}

void addAnsweredRows()
{
    addRows(isAnswered);
}

void addGoodReadRows()
{
    addRows(isGoodRead);
}

void addWriteRows()
{
    addRows(isWrite);
}

Sample currentSample()
{
    QFETCH(QString, name);
    return sample(name.toLatin1().constData());
}
