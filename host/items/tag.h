// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An item under the name that people know it by, with what its number means to them.

#ifndef HOST_ITEMS_TAG_H
#define HOST_ITEMS_TAG_H

#include "host/items/scaling.h"
#include "host/items/value.h"
#include "host/text/json.h"

#include <QString>

#include <optional>
#include <vector>

namespace host {

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
};

std::vector<Item> itemsOf(const std::vector<Tag> &tags);

// Whether any of them names a station of its own.
bool hasStations(const std::vector<Tag> &tags);

// The values as people see them, blanks between, with the unit behind them.
QString shownText(const Tag &tag, const std::vector<Value> &values);

// The number that is shown, a bit as 0 or 1. Nothing for infinity, for what is no number, and for texts and
// hexadecimal digits.
std::optional<double> shownNumber(const Tag &tag, const Value &value);

// Turns numbers as people see them, separated by commas, into those that the controller holds: whole ones
// unless they are floats. Fails on a text that is no number.
QString unscaledText(const Tag &tag, const QString &values);

// A record of what a tag is: {"name", "address", "type", "station", "unit"}. Name, station and unit are there
// only when the tag has one.
Json tagFields(const Tag &tag);

// The fields of the tag and "values": numbers, true or false; a text has one character for each of its bytes,
// hex two digits.
Json tagRecord(const Tag &tag, const std::vector<Value> &values);

// The fields of the tag and "error", when its values could not be read.
Json tagErrorRecord(const Tag &tag, const QString &error);

// Makes lines of text, one per tag: its label and its values, blanks between.
class TextLines
{
public:
    // The tags that are going to come, so that their values can stand in one column.
    explicit TextLines(const std::vector<Tag> &tags);

    // One line, without the character that ends it.
    QString line(const Tag &tag, const std::vector<Value> &values) const;

private:
    int labelWidth = 0;
};

} // namespace host

#endif
