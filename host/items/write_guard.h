// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What tag files let be written: the columns access, min and max.

#ifndef HOST_ITEMS_WRITE_GUARD_H
#define HOST_ITEMS_WRITE_GUARD_H

#include "host/base/failure.h"
#include "host/items/tag.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace host {

// The values that a tag takes, "from 5 to 90 °C", "up to 90 °C" or "from 5 °C on"; nothing without limits.
QString limitsText(const Tag &tag);

// Fails when a tag is only to be read, or when one of the values lies outside its limits. The data hold
// tag.item.size() bytes, as decodeValues() takes them; a tag without limits is not decoded.
void checkWritable(const Tag &tag, const QByteArray &data);

// What a tag has against bytes that are to be written.
struct Objection
{
    Tag tag;
    Failure failure;
};

// Holds what is to be written, under whatever name, against tags whose memory it may reach.
class WriteGuard
{
public:
    // Tags and items that name no station of their own are of the usual one.
    WriteGuard(const std::vector<Tag> &tags, int usualStation);

    // Returns the objections of all tags to an item's bytes, in the order of the tags. Of a value that has
    // limits nothing may be written but the whole of it: what it would be is not known otherwise.
    std::vector<Objection> objectionsTo(const Item &item, const QByteArray &data) const;

private:
    std::vector<Tag> tags; // that say anything of writing
    int usualStation;
};

} // namespace host

#endif
