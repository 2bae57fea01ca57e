// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An item under the name that people know it by, with what its number means to them:
//
//   shown value = value in the controller * scale + offset, in the unit

#ifndef HOST_ITEMS_TAG_H
#define HOST_ITEMS_TAG_H

#include "host/items/value.h"
#include "host/text/json.h"

#include <QString>

#include <optional>
#include <vector>

namespace host {

struct Tag
{
    // An item that nobody named.
    Tag(const Item &item_) : item(item_) {} // NOLINT(google-explicit-constructor): every item is a tag

    // What it is called on the screen: its name, or else its address.
    QString label() const { return name.isEmpty() ? item.address.text() : name; }

    bool isScaled() const { return scale != 1 || offset != 0; }

    Item item;
    QString name;
    double scale = 1;
    double offset = 0;
    QString unit;
};

// The values, blanks between, and the unit.
QString shownText(const Tag &tag, const std::vector<Value> &values);

// The number that is shown, a bit as 0 or 1. Nothing for infinity, for what is no number, and for texts and
// hexadecimal digits.
std::optional<double> shownNumber(const Tag &tag, const Value &value);

// Numbers as people see them, separated by commas, as they are in the controller: whole ones unless they are
// floats. Fails on a text that is no number.
QString unscaledText(const Tag &tag, const QString &values);

// {"name", "address", "type", "unit"}, name and unit only when there are any.
Json tagFields(const Tag &tag);

// The same and "values": numbers, true or false; a text's bytes are one character each, the bytes of hex
// are digits.
Json tagRecord(const Tag &tag, const std::vector<Value> &values);

// The same and "error", for values that there are not.
Json tagErrorRecord(const Tag &tag, const QString &error);

// Values as text: one line per tag, its label and its values, blanks between.
class TextLines
{
public:
    // The tags that are going to come, so that their values can stand in one column.
    explicit TextLines(const std::vector<Tag> &tags);

    // The line without its end.
    QString line(const Tag &tag, const std::vector<Value> &values) const;

private:
    int labelWidth = 0;
};

} // namespace host

#endif
