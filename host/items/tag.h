// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An item under the name that people know it by, with what its number means to them.

#ifndef HOST_ITEMS_TAG_H
#define HOST_ITEMS_TAG_H

#include "host/base/failure.h"
#include "host/items/origin.h"
#include "host/items/scaling.h"
#include "host/items/value.h"
#include "host/text/json.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace host {

// What a tag file says of writing to a tag.
enum class Access { Unsaid, ReadOnly, ReadWrite };

struct Tag
{
    // An item that nobody named is a tag without a name and a scale.
    Tag(const Item &item_) : item(item_) {} // NOLINT(google-explicit-constructor): every item is a tag

    // What the tag is called on the screen: its name, or else its address with the station that it names.
    QString label() const { return name.isEmpty() ? item.place() : name; }

    Item item;
    QString name;
    Scaling scaling;
    QString unit;
    std::optional<int> interval; // from poll to poll, in milliseconds; none: that of --interval
    Access access = Access::Unsaid;
    std::optional<double> minimum; // of what is written, as it is shown: scaled
    std::optional<double> maximum;
    std::optional<double> deadband; // the change, as it is shown, up to which publish tells none; 0 or more
    QString definedAt;              // the line of the tag file, "plant.csv:3"; empty for an item
};

std::vector<Item> itemsOf(const std::vector<Tag> &tags);

// Whether any of them names a station of its own.
bool hasStations(const std::vector<Tag> &tags);

// The values as people see them, a text each, without the unit.
QStringList shownTexts(const Tag &tag, const std::vector<Value> &values);

// What one of a tag's values is called, counted from 0: by its own address, "V11.0", or by the tag's name,
// "Boiler[1]".
QString valueLabel(const Tag &tag, int index);

// How many values of an array stand in one line.
constexpr int kValuesPerLine = 8;

struct ValueLine
{
    QString label; // of its first value; the tag's own in the first line
    QString text;  // the values, blanks between, with the unit behind them
};

// The shown values in lines of so many each. Where there are several lines, the values stand in columns.
std::vector<ValueLine> valueLines(const Tag &tag, const QStringList &values, int perLine = kValuesPerLine);

// The number that is shown, a bit as 0 or 1. Nothing for infinity, for what is no number, and for texts and
// hexadecimal digits.
std::optional<double> shownNumber(const Tag &tag, const Value &value);

// Turns numbers as people see them, separated by commas, into those that the controller holds: whole ones
// unless they are floats. Fails on a text that is no number.
QString unscaledText(const Tag &tag, const QString &values);

// What a record says of a tag: {"name", "address", "type", "unit"}, name and unit only when it has one.
Json tagFields(const Tag &tag);

// The values as a record has them: numbers, true or false; a text has one character for each of its bytes,
// hex two digits.
Json jsonValues(const Tag &tag, const std::vector<Value> &values);

// A record of a tag: {"time", "port", "station", "name", "address", "type", "unit", "values"}.
Json tagRecord(const Origin &origin, const Tag &tag, const std::vector<Value> &values);

// The same with "error" and "cause" instead of values that there are none of.
Json tagErrorRecord(const Origin &origin, const Tag &tag, const Failure &failure);

// Makes lines of text: label and values, blanks between; several lines of a tag with many values.
class TextLines
{
public:
    // The tags that are going to come, so that their values can stand in one column.
    explicit TextLines(const std::vector<Tag> &tags);

    // The lines of one tag, without the character that ends the last.
    QString text(const Tag &tag, const std::vector<Value> &values) const;

private:
    int labelWidth = 0;
};

} // namespace host

#endif
