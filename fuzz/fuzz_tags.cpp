// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Tag files of any bytes. Tags that are taken have a name, a place and a type that go together; written as a
// file again, they are the same.
//
//    input := tag file, in either notation

#include "fuzzing.h"
#include "refusal.h"

#include "host/base/outcome.h"
#include "host/items/tag_file.h"

#include <QSet>

#include <cmath>
#include <vector>

using fuzz::require;
using namespace host;

namespace {

QString quoted(QString text)
{
    return '"' + text.replace('"', "\"\"") + '"';
}

QString numberText(const std::optional<double> &number)
{
    return number ? QString::number(*number, 'g', 17) : QString();
}

QString rowOf(const Tag &tag)
{
    static const char *const accesses[] = {"", "ro", "rw"};
    const Item &item = tag.item;
    const bool hasCount = item.count > 1 || item.type == ValueType::String;
    const QString count = hasCount ? '*' + QString::number(item.count) : QString();
    const QStringList cells = {quoted(tag.name),
                               item.address.text() + count,
                               item.typeText(),
                               numberText(tag.scaling.scale),
                               numberText(tag.scaling.offset),
                               quoted(tag.unit),
                               item.station ? QString::number(*item.station) : QString(),
                               tag.interval ? QString::number(*tag.interval) : QString(),
                               accesses[int(tag.access)],
                               numberText(tag.minimum),
                               numberText(tag.maximum),
                               numberText(tag.deadband)};
    return cells.join(',');
}

QByteArray fileOf(const std::vector<Tag> &tags)
{
    QStringList lines = {"name,address,type,scale,offset,unit,station,interval,access,min,max,deadband"};
    for (const Tag &tag : tags)
        lines << rowOf(tag);
    return lines.join('\n').toUtf8();
}

void checkTags(const std::vector<Tag> &tags)
{
    QSet<QString> names;
    for (const Tag &tag : tags) {
        require(!tag.name.isEmpty() && !names.contains(tag.name), "every tag has a name of its own");
        names << tag.name;
        require(tag.item.count > 0 && tag.item.size() > 0, "a tag has values");
        require(canBeTakenAs(tag.item.address, tag.item.type), "a tag's place can be taken as its type");
        require(!tag.item.station || (*tag.item.station > 0 && *tag.item.station <= 126), "a station is one");
        require(tag.scaling.scale != 0 && std::isfinite(tag.scaling.scale) &&
                    std::isfinite(tag.scaling.offset),
                "a scale tells values apart");
        require(!tag.interval || (*tag.interval > 0 && *tag.interval <= 3600000), "an interval is one");
        require(!tag.minimum || !tag.maximum || *tag.minimum <= *tag.maximum,
                "limits have values between them");
    }
}

void readAgain(const std::vector<Tag> &tags)
{
    Outcome outcome;
    const QByteArray file = fileOf(tags);
    const std::vector<Tag> again = parseTagFile("again.csv", file, outcome);
    require(outcome.isSuccess() && again.size() == tags.size(),
            "what was read can be written and read again");
    require(fileOf(again) == file, "what was written reads back the same");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*count*/, char *** /*arguments*/)
{
    fuzz::silenceHost();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file = fuzz::arrayOf(data, size);
    Outcome outcome;
    const std::vector<Tag> tags = parseTagFile("tags.csv", file, outcome);
    require(!tags.empty() || !outcome.isSuccess(), "a file without tags is refused");
    checkTags(tags);
    if (!tags.empty())
        readAgain(tags);
    Outcome rawOutcome;
    for (const Tag &tag : parseTagFile("tags.csv", file, rawOutcome, Notation::Raw))
        require(!tag.name.isEmpty() && tag.item.count > 0, "a tag in the raw notation has a name and values");
    return 0;
}
