// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_address.h"

#include "ppi_static.h"
#include "tools/address_text.h"

namespace {

void addDigit(unsigned int &number, QChar character)
{
    const unsigned int digit = static_cast<unsigned int>(character.unicode()) - '0';
    if (digit <= 9)
        number = number * 10u + digit;
}

} // namespace

QByteArray S7_200_PPIExtractPrefix(const QString &text)
{
    quint32 letters = kNoLetters;
    const QChar *next = text.constData();
    const QChar *const end = next + qMin(int(text.size()), int(kLongestPrefix) + 1);
    for (; next != end && isPrefixCharacter(next->unicode()); ++next)
        letters = ppiAppendLetter(letters, next->unicode());
    const auto *entry = S7_200_PPIAreaTableEntry(letters);
    return entry ? entry->key() : ExtractPrefixSymbol(text);
}

unsigned int S7_200_PPIExtractByteAddress(const QString &text)
{
    unsigned int number = 0;
    for (const QChar *next = text.constData(), *end = next + text.size(); next != end; ++next)
        addDigit(number, *next);
    return number;
}

bool S7_200_PPIExtractAddress(const QString &text, unsigned int &byteAddress, unsigned int &bitNumber)
{
    byteAddress = 0;
    bitNumber = 0;
    if (text.isEmpty())
        return true;
    for (int i = 0; i < text.size() && text.at(i) != QLatin1Char('.'); ++i)
        addDigit(byteAddress, text.at(i));
    bitNumber = static_cast<unsigned char>(text.at(text.size() - 1).toLatin1()) - unsigned('0');
    return true;
}

unsigned char S7_200_PPIAreaCode(const QByteArray &prefix)
{
    if (!S7_200_PPIAreaTableIsAsFilled())
        return g_s7_200_ppi_area_table.value(prefix, 0);
    if (prefix.size() > kLongestPrefix)
        return 0;
    quint32 letters = kNoLetters;
    for (const char *next = prefix.constData(), *end = next + prefix.size(); next != end; ++next)
        letters = ppiAppendLetter(letters, static_cast<unsigned char>(*next));
    const auto *entry = S7_200_PPIAreaTableEntry(letters);
    return entry ? entry->value() : 0;
}
