// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "assignment.h"

#include "failure.h"
#include "tag_file.h"
#include "value_parser.h"

namespace host {

namespace {

Assignment assignToItem(const QString &target, const QString &values)
{
    if (target.contains('*'))
        throw Failure(ExitCode::Usage, "a count is not needed here",
                      "write " + target.section('*', 0, 0) + "=VALUE,VALUE with as many values as you mean");
    Item item = parseItem(target);
    const QByteArray data = encodeValues(item, values);
    item.count = int(data.size()) / item.valueSize();
    checkCount(item);
    return {item, data};
}

} // namespace

Assignment assign(Tag tag, const QString &values)
{
    const int room = tag.item.size();
    const QByteArray data = encodeValues(tag.item, tag.isScaled() ? unscaledText(tag, values) : values);
    if (data.size() > room)
        throw Failure(ExitCode::Usage, "there are more values than the tag has",
                      QString("%1 has %2").arg(tag.name).arg(tag.item.count));
    tag.item.count = int(data.size()) / tag.item.valueSize();
    return {tag, data};
}

Assignment parseAssignment(const QString &text)
{
    const QString target = text.section('=', 0, 0);
    const QString values = text.section('=', 1);
    if (!text.contains('='))
        throw Failure(ExitCode::Usage, "no value is given", "write " + text.section('*', 0, 0) + "=VALUE");
    return isTagReference(target) ? assign(findTag(target), values) : assignToItem(target, values);
}

} // namespace host
