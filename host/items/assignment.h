// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// One item of the command line to write, with its values.
//
//   assignment := ADDRESS [ ":" TYPE ] [ "@" STATION ] "=" VALUES     VB100=17  VW10:i16@3=-1,0x7f  V10.3=1,0
//              |  "@" FILE ":" NAME "=" VALUES                        @tags.csv:Boiler=21.5
//   VALUES     := VALUE [ "," VALUE ]...
//
// Addresses, types and stations are those of an item to read; there are as many values as are named. The
// values stand in value_parser.h; those of a scaled tag are numbers as people see them.

#ifndef HOST_ITEMS_ASSIGNMENT_H
#define HOST_ITEMS_ASSIGNMENT_H

#include "host/base/outcome.h"
#include "host/items/raw_item.h"
#include "host/items/tag.h"
#include "host/items/tag_file.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace host {

struct Assignment
{
    Tag tag;         // with as many values as are assigned
    QByteArray data; // the values' bytes in the controller's order, bits one per byte
};

// Returns the assignment that a text means. Fails with a hint that names what could have been meant.
Assignment parseAssignment(const QString &text, Notation notation = Notation::Controller);

// Those of all texts; every wrong one is reported. The tags are taken from the files, and the notation is
// theirs.
std::vector<Assignment> parseAssignments(const QStringList &texts, Outcome &outcome, TagFiles &files);

// Returns the assignment of values, separated by commas, to a tag. Fails when there are more of them than the
// tag has.
Assignment assign(Tag tag, const QString &values);

} // namespace host

#endif
