// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Many faults at once, drawn by lot: bytes and calls go wrong in every combination while requests of every
// kind are repeated.

#include "random.h"
#include "storm.h"
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

} // namespace

void TestFaultStorm::driverDoesAsTheModelWhateverGoesWrong()
{
    Random random(seedOfRun());
    const int scenes = drawsOfRun(kScenes);
    int failed = 0;
    for (int i = 0; i < scenes; ++i) {
        const Scene scene = drawStorm(random);
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
