// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tag files, which give items names, scales and units.
//
//   name,address,type,scale,offset,unit,station,interval   the columns, in any order; only name and address
//                                                          must be there, others are left out
//   Boiler,VW100,i16,0.1,-40,°C,3,1000                     separated by commas, semicolons or tabulators
//   Pump,Q0.3                                              cells at the end may be missing
//   # a comment
//
// The address is that of an item, with its type, count and station if need be, VW10:i16*4@3. The type is the
// column's when the address has none; a station that both name must be the same. The interval is that from
// poll to poll, in whole milliseconds.

#ifndef HOST_ITEMS_TAG_FILE_H
#define HOST_ITEMS_TAG_FILE_H

#include "host/base/outcome.h"
#include "host/items/tag.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

// Returns the tags of a file's text. Everything wrong in it is reported by its place, "tags.csv:3".
std::vector<Tag> parseTagFile(const QString &fileName, const QByteArray &text, Outcome &outcome);

// Whether a text names a tag file, "@tags.csv", or a tag in one, "@tags.csv:Boiler".
bool isTagReference(const QString &text);

// The failure of a whole file, for the end, when each of its wrong lines has been reported.
Failure brokenTagFile();

// Returns the tag that a reference names. Fails when there is none, or anything wrong in its file.
Tag findTag(const QString &reference);

// Items as the command line names them; a tag file stands for all the tags in it.
std::vector<Tag> parseTags(const QStringList &texts, Outcome &outcome);

} // namespace host

#endif
