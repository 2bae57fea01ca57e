// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Items, ranges and assignments as people write them on the command line. Bytes that are to be written have
// the item's size; decoded and written as text, they are assigned again the same.
//
//    input := notation(1) text

#include "fuzzing.h"
#include "refusal.h"

#include "host/base/failure.h"
#include "host/items/address_range.h"
#include "host/items/assignment.h"
#include "host/items/value.h"
#include "host/text/number_list.h"

using fuzz::require;
using namespace host;

namespace {

QString assignmentText(const Item &item, const QByteArray &data)
{
    QStringList texts;
    for (const Value &value : decodeValues(item, data))
        texts << valueText(value);
    const QString room = item.type == ValueType::String ? '*' + QString::number(item.count) : QString();
    const bool isRaw = item.address.kind == AddressKind::Raw;
    const bool hasRange =
        !isRaw && item.count > 1 && isFloat(item.type); // else a comma might be a decimal one
    if (!hasRange)
        return item.place() + ':' + item.typeText() + room + '=' + texts.join(',');
    const int width = item.address.elementWidth;
    Item last = item;
    last.address.number += item.size() - width;
    return item.address.text() + ".." + last.address.text() +
           (item.station ? '@' + QString::number(*item.station) : QString()) + ':' + item.typeText() + '=' +
           texts.join(',');
}

void checkAssignment(const Assignment &assignment, Notation notation)
{
    const Item &item = assignment.tag.item;
    const int size = item.type == ValueType::String ? int(assignment.data.size()) : item.size();
    require(assignment.data.size() == size && item.count > 0 - (item.type == ValueType::String),
            "data have the item's size");
    if (notation == Notation::Raw)
        return;
    Item whole = item;
    if (item.type == ValueType::String)
        whole.count = std::max(item.count, 1);
    const Assignment again = parseAssignment(assignmentText(whole, assignment.data), notation);
    require(again.data == assignment.data && again.tag.item.place() == item.place() &&
                again.tag.item.typeText() == item.typeText(),
            "values that are shown can be assigned again");
}

void readAssignment(const QString &text, Notation notation)
{
    Assignment assignment = {Tag(Item{}), {}};
    try {
        assignment = parseAssignment(text, notation);
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
        return;
    }
    checkAssignment(assignment, notation);
}

// Bytes as they come from a controller: a text of them can be shown, or they are told to be none of the type.
void showData(const Item &item, const QString &text)
{
    constexpr int kMost = 4096;
    if (item.size() > kMost)
        return;
    QByteArray data = text.toUtf8() + '\xff';
    data = data.repeated(item.size() / int(data.size()) + 1).right(item.size());
    try {
        const bool isOne = isText(item.type);
        const std::vector<Value> values = decodeValues(item, data);
        require(int(values.size()) == (isOne ? 1 : item.count), "there are as many values as the item has");
        require(!valuesText(values).isEmpty(), "values have a text");
    } catch (const Failure &failure) {
        require(item.type == ValueType::Bcd || item.type == ValueType::String,
                "bytes of most types are values");
        require(!failure.hint().isEmpty(), "a refusal says what to do");
    }
}

void readNeighbours(const QString &text)
{
    for (const QString &near : nearestAddresses(text)) {
        const Address address = parseAddress(near);
        require(firstAddress(address).number == 0 && lastAddress(address).number >= address.number,
                "an address lies in its area");
    }
    for (const QString &type : typeTexts())
        require(parseType(type).text() == type, "a type reads back");
}

void readItem(const QString &text, Notation notation)
{
    try {
        const Item item = parseItem(text, notation);
        require(item.count > 0 && item.size() > 0, "an item has values");
        showData(item, text);
        const Address last = item.valueAddress(item.count - 1);
        require(last.number >= item.address.number, "an item's values follow each other");
        if (notation == Notation::Controller && !isRange(text))
            require(parseAddress(item.address.text()).text() == item.address.text(), "an address reads back");
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
    }
}

void readRange(const QString &text)
{
    try {
        const AddressRange range = parseAddressRange(text);
        const QString again = range.first.text() + ".." + range.at(range.count - 1).text();
        require(range.count > 0 && parseAddressRange(again).count == range.count, "a range reads back");
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
    }
}

void readNumbers(const QString &text)
{
    try {
        for (const int number : parseNumbers(text, {"station", 1, 126, true}))
            require(number >= 1 && number <= 126, "a number of a list is one of its kind");
    } catch (const Failure &failure) {
        fuzz::requireReason(failure);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*count*/, char *** /*arguments*/)
{
    fuzz::silenceHost();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const Notation notation = input.flag() ? Notation::Raw : Notation::Controller;
    const QString text = QString::fromUtf8(input.rest());
    if (!isTagReference(text)) // would open a file
        readAssignment(text, notation);
    readItem(text, notation);
    readRange(text);
    readNeighbours(text);
    readNumbers(text);
    return 0;
}
