// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/dump_difference.h"

#include "host/base/failure.h"
#include "host/items/memory_range.h"

#include <QBitArray>
#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <utility>

namespace host {

namespace {

// Where something lies in its area, in bits, timers and counters one behind the other.
struct Place
{
    int first;
    int end;

    int size() const { return end - first; }
    bool isWithin(const Place &other) const { return first >= other.first && end <= other.end; }
};

Place placeOf(const Item &item)
{
    const Address &address = item.address;
    const int unit = address.isObject() ? address.elementWidth : 1;
    const int first = address.number * unit * 8 + address.bit;
    return {first, first + (address.kind == AddressKind::Bit ? item.count : item.size() * 8)};
}

Place commonPlace(const Place &one, const Place &other)
{
    const int first = std::max(one.first, other.first);
    return {first, std::max(first, std::min(one.end, other.end))};
}

bool isSameArea(const Item &one, const Item &other)
{
    return areaOf(one.address.prefix).letters == areaOf(other.address.prefix).letters;
}

// Dumps have the values of timers and counters, and not their status bits.
bool isStatus(const Item &item)
{
    return item.address.isObject() && item.type == ValueType::Bool;
}

// The part of an item's place that lies in a range; of no size when there is none.
Place placeIn(const Item &range, const Item &item)
{
    const Place place = placeOf(range);
    return isSameArea(range, item) && !isStatus(item) ? commonPlace(place, placeOf(item))
                                                      : Place{place.first, place.first};
}

// Bits of a stretch of memory, each of which has a mark or not.
class Marks
{
public:
    explicit Marks(const Place &stretch_) : stretch(stretch_), bits(stretch_.size()) {}

    void set(const Place &place) { bits.fill(true, place.first - stretch.first, place.end - stretch.first); }

    bool hasAny(const Place &place) const
    {
        for (int bit = place.first; bit < place.end; ++bit)
            if (bits.testBit(bit - stretch.first))
                return true;
        return false;
    }

    bool hasAll(const Place &place) const
    {
        for (int bit = place.first; bit < place.end; ++bit)
            if (!bits.testBit(bit - stretch.first))
                return false;
        return true;
    }

private:
    Place stretch;
    QBitArray bits;
};

Marks marksOf(const Item &range, const std::vector<Item> &items)
{
    Marks marks(placeOf(range));
    for (const Item &item : items)
        marks.set(placeIn(range, item));
    return marks;
}

bool haveSameElements(const Item &one, const Item &other)
{
    const int distance = placeOf(one).first - placeOf(other).first;
    return one.address.prefix == other.address.prefix && distance % (8 * one.valueSize()) == 0;
}

// The same memory by bytes; for areas that have bits.
Item inBytes(const Item &range)
{
    const Address &address = range.address;
    return rangeFrom({AddressKind::Memory, areaOf(address.prefix).byteLetters(), address.number, 0, 1},
                     range.size());
}

Item bitAt(const Item &byte, int bit)
{
    return {{AddressKind::Bit, areaOf(byte.address.prefix).letters, byte.address.number, bit, 1},
            ValueType::Bool,
            1};
}

int valueCount(const Item &item)
{
    return isText(item.type) ? 1 : item.count;
}

// Some of an item's values, counted from 0.
Item someOf(const Item &item, int index, int count)
{
    Item some = item;
    if (valueCount(item) == 1)
        return some;
    some.address = item.valueAddress(index);
    some.count = count;
    return some;
}

// The item with its values as hexadecimal digits, of which one value may have several.
void showDigits(Item &item, int &index)
{
    const Item digits = inDigits(item);
    index = index * item.valueSize() / digits.valueSize();
    item = digits;
}

// Whether all are values of their type, and the texts of each two that belong together are not the same:
// those of two floats that are no numbers are.
bool areToldApart(const Tag &tag, const Item &item, const QByteArray &before, const QByteArray &after)
{
    try {
        const QStringList one = shownTexts(tag, decodeValues(item, before));
        const QStringList other = shownTexts(tag, decodeValues(item, after));
        return std::equal(one.begin(), one.end(), other.begin(), std::not_equal_to<>());
    } catch (const Failure &) {
        return false;
    }
}

class Comparison
{
public:
    Comparison(const Dump &before, const Dump &after, const ComparisonRules &rules);

    DumpDifferences run();

private:
    void compareTag(const Tag &tag);
    bool takeValue(const Item &value);
    void compareElements();
    void compareParts(const Item &element);
    void addUntold(const Item &one);
    void add(Tag tag, int index, int count);
    QByteArray bytesOf(const QByteArray &data, const Item &item) const;
    bool isDifferent(const Place &place) const;
    void countBytes();

    const Dump &before;
    const ComparisonRules &rules;
    Item beforeRange; // both in elements that they have in common
    Item afterRange;
    Place common = {0, 0};
    QByteArray commonBefore;
    QByteArray commonAfter;
    Marks unread;
    Marks ignored;            // and unread
    Marks told;               // by tags
    std::vector<Item> untold; // elements, bytes and bits that differ and are no tag's, neighbours together
    std::vector<std::pair<int, Difference>> found; // with the place of each
    DumpDifferences result;
};

Comparison::Comparison(const Dump &before_, const Dump &after, const ComparisonRules &rules_)
    : before(before_), rules(rules_), beforeRange(before.range), afterRange(after.range), unread({0, 0}),
      ignored({0, 0}), told({0, 0})
{
    if (!isSameArea(beforeRange, afterRange))
        return;
    if (!haveSameElements(beforeRange, afterRange)) {
        beforeRange = inBytes(beforeRange);
        afterRange = inBytes(afterRange);
    }
    common = placeIn(beforeRange, afterRange);
    commonBefore = before.data.mid((common.first - placeOf(beforeRange).first) / 8, common.size() / 8);
    commonAfter = after.data.mid((common.first - placeOf(afterRange).first) / 8, common.size() / 8);
    told = Marks(common);
    unread = marksOf(beforeRange, rules.unread);
    std::vector<Item> left = rules.ignored;
    left.insert(left.end(), rules.unread.begin(), rules.unread.end());
    ignored = marksOf(beforeRange, left);
}

DumpDifferences Comparison::run()
{
    for (const Tag &tag : rules.tags)
        compareTag(tag);
    compareElements();
    for (Item item : untold) {
        const bool isHex = rules.asDigits && item.type != ValueType::Bool;
        item.type = isHex ? ValueType::Hex : parseItem(item.address.text()).type;
        add(item, 0, item.count);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &one, const auto &other) { return one.first < other.first; });
    for (auto &[place, difference] : found)
        result.differences.push_back(std::move(difference));
    countBytes();
    std::vector<Item> without = rules.ignored;
    without.push_back(afterRange);
    result.onlyBefore = partsWithout(beforeRange, without);
    without.back() = beforeRange;
    result.onlyAfter = partsWithout(afterRange, without);
    return result;
}

void Comparison::compareTag(const Tag &tag)
{
    const bool isHere = common.size() > 0 && isSameArea(beforeRange, tag.item) && !isStatus(tag.item);
    const int count = isHere ? valueCount(tag.item) : 0;
    bool isInside = false;
    int run = 0; // values in front of this one that differ
    for (int i = 0; i < count; ++i) {
        const Item value = someOf(tag.item, i, 1);
        const bool isCommon = placeOf(value).isWithin(common);
        isInside = isInside || isCommon;
        if (isCommon && takeValue(value))
            ++run;
        else if (run > 0) {
            add(tag, i - run, run);
            run = 0;
        }
    }
    if (run > 0)
        add(tag, count - run, run);
    if (!isInside)
        result.outsideTags.push_back(tag);
}

// Marks a tag's value as told, if all of it was read. Returns whether it differs then.
bool Comparison::takeValue(const Item &value)
{
    const Place place = placeOf(value);
    if (unread.hasAny(place))
        return false;
    told.set(place);
    return isDifferent(place);
}

void Comparison::compareElements()
{
    if (common.size() == 0)
        return;
    const int size = beforeRange.valueSize();
    const int first = (common.first - placeOf(beforeRange).first) / 8 / size;
    for (int i = 0; i < common.size() / 8 / size; ++i) {
        const Item element = partOf(beforeRange, first + i, 1);
        if (!isDifferent(placeOf(element)))
            continue;
        if (told.hasAny(placeOf(element)))
            compareParts(element);
        else
            addUntold(element);
    }
}

// An element without bits has no parts: a tag tells all of it.
void Comparison::compareParts(const Item &element)
{
    if (!areaOf(element.address.prefix).hasBits())
        return;
    const Item bytes = inBytes(element);
    for (int i = 0; i < bytes.count; ++i) {
        const Item byte = partOf(bytes, i, 1);
        if (!told.hasAny(placeOf(byte))) {
            if (isDifferent(placeOf(byte)))
                addUntold(byte);
            continue;
        }
        for (int bit = 0; bit < 8; ++bit) {
            const Place place = placeOf(bitAt(byte, bit));
            if (!told.hasAny(place) && isDifferent(place))
                addUntold(bitAt(byte, bit));
        }
    }
}

void Comparison::addUntold(const Item &one)
{
    const bool continues = !untold.empty() && untold.back().address.prefix == one.address.prefix &&
                           placeOf(untold.back()).end == placeOf(one).first;
    if (continues)
        ++untold.back().count;
    else
        untold.push_back(one);
}

void Comparison::add(Tag tag, int index, int count)
{
    Item some = someOf(tag.item, index, count);
    const Place place = placeOf(some);
    const QByteArray dataBefore = bytesOf(commonBefore, some);
    const QByteArray dataAfter = bytesOf(commonAfter, some);
    if (!areToldApart(tag, some, dataBefore, dataAfter)) {
        showDigits(tag.item, index);
        int none = 0;
        showDigits(some, none);
    }
    const int end = (place.end + 7) / 8 - placeOf(before.range).first / 8;
    found.emplace_back(place.first, Difference{tag, index, decodeValues(some, dataBefore),
                                               decodeValues(some, dataAfter), end});
}

// The bytes of an item as decodeValues() takes them: bits are one each.
QByteArray Comparison::bytesOf(const QByteArray &data, const Item &item) const
{
    const Place place = placeOf(item);
    if (item.address.kind != AddressKind::Bit)
        return data.mid((place.first - common.first) / 8, place.size() / 8);
    QByteArray bits;
    for (int bit = place.first; bit < place.end; ++bit)
        bits += char(data.at((bit - common.first) / 8) >> (bit % 8) & 1);
    return bits;
}

bool Comparison::isDifferent(const Place &place) const
{
    for (int bit = place.first; bit < place.end; ++bit) {
        const int byte = (bit - common.first) / 8;
        const int differing = commonBefore.at(byte) ^ commonAfter.at(byte);
        if ((differing >> (bit % 8) & 1) != 0 && !ignored.hasAny({bit, bit + 1}))
            return true;
    }
    return false;
}

void Comparison::countBytes()
{
    for (int first = common.first; first < common.end; first += 8) {
        const Place byte = {first, first + 8};
        result.comparedSize += ignored.hasAll(byte) ? 0 : 1;
        result.differentSize += isDifferent(byte) ? 1 : 0;
    }
}

} // namespace

bool Difference::isOfSeveral() const
{
    return valueCount(tag.item) > 1;
}

QString Difference::label(int value) const
{
    return isOfSeveral() ? valueLabel(tag, index + value) : tag.label();
}

DumpDifferences compareDumps(const Dump &before, const Dump &after, const ComparisonRules &rules)
{
    return Comparison(before, after, rules).run();
}

std::vector<Item> partsWithout(const Item &range, const std::vector<Item> &items)
{
    const Marks marks = marksOf(range, items);
    std::vector<Item> parts;
    int begin = 0; // of the part that is being found
    for (int i = 0; i <= range.count; ++i) {
        if (i < range.count && !marks.hasAll(placeOf(partOf(range, i, 1))))
            continue;
        if (i > begin)
            parts.push_back(partOf(range, begin, i - begin));
        begin = i + 1;
    }
    return parts;
}

bool isIn(const Item &range, const Item &item)
{
    return placeIn(range, item).size() > 0;
}

int offsetIn(const Item &range, const Item &part)
{
    return (placeOf(part).first - placeOf(range).first) / 8;
}

int totalSize(const std::vector<Item> &ranges)
{
    int size = 0;
    for (const Item &range : ranges)
        size += range.size();
    return size;
}

} // namespace host
