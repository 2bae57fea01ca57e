// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "storm.h"

#include "samples.h"

namespace {

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

} // namespace

Scene drawStorm(Random &random)
{
    static const QList<Sample> all = samples();
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
