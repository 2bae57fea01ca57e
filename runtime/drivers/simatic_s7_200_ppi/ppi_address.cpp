// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_address.h"

#include "ppi_static.h"
#include "tools/address_text.h"

namespace {

const unsigned int kBitsPerByte = 8;
const int kLongestPrefix = 3; // of the area table

unsigned char characterAt(const QString &text, int index)
{
    return static_cast<unsigned char>(text.at(index).toLatin1());
}

void addDigit(unsigned int &number, unsigned char character)
{
    if (character >= '0' && character <= '9')
        number = number * 10u + (character - '0');
}

} // namespace

QByteArray S7_200_PPIExtractPrefix(const QString &text)
{
    quint32 letters = 0;
    for (int i = 0; i < text.size() && i <= kLongestPrefix && isPrefixCharacter(text.at(i).unicode()); ++i)
        letters = letters << 8 | text.at(i).unicode();
    const QByteArray *key = S7_200_PPIAreaTableKey(letters);
    return key ? *key : ExtractPrefixSymbol(text);
}

unsigned int S7_200_PPIExtractByteAddress(const QString &text)
{
    unsigned int number = 0;
    for (int i = 0; i < text.size(); ++i)
        addDigit(number, characterAt(text, i));
    return number;
}

bool S7_200_PPIExtractAddress(const QString &text, unsigned int &byteAddress, unsigned int &bitNumber)
{
    byteAddress = 0;
    bitNumber = 0;
    if (text.isEmpty())
        return true;
    for (int i = 0; i < text.size() && characterAt(text, i) != '.'; ++i)
        addDigit(byteAddress, characterAt(text, i));
    bitNumber = static_cast<unsigned int>(characterAt(text, int(text.size()) - 1)) - '0';
    return true;
}

bool S7_200_PPIIsObj(const QByteArray &prefix)
{
    switch (prefix.size()) {
    case 1:
        return prefix.at(0) == 'C' || prefix.at(0) == 'T';
    case 2:
        return prefix.at(0) == 'H' && prefix.at(1) == 'C';
    default:
        return false;
    }
}

unsigned char S7_200_PPIAreaCode(const QByteArray &prefix)
{
    return g_s7_200_ppi_area_table.value(prefix, 0);
}

unsigned char S7_200_PPIDBNumber(const QByteArray &prefix)
{
    return !prefix.isEmpty() && prefix.at(0) == 'V' ? 1 : 0;
}

int S7_200_PPIElementSize(const QByteArray &prefix)
{
    const char width = prefix.isEmpty() ? '\0' : prefix.at(prefix.size() - 1);
    if (width == 'D')
        return 4;
    return width == 'W' ? 2 : 1;
}

unsigned int S7_200_PPIWireAddress(const QByteArray &prefix, unsigned int number)
{
    return S7_200_PPIIsObj(prefix) ? number : number * kBitsPerByte;
}
