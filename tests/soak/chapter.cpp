// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "chapter.h"

#include "controller.h"
#include "draw.h"
#include "driver_interface.h"
#include "liar.h"
#include "model.h"
#include "random.h"
#include "storm.h"

#include <QCryptographicHash>

#include <climits>
#include <memory>
#include <random>

namespace {

// The two sides of a chapter.
struct Players
{
    std::unique_ptr<DriverInterface> driver{CreateDriver()};
    Model model;
};

quint32 seedOfChapter(quint32 seed, qint64 number)
{
    std::seed_seq sequence{seed, quint32(number)};
    quint32 result = 0;
    sequence.generate(&result, &result + 1);
    return result;
}

Comparison compared(Players &players, const Scene &scene, Controller &toDriver, Controller &toModel)
{
    const Record driver = playTo(*players.driver, scene, toDriver);
    return compared(scene, driver, playTo(players.model, scene, toModel));
}

Comparison playStorm(Players &players, Scene &scene, Random &random)
{
    scene = drawStorm(random);
    CannedController toDriver(scene.port.station, scene.replies);
    CannedController toModel(scene.port.station, scene.replies);
    return compared(players, scene, toDriver, toModel);
}

Comparison playAnything(Players &players, Scene &scene, Random &random)
{
    scene = drawScene(random);
    const quint32 seed = quint32(random.below(INT_MAX));
    const int honesty = random.between(2, 8);
    Liar toDriver(scene.port.station & 0xff, seed, honesty);
    Liar toModel(scene.port.station & 0xff, seed, honesty);
    return compared(players, scene, toDriver, toModel);
}

void addTo(QCryptographicHash &digest, const Scene &scene, const Record &record)
{
    for (int i = 0; i < int(scene.requests.size()); ++i) {
        const HostRequest &request = scene.requests.at(i);
        const Outcome &outcome = record.outcomes.at(i);
        digest.addData(QByteArray::number(request.command.dataType) + ' ' +
                       QByteArray::number(request.command.count) + ' ' + request.command.address.toUtf8() +
                       ' ' + request.data.toHex() + '\n');
        digest.addData(outcome.data.toHex() + ' ' + QByteArray::number(int(outcome.isWritten)) +
                       QByteArray::number(int(outcome.failed)) + ' ' + outcome.reason.toUtf8() + '\n');
        digest.addData(outcome.log.join(QLatin1Char('\n')).toUtf8());
    }
    digest.addData(record.calls);
}

} // namespace

namespace soak {

Chapter playChapter(Kind kind, quint32 seed, qint64 number, qint64 exchanges,
                    const std::function<bool(qint64)> &goesOn)
{
    Players players;
    Random random(seedOfChapter(seed, number));
    QCryptographicHash digest(QCryptographicHash::Md5); // which tells runs apart, and protects nothing
    Chapter chapter = {};
    while (chapter.tally.exchanges < exchanges && goesOn(chapter.tally.exchanges)) {
        Scene scene;
        const Comparison comparison =
            kind == kFaultyLine ? playStorm(players, scene, random) : playAnything(players, scene, random);
        chapter.tally.count(comparison.driver);
        chapter.difference = comparison.difference;
        if (!chapter.difference.isEmpty())
            return chapter;
        addTo(digest, scene, comparison.driver);
    }
    chapter.isWhole = chapter.tally.exchanges >= exchanges;
    chapter.digest = digest.result().toHex();
    return chapter;
}

} // namespace soak
