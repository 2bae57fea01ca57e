// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "address_text.h"

namespace {

const int kNoDigit = 99; // more than any base

int digitValue(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return kNoDigit;
}

ushort codeAt(const QString &text, int i)
{
    return text.at(i).unicode();
}

ushort codeAt(const QByteArray &text, int i)
{
    return static_cast<unsigned char>(text.at(i));
}

// Copies character by character, so that the prefix is the only array made.
template <class Text> QByteArray prefixOf(const Text &text)
{
    int length = 0;
    while (length < text.size() && isPrefixCharacter(codeAt(text, length)))
        ++length;
    QByteArray prefix(length, '\0');
    char *letters = prefix.data();
    for (int i = 0; i < length; ++i)
        letters[i] = static_cast<char>(codeAt(text, i));
    return prefix;
}

// QByteArray::toInt takes blanks behind the digits with one Qt and not with another, so they never convert.
// A zero byte ends the text for all of them.
bool hasBlank(const QByteArray &text)
{
    for (int i = 0; i < text.size() && text.at(i) != '\0'; ++i) {
        if (codeAt(text, i) <= ' ')
            return true;
    }
    return false;
}

} // namespace

QByteArray ExtractPrefixSymbol(const QString &text)
{
    return prefixOf(text);
}

QByteArray ExtractPrefixSymbol(const QByteArray &text)
{
    return prefixOf(text);
}

int ExtractPLCDeviceAddress(const QString &text, int base)
{
    return ExtractPLCDeviceAddress(text.toLatin1(), base);
}

int ExtractPLCDeviceAddress(const QByteArray &text, int base)
{
    if (base != 8 && base != 10 && base != 16)
        return -1;
    int start = 0;
    while (start < text.size() && digitValue(text.at(start)) >= base)
        ++start;
    const QByteArray number = text.mid(start);
    return hasBlank(number) ? 0 : number.toInt(nullptr, base);
}

unsigned int HexToUInt(const char *text, int len)
{
    const bool prefixed = len >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    unsigned int value = 0;
    for (int i = prefixed ? 2 : 0; i < len && text[i] != '\0'; ++i) {
        const int digit = digitValue(text[i]);
        if (digit == kNoDigit)
            return 0;
        value = value * 16 + static_cast<unsigned int>(digit);
    }
    return value;
}
