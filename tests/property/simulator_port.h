// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port with the simulated controller at its other end, without any time between.

#ifndef TESTS_PROPERTY_SIMULATOR_PORT_H
#define TESTS_PROPERTY_SIMULATOR_PORT_H

#include "abstract_device_interface.h"
#include "simulator/controller/station.h"
#include "simulator/protocol/bytes.h"

class SimulatorPort : public AbstractDeviceInterface
{
public:
    explicit SimulatorPort(sim::Station &farEnd) : station(farEnd) {}

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    bool setOption(int key, const QVariant &value) override;
    int retry() override { return 0; }
    int stationId() override { return kStation; }
    int delay() override { return 0; }

    static constexpr int kStation = 2;

private:
    sim::Station &station;
    sim::Bytes arrived;
};

#endif
