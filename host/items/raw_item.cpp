// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/raw_item.h"

#include "host/base/failure.h"

#include <QRegularExpression>

#include <optional>

namespace host {

namespace {

const auto kAnyText = QRegularExpression::DotMatchesEverythingOption;

// What stands behind the address, with a name for each part; what count and station are is looked at later.
QString tailForm()
{
    return ":(?<type>(?:" + typeNames().join('|') +
           ")(?::swap)?)(?:\\*(?<count>[^@=]*))?(?:@(?<station>[^=]*))?";
}

Failure withoutType(const QString &text)
{
    return Failure(ExitCode::Usage, "no type is named behind the address",
                   QString("write %1:i32 or %1:u16*4; types are %2").arg(text, typeNames().join(' ')));
}

Item parseRawItem(const QString &text)
{
    static const QRegularExpression form("^(?<text>.+)" + tailForm() + "\\z", kAnyText);
    static const QRegularExpression lastWord("^(.+):([A-Za-z0-9]+)(?:[*@].*)?\\z", kAnyText);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        const QRegularExpressionMatch other = lastWord.match(text);
        if (other.hasMatch())
            parseType(other.captured(2));
        throw withoutType(text);
    }
    const Address address = {AddressKind::Raw, match.captured("text"), 0, 0, 1};
    const NamedType named = parseType(match.captured("type"));
    Item item = {address, named.type, 1};
    item.isSwapped = named.isSwapped;
    if (match.capturedStart("count") >= 0)
        item.count = parseCount(match.captured("count"));
    else
        checkNeedsNoCount(item.type, text.left(match.capturedEnd("type")));
    if (match.capturedStart("station") >= 0)
        item.station = parseStation(match.captured("station"));
    checkCount(item);
    return item;
}

} // namespace

Item parseItem(const QString &text, Notation notation)
{
    return notation == Notation::Raw ? parseRawItem(text) : parseItem(text);
}

AssignmentText splitAssignment(const QString &text, Notation notation)
{
    static const QRegularExpression rawTarget("^.+?" + tailForm() + "(?==)", kAnyText);
    const bool isRaw = notation == Notation::Raw && !text.startsWith('@');
    const int end = isRaw ? int(rawTarget.match(text).capturedEnd()) : int(text.indexOf('='));
    if (end < 0)
        return {text, QString(), false};
    return {text.left(end), text.mid(end + 1), true};
}

} // namespace host
