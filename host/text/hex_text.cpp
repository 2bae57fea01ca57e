// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/hex_text.h"

#include "host/base/failure.h"

#include <QStringList>
#include <QStringView>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace host {

namespace {

const char kHint[] =
    "write bytes as two hexadecimal digits each, as 10 02 00 5c 5e 16, or 0x10,0x02, or 10:02";

bool isSeparator(QChar character)
{
    return std::u16string_view(u" \t\v\f\r,;:_-").find(character.unicode()) != std::u16string_view::npos;
}

bool isHexDigit(QChar character)
{
    return character.unicode() < 0x80 && std::isxdigit(character.unicode()) != 0;
}

Failure unreadable(QStringView word, const char *complaint)
{
    return Failure(ExitCode::Usage, '"' + word.toString() + "\" is " + complaint, kHint);
}

// Appends the bytes of a word. One digit alone is a byte, when it says so: 0x5.
void parseWord(QByteArray &bytes, QStringView word)
{
    const bool isMarked = word.startsWith(u"0x", Qt::CaseInsensitive);
    const QStringView digits = isMarked ? word.mid(2) : word;
    if (digits.isEmpty() || !std::all_of(digits.begin(), digits.end(), isHexDigit))
        throw unreadable(word, "not hexadecimal");
    if (digits.size() % 2 && !(isMarked && digits.size() == 1))
        throw unreadable(word, "an odd number of digits");
    bytes += QByteArray::fromHex(digits.toLatin1());
}

// Appends the bytes of a line's words.
void parseLine(QByteArray &bytes, QStringView line)
{
    for (int begin = 0; begin < line.size();) {
        int end = begin;
        while (end < line.size() && !isSeparator(line.at(end)))
            ++end;
        if (end > begin)
            parseWord(bytes, line.mid(begin, end - begin));
        begin = end + 1;
    }
}

} // namespace

QByteArray parseHex(const QString &text)
{
    QByteArray bytes;
    const QStringList lines = text.split('\n');
    for (const QString &line : lines) {
        const int words = int(line.lastIndexOf(": "));
        parseLine(bytes, QStringView(line).mid(words < 0 ? 0 : words + 2));
    }
    return bytes;
}

} // namespace host
