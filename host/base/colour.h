// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Colours for people: on a terminal that has them, and unless the environment's NO_COLOR is set.

#ifndef HOST_BASE_COLOUR_H
#define HOST_BASE_COLOUR_H

#include <QByteArray>
#include <QList>
#include <QString>

namespace host {

// Colours by the numbers of ECMA-48; all but the plain one are bold.
constexpr const char *kPlain = "";
constexpr const char *kRed = "31";
constexpr const char *kYellow = "33";
constexpr const char *kCyan = "36";

// Whether the descriptor is a terminal that takes colours and can move its cursor.
bool takesControls(int descriptor);
bool wantsColour(int descriptor);

// Returns the text as the descriptor's terminal shows it in that colour, or as it is where no colour is
// wanted.
QByteArray coloured(const QByteArray &text, const char *colour, int descriptor);

// A text cut into its escapes, \" \\ \xNN \uNNNN, and what stands between them.
struct TextPart
{
    QString text;
    bool isEscape;
};
QList<TextPart> partsOf(const QString &text);

// Returns the text with its escapes dim, so that they are not taken for what they stand between; as it is
// where no colour is wanted.
QString withDimEscapes(const QString &text, int descriptor);

} // namespace host

#endif
