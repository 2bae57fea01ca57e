// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// Address texts such as VW100: a prefix of letters, then a number. Letters are ASCII letters whatever the
/// locale; other characters of a QString count as neither letter nor digit.

#ifndef TOOLS_ADDRESS_TEXT_H
#define TOOLS_ADDRESS_TEXT_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// Whether a character can stand in a prefix.
inline bool isPrefixCharacter(ushort code)
{
    return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code == '_';
}

/// The leading letters and underscores; empty when the text begins with anything else.
Q_DECL_EXPORT QByteArray ExtractPrefixSymbol(const QString &text);

/// The same for a text of bytes.
Q_DECL_EXPORT QByteArray ExtractPrefixSymbol(const QByteArray &text);

/// The number from the first digit of the base to the end of the text; base is 8, 10 or 16, any other gives
/// -1. In base 16 the letters A to F of a prefix are digits, too: DB10 is 0xDB10. Kept: a number may begin in
/// a prefix (numberBeginsAtTheFirstDigitOfTheBase). 0 when there is no digit, when anything else, such as a
/// dot or a blank, follows, or when the number is no int.
Q_DECL_EXPORT int ExtractPLCDeviceAddress(const QString &text, int base);

/// The same for a text of bytes.
Q_DECL_EXPORT int ExtractPLCDeviceAddress(const QByteArray &text, int base);

/// The hexadecimal number in the first len characters of text, or in all of them when it ends before; len
/// counts a leading 0x or 0X, which is skipped. Further digits push the upper ones out beyond 32 bits. 0
/// when there is no digit or any other character.
Q_DECL_EXPORT unsigned int HexToUInt(const char *text, int len);

#endif
