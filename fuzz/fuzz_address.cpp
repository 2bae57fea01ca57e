// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Address texts of any characters, as toolkit and driver read them.
//
//    input := base(1) text      UTF-8

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_address.h"
#include "tools/address_text.h"

using fuzz::require;

namespace {

const int kBases[] = {8, 10, 16, 0, 2, 36};

bool isLetter(QChar character)
{
    const ushort code = character.unicode();
    return (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code == '_';
}

// The digits of a text in order, those up to a place.
unsigned numberIn(const QString &text, int end)
{
    unsigned number = 0;
    for (int i = 0; i < end; ++i)
        if (text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'))
            number = number * 10 + unsigned(text.at(i).unicode() - '0');
    return number;
}

void readPrefix(const QString &text, const QByteArray &bytes)
{
    const QByteArray prefix = ExtractPrefixSymbol(text);
    const int size = int(prefix.size());
    require(text.left(size) == QString::fromLatin1(prefix), "the prefix is what the text begins with");
    for (const char letter : prefix)
        require(isLetter(QLatin1Char(letter)), "a prefix has letters alone");
    require(size == text.size() || !isLetter(text.at(size)), "a prefix has all the letters");
    require(ExtractPrefixSymbol(bytes) == prefix, "letters are the same in both kinds of text");

    const int width = S7_200_PPIElementSize(prefix);
    require(width == 1 || prefix.endsWith(width == 4 ? 'D' : 'W'), "the last letter tells the width");
    require(S7_200_PPIDBNumber(prefix) == (prefix.startsWith('V') ? 1 : 0), "V memory is a data block");
    const unsigned number = numberIn(text, int(text.size()));
    require(S7_200_PPIWireAddress(prefix, number) == (S7_200_PPIIsObj(prefix) ? number : number * 8),
            "memory is addressed in bits");
}

void readAddress(const QString &text)
{
    require(S7_200_PPIExtractByteAddress(text) == numberIn(text, int(text.size())),
            "all digits are the number");
    unsigned byte = 0xaaaa;
    unsigned bit = 0xaaaa;
    require(S7_200_PPIExtractAddress(text, byte, bit), "no text is refused");
    const int dot = int(text.indexOf(QLatin1Char('.')));
    require(byte == numberIn(text, dot < 0 ? int(text.size()) : dot), "the byte stands before the dot");
    const QChar last = text.isEmpty() ? QLatin1Char('0') : text.back();
    if (last >= QLatin1Char('0') && last <= QLatin1Char('9'))
        require(bit == unsigned(last.unicode() - '0'), "the bit is the last digit");
}

unsigned hexIn(const QByteArray &bytes)
{
    const fuzz::ExactBytes exact(bytes);
    return HexToUInt(reinterpret_cast<const char *>(exact.data()), int(bytes.size()));
}

void readNumbers(const QByteArray &bytes, int base)
{
    const int number = ExtractPLCDeviceAddress(bytes, base);
    const bool isBase = base == 8 || base == 10 || base == 16;
    require(isBase || number == -1, "other bases have no numbers");
    if (isBase && number > 0)
        require(ExtractPLCDeviceAddress(QByteArray::number(number, base), base) == number,
                "a number reads back");

    const unsigned value = hexIn(bytes);
    const QByteArray digits = QByteArray::number(value, 16);
    require(HexToUInt(digits.constData(), int(digits.size())) == value, "hexadecimal digits read back");
    require(HexToUInt(("0x" + digits).constData(), int(digits.size()) + 2) == value, "0x is skipped");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const int base = input.oneOf(kBases);
    const QByteArray bytes = input.rest();
    const QString text = QString::fromUtf8(bytes);
    readPrefix(text, text.toUtf8());
    readAddress(text);
    readNumbers(bytes, base);
    ExtractPLCDeviceAddress(text, base);
    return 0;
}
