// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// How a driver talks to its controllers: timing, repetition and the default station.

#ifndef DRIVER_SETTING_H
#define DRIVER_SETTING_H

#include <QDataStream>
#include <QString>

/// A plain value.
class Q_DECL_EXPORT DriverSetting
{
public:
    /// These four, an empty text and no flag.
    DriverSetting(int timeout, int retry, int stationid, int delay);

    /// The same. The unnamed text and number are accepted and not kept.
    DriverSetting(int timeout, int retry, int stationid, int delay, const QString &, unsigned short);

    /// The same with the host's own text and flag. The unnamed text and number are not kept.
    DriverSetting(int timeout, int retry, int stationid, int delay, const QString &, unsigned short,
                  const QString &text, bool flag);

    /// Takes everything from other but its flag.
    void copy(const DriverSetting &other);

    /// Writes the four numbers as one debug message.
    void dump() const;

    qint32 timeout;   ///< reply time-out, milliseconds
    qint32 retry;     ///< repetitions of a failed attempt
    qint32 stationid; ///< the controller's station address
    qint32 delay;     ///< pause before each attempt, milliseconds
    QString text;     ///< the host's own, not streamed
    bool flag;        ///< the host's own, not streamed; false unless a constructor sets it
};

/// Writes timeout, retry, stationid, delay, each as int32 in the stream's byte order: 16 bytes.
Q_DECL_EXPORT QDataStream &operator<<(QDataStream &stream, const DriverSetting &setting);

/// Reads what operator<<() wrote; text and flag stay as they are.
Q_DECL_EXPORT QDataStream &operator>>(QDataStream &stream, DriverSetting &setting);

#endif
