// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Behind s7ppi-sim --fault echo a scan found its own frames for the simulated stations only, where an adapter
// that hears itself repeats every frame. The fault was asked for by the stations, and no station takes a
// frame to another.

#include "conversation.h"
#include "test_class.h"

#include <QByteArray>
#include <QString>
#include <QtTest>

class AnEchoIsMissingForStationsThatAreNotThere : public QObject
{
    Q_OBJECT

private slots:
    void permanentEchoIsOfEveryFrame();
};

void AnEchoIsMissingForStationsThatAreNotThere::permanentEchoIsOfEveryFrame()
{
    const QByteArray pollOfStation9 = "10 09 00 5c 65 16";
    const auto lineWith = [](const char *fault) {
        sim::Simulator line;
        line.addStation(2);
        line.addFault(sim::parseFault(fault));
        return line;
    };
    sim::Simulator permanent = lineWith("echo");
    QCOMPARE(say(permanent, pollOfStation9), plain(pollOfStation9));
    sim::Simulator once = lineWith("echo@1");
    QCOMPARE(say(once, pollOfStation9), QString());
}

TEST_CLASS(AnEchoIsMissingForStationsThatAreNotThere)
#include "an_echo_is_missing_for_stations_that_are_not_there.moc"
