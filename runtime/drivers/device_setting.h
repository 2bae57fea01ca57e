// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How a port is set up: its kind, its serial line, or its socket addresses.

#ifndef DEVICE_SETTING_H
#define DEVICE_SETTING_H

#include <QDataStream>
#include <QList>
#include <QPair>
#include <QString>

// The host's kinds of port. Only the value that the drivers of this library use has a name here;
// all other 32-bit values are the host's and pass through unchanged.
enum device_type : int { kRs485Port = 64 };

// A plain value. Codes of stop bits and parity are those of the host's serial port.
class Q_DECL_EXPORT DeviceSetting
{
public:
    DeviceSetting(device_type type, QString string, int baudrate, int databits, int stopbits, int parity);
    DeviceSetting(device_type type, QString string, int baudrate, int databits, int stopbits, int parity,
                  int extraValue, QString extraText);

    // Makes index the current socket address; an index outside the list is ignored.
    void setCurrentIPIndex(int index);

    // The address at index, or the current one for -1. An index outside the list gives an empty
    // text and port 0.
    QString socketIP(int index) const;
    quint16 port(int index) const;

    // Replaces one half of the address at index, or of the current one for -1. An index outside
    // the list changes nothing.
    void setSocketIP(const QString &ip, int index);
    void setPort(unsigned short port, int index);

    // Replaces the whole list: ip, and port as a decimal text (0 when it is not one of 0 to 65535).
    // currentIPIndex stays, even where the new list has no such entry.
    void setSocketData(const QList<QPair<QString, QString>> &data);

    // Writes the record as one debug message.
    void dump() const;

    device_type type;
    QString string; // the port's name, such as COM2
    qint32 baudrate;
    qint32 databits;
    qint32 stopbits;
    qint32 parity;
    qint32 extraValue; // the host's own, streamed but not interpreted
    QString extraText; // the host's own, neither streamed nor dumped
    qint32 linkID;     // set by the host; -1 is none
    qint32 currentIPIndex;
    QList<QPair<QString, quint16>> socketList;
};

// Settings stream, in the byte order and version that the caller set on the stream:
//
//   type string baudrate databits stopbits parity extraValue linkID currentIPIndex   int32, string as QString
//   count of socket entries                                                          uint32
//   ip port                                                                          QString, uint16; per
//   entry
//
// Reading checks the streamed index against the list that the record held before.
Q_DECL_EXPORT QDataStream &operator<<(QDataStream &stream, const DeviceSetting &setting);
Q_DECL_EXPORT QDataStream &operator>>(QDataStream &stream, DeviceSetting &setting);

#endif
