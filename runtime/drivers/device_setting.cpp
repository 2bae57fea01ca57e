// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "device_setting.h"

#include "message_line.h"

#include <utility>

namespace {

int resolved(const DeviceSetting &setting, int index)
{
    return index == -1 ? setting.currentIPIndex : index;
}

bool holds(const DeviceSetting &setting, int index)
{
    return index >= 0 && index < setting.socketList.size();
}

// Written out because the versions of Qt differ in what their own list operator keeps of a stream
// that ends early. Nothing is reserved by the count read: it may be any number.
void readSocketList(QDataStream &stream, QList<QPair<QString, quint16>> &list)
{
    list.clear();
    quint32 count = 0;
    stream >> count;
    for (quint32 i = 0; i < count; ++i) {
        QPair<QString, quint16> entry;
        stream >> entry.first >> entry.second;
        list.append(entry);
        if (stream.atEnd())
            break;
    }
}

} // namespace

DeviceSetting::DeviceSetting(device_type type_, QString string_, int baudrate_, int databits_, int stopbits_,
                             int parity_)
    : type(type_), string(std::move(string_)), baudrate(baudrate_), databits(databits_), stopbits(stopbits_),
      parity(parity_), extraValue(0), linkID(-1), currentIPIndex(0)
{
}

DeviceSetting::DeviceSetting(device_type type_, QString string_, int baudrate_, int databits_, int stopbits_,
                             int parity_, int extraValue_, QString extraText_)
    : type(type_), string(std::move(string_)), baudrate(baudrate_), databits(databits_), stopbits(stopbits_),
      parity(parity_), extraValue(extraValue_), extraText(std::move(extraText_)), linkID(-1),
      currentIPIndex(0)
{
}

void DeviceSetting::setCurrentIPIndex(int index)
{
    if (holds(*this, index))
        currentIPIndex = index;
}

QString DeviceSetting::socketIP(int index) const
{
    return socketList.value(resolved(*this, index)).first;
}

quint16 DeviceSetting::port(int index) const
{
    return socketList.value(resolved(*this, index)).second;
}

void DeviceSetting::setSocketIP(const QString &ip, int index)
{
    const int entry = resolved(*this, index);
    if (holds(*this, entry))
        socketList[entry].first = ip;
}

void DeviceSetting::setPort(unsigned short port, int index)
{
    const int entry = resolved(*this, index);
    if (holds(*this, entry))
        socketList[entry].second = port;
}

void DeviceSetting::setSocketData(const QList<QPair<QString, QString>> &data)
{
    QList<QPair<QString, quint16>> list;
    for (int i = 0; i < data.size(); ++i)
        list.append(qMakePair(data.at(i).first, quint16(data.at(i).second.toUShort())));
    socketList = list;
}

void DeviceSetting::dump() const
{
    MessageLine line;
    line.add("type:", int(type)).add("string:", string);
    line.add("baudrate:", baudrate)
        .add("databits:", databits)
        .add("stopbits:", stopbits)
        .add("parity:", parity);
    line.add("linkID:", linkID);
    line.add("current ip:", socketIP(-1)).add("current port:", port(-1));
    line.write();
}

QDataStream &operator<<(QDataStream &stream, const DeviceSetting &setting)
{
    stream << qint32(setting.type) << setting.string;
    stream << setting.baudrate << setting.databits << setting.stopbits << setting.parity;
    stream << setting.extraValue << setting.linkID << setting.currentIPIndex;
    stream << quint32(setting.socketList.size());
    for (int i = 0; i < setting.socketList.size(); ++i)
        stream << setting.socketList.at(i).first << setting.socketList.at(i).second;
    return stream;
}

QDataStream &operator>>(QDataStream &stream, DeviceSetting &setting)
{
    qint32 type = setting.type;
    stream >> type >> setting.string;
    setting.type = static_cast<device_type>(type);
    stream >> setting.baudrate >> setting.databits >> setting.stopbits >> setting.parity;
    stream >> setting.extraValue >> setting.linkID;

    // Kept: the index is checked before the list is read, so against the list of the old record. Read
    // into a record without addresses it is dropped, read into the same record once more it is taken
    // (readingTwiceRestoresTheIndex).
    qint32 index = setting.currentIPIndex;
    stream >> index;
    setting.setCurrentIPIndex(index);
    readSocketList(stream, setting.socketList);
    return stream;
}
