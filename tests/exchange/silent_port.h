// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port without a controller, for tests of very many requests.

#ifndef TESTS_SILENT_PORT_H
#define TESTS_SILENT_PORT_H

#include "abstract_device_interface.h"

#include <QList>
#include <QVariant>

// Answers nothing and keeps the references of the requests.
class SilentPort : public AbstractDeviceInterface
{
public:
    explicit SilentPort(int retries) : repetitions(retries) {}

    int receive(unsigned char *, int) override { return 0; }
    int send(const unsigned char *data, int length) override
    {
        references += data[11] << 8 | data[12];
        return length;
    }
    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return repetitions; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

    QList<int> references;

private:
    int repetitions;
};

#endif
