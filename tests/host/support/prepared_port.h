// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port for those that stand in front of it: hands out prepared pieces, one per receive, and notes what
// was sent last.

#ifndef TESTS_HOST_SUPPORT_PREPARED_PORT_H
#define TESTS_HOST_SUPPORT_PREPARED_PORT_H

#include "abstract_device_interface.h"

#include <QByteArray>
#include <QList>
#include <QVariant>

#include <algorithm>

class PreparedPort : public AbstractDeviceInterface
{
public:
    explicit PreparedPort(const QList<QByteArray> &pieces_) : pieces(pieces_) {}

    int receive(unsigned char *buffer, int maxLength) override
    {
        if (pieces.isEmpty())
            return -1;
        const QByteArray piece = pieces.takeFirst();
        Q_ASSERT(piece.size() <= maxLength);
        std::copy(piece.begin(), piece.end(), buffer);
        return int(piece.size());
    }
    int send(const unsigned char *data, int length) override
    {
        sent = QByteArray(reinterpret_cast<const char *>(data), length);
        return length;
    }
    bool setOption(int key, const QVariant &value) override
    {
        return key == kClearInput && value.toInt() == 0;
    }
    int retry() override { return 4; }
    int stationId() override { return 5; }
    int delay() override { return 6; }

    QList<QByteArray> pieces;
    QByteArray sent;
};

#endif
