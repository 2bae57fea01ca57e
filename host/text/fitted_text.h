// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Texts made to fit into so many columns, so that nobody takes what is left for the whole.

#ifndef HOST_TEXT_FITTED_TEXT_H
#define HOST_TEXT_FITTED_TEXT_H

#include <QString>
#include <QStringList>

namespace host {

// The text, without its middle where it is too long: "Line3.Pr...ressure". Names differ at either end.
QString withoutMiddle(const QString &text, int columns);

// The first of the texts that fits; of the last one what there is room for, without its middle.
QString firstThatFits(const QStringList &texts, int columns);

// The text in lines of at most so many columns, broken at blanks where there are any.
QStringList wrapped(const QString &text, int columns);

// A value's text with as much of it as fits. Numbers lose digits and get a mark: "~4.295e9" for 4294967295.
// Texts in quotes lose characters at the end: "Hel"... for "Hello, you". What nothing can be left out of, as
// of 0x1122, becomes a row of # as wide as the room.
QString shortened(const QString &value, int columns);

} // namespace host

#endif
