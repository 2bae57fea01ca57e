// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_address.h"

namespace {

void addDigit(unsigned int &number, QChar character)
{
    const unsigned int digit = static_cast<unsigned int>(character.unicode()) - '0';
    if (digit <= 9)
        number = number * 10u + digit;
}

} // namespace

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

bool S7_200_PPIIsObj(const QByteArray &prefix)
{
    return prefix == "C" || prefix == "T" || prefix == "HC";
}

unsigned short S7_200_PPIDBNumber(const QByteArray &prefix)
{
    return prefix.startsWith('V') ? 1 : 0;
}

int S7_200_PPIElementSize(const QByteArray &prefix)
{
    if (prefix.endsWith('D'))
        return 4;
    return prefix.endsWith('W') ? 2 : 1;
}

unsigned int S7_200_PPIWireAddress(const QByteArray &prefix, unsigned int number)
{
    return S7_200_PPIIsObj(prefix) ? number : number * 8;
}
