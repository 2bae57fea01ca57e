// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Many faults at once, drawn by lot: bytes and calls go wrong in every combination while requests of every
// kind are repeated.

#include "random.h"
#include "samples.h"
#include "test_class.h"

#include <QtTest>

class TestFaultStorm : public QObject
{
    Q_OBJECT

private slots:
    void driverDoesAsTheModelWhateverGoesWrong();
};

namespace {

const int kScenes = 30000;
const int kDamages = kSeal + 1;

LineFault drawLineFault(Random &random)
{
    const Damage damage = Damage(random.below(kDamages));
    const int value = damage == kHold ? random.below(1500) : random.below(0x100);
    return lineFault(random.below(5), damage, random.oneIn(3) ? random.below(3) : random.below(40), value);
}

CallFault drawCallFault(Random &random)
{
    const Call call = random.oneIn(3) ? kSend : kReceive;
    return callFault(call, random.between(1, 8), Failure(random.below(kFailureKinds)), random.oneIn(4));
}

PortSettings drawPort(Random &random)
{
    const int timeouts[] = {0, 10, 500};
    const int delays[] = {0, 0, 20, 200};
    PortSettings port;
    port.retries = random.between(-1, 3);
    port.delay = random.oneOf(delays);
    port.timeout = random.oneOf(timeouts);
    port.purges = !random.oneIn(3);
    return port;
}

Scene drawScene(Random &random)
{
    const QList<Sample> all = samples();
    Scene scene;
    scene.port = drawPort(random);
    for (int i = random.between(1, 3); i > 0; --i) {
        const Sample &sample = all.at(random.below(int(all.size())));
        scene.requests += sample.request();
        scene.replies += sample.reply();
    }
    for (int i = random.below(5); i > 0; --i)
        scene.lineFaults += drawLineFault(random);
    for (int i = random.below(3); i > 0; --i)
        scene.callFaults += drawCallFault(random);
    scene.disturbed = random.below(int(scene.requests.size()));
    return scene;
}

} // namespace

void TestFaultStorm::driverDoesAsTheModelWhateverGoesWrong()
{
    Random random(seedOfRun());
    const int scenes = drawsOfRun(kScenes);
    int failed = 0;
    for (int i = 0; i < scenes; ++i) {
        const Scene scene = drawScene(random);
        const Comparison comparison = compared(scene);
        QVERIFY2(comparison.difference.isEmpty(), qPrintable(comparison.difference));
        for (int request = 0; request < int(scene.requests.size()); ++request) {
            const Outcome &outcome = comparison.driver.outcomes.at(request);
            QVERIFY(outcome.sends <= 2 * (qMax(0, scene.port.retries) + 1));
            failed += outcome.failed ? 1 : 0;
        }
    }
    QVERIFY(failed > scenes / 10);
}

TEST_CLASS(TestFaultStorm)

#include "test_fault_storm.moc"
