// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Calls of the port that go wrong: each one in every way, once and from then on.

#include "samples.h"
#include "test_class.h"

#include <QtTest>

class TestFaultCalls : public QObject
{
    Q_OBJECT

private slots:
    void failingReceives_data() { addSampleRows(); }
    void failingReceives();
    void failingSends_data() { addSampleRows(); }
    void failingSends();
    void sendsAndReceivesThatFailTogether_data() { addSampleRows(); }
    void sendsAndReceivesThatFailTogether();
    void oneFailingCallIsMadeUpForByOneRepetition_data() { addSampleRows(); }
    void oneFailingCallIsMadeUpForByOneRepetition();
    void moreThanWasAskedForCountsAsAllOfIt_data() { addSampleRows(); }
    void moreThanWasAskedForCountsAsAllOfIt();
};

namespace {

const int kAttempts = 3;
const int kReceivesOfAttempt = 3;
const int kSendsOfAttempt = 2;

// A scene of two requests, the first with failing calls: no more than two sends per attempt, the model's
// outcome, no wrong value, and a second request as if nothing had been. Empty when all is so.
QString complaint(const Sample &sample, const Scene &scene)
{
    const Comparison comparison = compared(scene);
    if (comparison.driver.outcomes.at(0).sends > kSendsOfAttempt * (scene.port.retries + 1))
        return QLatin1String("too many sends: ") + toString(scene);
    return complaintAbout(sample, scene, comparison);
}

QString complaintAboutCall(const Sample &sample, Call call, int number)
{
    QString text;
    Scene scene = sample.sceneOfTwo();
    for (int failure = 0; failure < kFailureKinds; ++failure) {
        for (int retries = 0; retries < kAttempts; ++retries) {
            scene.port.retries = retries;
            scene.callFaults = QList<CallFault>() << callFault(call, number, Failure(failure));
            text += complaint(sample, scene);
            scene.callFaults[0].forEver = true;
            text += complaint(sample, scene);
        }
    }
    return text;
}

// By the second attempt.
bool isMadeUpFor(const Sample &sample, const CallFault &fault)
{
    Scene scene = sample.scene();
    scene.port.retries = 1;
    scene.callFaults << fault;
    return sample.isMetBy(compared(scene).driver.outcomes.at(0));
}

} // namespace

void TestFaultCalls::failingReceives()
{
    for (int number = 1; number <= kAttempts * kReceivesOfAttempt; ++number) {
        const QString text = complaintAboutCall(currentSample(), kReceive, number);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultCalls::failingSends()
{
    for (int number = 1; number <= kAttempts * kSendsOfAttempt; ++number) {
        const QString text = complaintAboutCall(currentSample(), kSend, number);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultCalls::sendsAndReceivesThatFailTogether()
{
    const Sample sample = currentSample();
    Scene scene = sample.sceneOfTwo();
    scene.port.retries = kAttempts - 1;
    for (int i = 0; i < kFailureKinds * kFailureKinds; ++i) {
        const CallFault send = callFault(kSend, 1 + i % 4, Failure(i / kFailureKinds));
        const CallFault receive = callFault(kReceive, 1 + i % 5, Failure(i % kFailureKinds), true);
        scene.callFaults = QList<CallFault>() << send << receive;
        const QString text = complaint(sample, scene);
        QVERIFY2(text.isEmpty(), qPrintable(text));
    }
}

void TestFaultCalls::oneFailingCallIsMadeUpForByOneRepetition()
{
    const Sample sample = currentSample();
    const Failure failures[] = {kNothing, kError, kWorstError, kFewer, kPretend};
    for (Failure failure : failures) {
        for (int number = 1; number <= (sample.refusal ? 2 : kReceivesOfAttempt); ++number)
            QVERIFY(isMadeUpFor(sample, callFault(kReceive, number, failure)));
        for (int number = 1; number <= (sample.refusal ? 1 : kSendsOfAttempt); ++number)
            QVERIFY(isMadeUpFor(sample, callFault(kSend, number, failure)));
    }
}

void TestFaultCalls::moreThanWasAskedForCountsAsAllOfIt()
{
    Sample sample = currentSample();
    if (sample.refusal != 0)
        sample.reason = "first NAK packet loss"; // a negative frame has exactly six bytes
    const Failure failures[] = {kMore, kMost};
    Scene scene = sample.scene();
    for (Failure failure : failures) {
        scene.callFaults = QList<CallFault>() << callFault(kReceive, 1, failure, true);
        QVERIFY2(sample.isMetBy(compared(scene).driver.outcomes.at(0)), qPrintable(toString(scene)));
    }
}

TEST_CLASS(TestFaultCalls)

#include "test_fault_calls.moc"
