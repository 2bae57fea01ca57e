// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port without a line: the answer stands ready in memory. It costs next to nothing, so that what is
// measured is the driver.

#ifndef BENCH_MEMORY_PORT_H
#define BENCH_MEMORY_PORT_H

#include "abstract_device_interface.h"

#include <QByteArray>

namespace bench {

class MemoryPort : public AbstractDeviceInterface
{
public:
    // answer is a whole answer frame; every request gets it with the request's own PDU reference.
    explicit MemoryPort(const QByteArray &answer);

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    bool setOption(int key, const QVariant &value) override;
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

private:
    void answerTo(const unsigned char *request);

    QByteArray answer;
    int next = 0; // the place in the answer of what is received next; -1 is the acknowledgement
    unsigned int sumWithoutReference = 0;
};

} // namespace bench

#endif
