// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tag files, which give items names, scales and units.
//
//   name,address,type,scale,offset,unit,station,interval   some of the columns, in any order; only name and
//                                                          address must be there, others are left out
//   Boiler,VW100,i16,0.1,-40,°C,3,1000                     separated by commas, semicolons or tabulators
//   Pump,Q0.3                                              cells at the end may be missing
//   # a comment
//
// The columns are these and access,min,max,deadband: ro or rw or nothing, and three numbers in the unit that
// is shown.
//
// The address is that of an item, with its type, count and station if need be, VW10:i16*4@3. The type is the
// column's when the address has none; a station that both name must be the same. The interval is that from
// poll to poll, in whole milliseconds.
//
// In the raw notation the column of the type has the count, too, i16*4, and the address is TEXT alone then.

#ifndef HOST_ITEMS_TAG_FILE_H
#define HOST_ITEMS_TAG_FILE_H

#include "host/base/outcome.h"
#include "host/items/raw_item.h"
#include "host/items/tag.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace host {

// Returns the tags of a file's text. Everything wrong in it is reported by its place, "tags.csv:3".
std::vector<Tag> parseTagFile(const QString &fileName, const QByteArray &text, Outcome &outcome,
                              Notation notation = Notation::Controller);

// Whether a text names a tag file, "@tags.csv", or a tag in one, "@tags.csv:Boiler".
bool isTagReference(const QString &text);

// The failure of a whole file, for the end, when each of its wrong lines has been reported.
Failure brokenTagFile();

// The tag files that a command line names, each of which is read once: a pipe gives its text only once.
class TagFiles
{
public:
    explicit TagFiles(Notation notation_ = Notation::Controller) : notationOfAll(notation_) {}

    // Returns the tag that a reference names. Fails when there is none, or anything wrong in its file.
    Tag find(const QString &reference);

    // All tags of the files that were read so far.
    std::vector<Tag> tags() const;

    Notation notation() const { return notationOfAll; }

private:
    const std::vector<Tag> &tagsIn(const QString &fileName);

    Notation notationOfAll;
    std::map<QString, std::vector<Tag>> files;
};

// Returns the tag that a reference names. Fails when there is none, or anything wrong in its file.
Tag findTag(const QString &reference, Notation notation = Notation::Controller);

// Items as the command line names them; a tag file stands for all the tags in it.
std::vector<Tag> parseTags(const QStringList &texts, Outcome &outcome,
                           Notation notation = Notation::Controller);

} // namespace host

#endif
