// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// How a port is set up: its kind, its serial line, or its socket addresses.

#ifndef DEVICE_SETTING_H
#define DEVICE_SETTING_H

#include <QDataStream>
#include <QList>
#include <QPair>
#include <QString>

/// The host's kinds of port. Only the value that the drivers of this library use has a name here;
/// all other 32-bit values are the host's and pass through unchanged.
enum device_type : int {
    kRs485Port = 64 ///< a serial line, RS-485
};

/// The codes of stop bits that the drivers of this library and its reference host use. A code is not the
/// number of bits.
enum StopBitsCode : int {
    kOneStopBit = 0, ///< 1 stop bit
    kTwoStopBits = 2 ///< 2 stop bits
};

/// The codes of parity that the drivers of this library and its reference host use.
enum ParityCode : int {
    kNoParity = 0,   ///< no parity bit
    kOddParity = 1,  ///< an odd number of ones with the parity bit
    kEvenParity = 2, ///< an even number of ones with the parity bit
    kMarkParity = 3, ///< a parity bit that is always 1
    kSpaceParity = 4 ///< a parity bit that is always 0
};

/// A plain value. Other codes of stop bits and parity than the named ones are the host's.
class Q_DECL_EXPORT DeviceSetting
{
public:
    /// A port with these settings, without extra values, link and socket addresses.
    DeviceSetting(device_type type, QString string, int baudrate, int databits, int stopbits, int parity);

    /// The same with the host's own value and text.
    DeviceSetting(device_type type, QString string, int baudrate, int databits, int stopbits, int parity,
                  int extraValue, QString extraText);

    /// Makes index the current socket address; an index outside the list is ignored.
    void setCurrentIPIndex(int index);

    /// The ip of the address at index, or of the current one for -1; empty for an index outside the list.
    QString socketIP(int index) const;

    /// The port of the address at index, or of the current one for -1; 0 for an index outside the list.
    quint16 port(int index) const;

    /// Replaces the ip of the address at index, or of the current one for -1, and keeps its port. An index
    /// outside the list changes nothing.
    void setSocketIP(const QString &ip, int index);

    /// Replaces the port of the address at index, or of the current one for -1, and keeps its ip. An index
    /// outside the list changes nothing.
    void setPort(unsigned short port, int index);

    /// Replaces the whole list: ip, and port as a decimal text (0 when it is not one of 0 to 65535).
    /// currentIPIndex stays, even where the new list has no such entry.
    void setSocketData(const QList<QPair<QString, QString>> &data);

    /// Writes the record as one debug message.
    void dump() const;

    device_type type;                          ///< the kind of port, as the host numbers them
    QString string;                            ///< the port's name, such as COM2
    qint32 baudrate;                           ///< bits per second
    qint32 databits;                           ///< data bits of a character
    qint32 stopbits;                           ///< a StopBitsCode, or the host's own
    qint32 parity;                             ///< a ParityCode, or the host's own
    qint32 extraValue;                         ///< the host's own, streamed but not interpreted
    QString extraText;                         ///< the host's own, neither streamed nor dumped
    qint32 linkID;                             ///< set by the host; -1 is none
    qint32 currentIPIndex;                     ///< place of the current socket address in the list
    QList<QPair<QString, quint16>> socketList; ///< socket addresses of a network port: ip, port
};

/// Writes the record, in the byte order and version that the caller set on the stream:
///
///     type, string, baudrate, databits, stopbits,      int32, string as QString
///     parity, extraValue, linkID, currentIPIndex
///     count of socket entries                          uint32
///     ip, port of each entry                           QString, uint16
Q_DECL_EXPORT QDataStream &operator<<(QDataStream &stream, const DeviceSetting &setting);

/// Reads what operator<<() wrote; extraText stays. The index read is checked against the list that the record
/// held before. Reading ends with the stream, however many socket entries are missing; when it ends right
/// behind a count above 0, one empty entry is appended.
Q_DECL_EXPORT QDataStream &operator>>(QDataStream &stream, DeviceSetting &setting);

#endif
