// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/driver/request_form.h"

#include <QString>

#include <algorithm>

namespace host {

namespace {

DataType dataTypeOf(int unitSize)
{
    return unitSize == 4 ? kDoubleWords : unitSize == 2 ? kWords : kBytes;
}

// Nothing is known of the order of two double words that another driver hands over, so that what is wider is
// asked for in bytes.
int rawUnitSize(const Item &item)
{
    return item.valueSize() > kWidestUnit ? 1 : item.valueSize();
}

RequestForm objectForm(const Item &item, int frameData)
{
    const DataType dataType = item.type == ValueType::Bool ? kBits : dataTypeOf(item.valueSize());
    const int reversedWidth = dataType == kBits ? 1 : item.valueSize();
    return {item.address.prefix, dataType, item.valueSize(), frameData / recordSize(item.address), 1,
            reversedWidth};
}

// Data that is no whole number of the address's elements would be cut in the middle of a reversed
// element, or reach over bytes that nobody named. It goes in bytes instead, which every area has that
// allows such lengths.
RequestForm memoryForm(const Item &item, int frameData)
{
    const Address &address = item.address;
    const int valueSize = item.valueSize();
    const bool isWhole = item.size() % address.elementWidth == 0;
    const int width = isWhole ? address.elementWidth : 1;
    const QString prefix = isWhole ? address.prefix : areaOf(address.prefix).byteLetters();
    const int largest = frameData - frameData % std::max(width, valueSize);
    const int unitSize = std::min(valueSize, kWidestUnit);
    return {prefix, dataTypeOf(unitSize), unitSize, largest / unitSize, unitSize, width};
}

} // namespace

// Objects bring a status byte and their value with them, in a short record or a long one.
int recordSize(const Address &address)
{
    if (!address.isObject())
        return 1;
    return address.kind == AddressKind::Counter ? 3 : 5;
}

RequestForm requestForm(const Item &item, int frameData)
{
    return item.address.isObject() ? objectForm(item, frameData) : memoryForm(item, frameData);
}

RequestForm bytesForm(const Area &area, int frameData)
{
    return {area.byteLetters(), kBytes, 1, frameData, 1, 1};
}

CommunicatorCommand makeCommand(DataType dataType, const QString &address, int count)
{
    CommunicatorCommand command;
    command.dataType = dataType;
    command.address = address;
    command.count = count;
    return command;
}

CommunicatorCommand rawCommand(const Item &item)
{
    const int unitSize = rawUnitSize(item);
    const DataType dataType = item.type == ValueType::Bool ? kBits : dataTypeOf(unitSize);
    return makeCommand(dataType, item.address.text(), item.size() / unitSize);
}

int rawReversedWidth(const Item &item)
{
    return rawUnitSize(item);
}

QList<CommunicatorCommand> splitCommands(const RequestForm &form, int number, int count)
{
    QList<CommunicatorCommand> commands;
    for (int done = 0; done < count; done += form.largestCount) {
        const QString address = form.prefix + QString::number(number + done * form.addressStep);
        commands << makeCommand(form.dataType, address, std::min(form.largestCount, count - done));
    }
    return commands;
}

QByteArray byteSwapped(QByteArray data, int width)
{
    for (auto group = data.begin(); group != data.end(); group += width)
        std::reverse(group, group + width);
    return data;
}

} // namespace host
