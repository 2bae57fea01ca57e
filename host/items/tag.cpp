// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/tag.h"

#include "host/base/failure.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>
#include <variant>

namespace host {

namespace {

// The text of a number times the scale; empty for values that are none.
struct Scaler
{
    QString operator()(qint64 number) const { return scaledText(scaling, number); }
    QString operator()(float number) const { return scaledText(scaling, number); }
    template <typename Other> QString operator()(const Other & /*value*/) const { return QString(); }

    const Scaling &scaling;
};

// The text of a scaled value; empty for tags without a scale, and for values that have none.
QString scaledText(const Tag &tag, const Value &value)
{
    return tag.scaling.isActive() ? std::visit(Scaler{tag.scaling}, value) : QString();
}

QString shownText(const Tag &tag, const Value &value)
{
    const QString scaled = scaledText(tag, value);
    return scaled.isEmpty() ? valueText(value) : scaled;
}

struct JsonWriter
{
    Json operator()(bool bit) const { return bit; }
    Json operator()(qint64 number) const { return number; }
    Json operator()(float number) const { return jsonNumber(number); }
    Json operator()(const Characters &text) const
    {
        const QByteArray &bytes = text.bytes;
        return jsonText(QString::fromLatin1(bytes.constData(), int(bytes.size()))); // Qt 5 would end at a NUL
    }
    Json operator()(const HexDigits &hex) const { return jsonText(hex.digits); }
};

Json jsonValue(const Tag &tag, const Value &value)
{
    const QString scaled = scaledText(tag, value);
    if (scaled.isEmpty())
        return std::visit(JsonWriter(), value);
    const std::optional<double> number = shownNumber(tag, value);
    return number ? Json(*number) : jsonText(scaled);
}

} // namespace

std::vector<Item> itemsOf(const std::vector<Tag> &tags)
{
    std::vector<Item> items;
    items.reserve(tags.size());
    for (const Tag &tag : tags)
        items.push_back(tag.item);
    return items;
}

bool hasStations(const std::vector<Tag> &tags)
{
    return std::any_of(tags.begin(), tags.end(), [](const Tag &tag) { return tag.item.station.has_value(); });
}

QString unscaledText(const Tag &tag, const QString &values)
{
    QStringList numbers;
    for (const QString &text : values.split(',')) {
        bool isNumber = false;
        const double shown = text.toDouble(&isNumber);
        if (!isNumber)
            throw Failure(ExitCode::Usage, '"' + text + "\" is not a number",
                          tag.label() + " is scaled: write a number with a point, as 21.5");
        numbers << (tag.item.type == ValueType::F32 ? unscaledFloatText(tag.scaling, shown)
                                                    : unscaledWholeText(tag.scaling, shown));
    }
    return numbers.join(',');
}

QString shownText(const Tag &tag, const std::vector<Value> &values)
{
    QStringList texts;
    for (const Value &value : values)
        texts << shownText(tag, value);
    if (!tag.unit.isEmpty())
        texts << tag.unit;
    return texts.join(' ');
}

std::optional<double> shownNumber(const Tag &tag, const Value &value)
{
    bool isNumber = false;
    const double number = shownText(tag, value).toDouble(&isNumber);
    const bool isDigits = std::holds_alternative<HexDigits>(value);
    return isNumber && !isDigits && std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

Json tagFields(const Tag &tag)
{
    Json fields = Json::object();
    if (!tag.name.isEmpty())
        fields["name"] = jsonText(tag.name);
    fields["address"] = jsonText(tag.item.address.text());
    fields["type"] = jsonText(typeName(tag.item.type));
    if (tag.item.station)
        fields["station"] = *tag.item.station;
    if (!tag.unit.isEmpty())
        fields["unit"] = jsonText(tag.unit);
    return fields;
}

Json tagRecord(const Tag &tag, const std::vector<Value> &values)
{
    Json record = tagFields(tag);
    record["values"] = Json::array();
    for (const Value &value : values)
        record["values"].push_back(jsonValue(tag, value));
    return record;
}

Json tagErrorRecord(const Tag &tag, const QString &error)
{
    Json record = tagFields(tag);
    record["error"] = jsonText(error);
    return record;
}

TextLines::TextLines(const std::vector<Tag> &tags)
{
    for (const Tag &tag : tags)
        labelWidth = std::max(labelWidth, int(tag.label().size()));
}

QString TextLines::line(const Tag &tag, const std::vector<Value> &values) const
{
    return tag.label().leftJustified(labelWidth) + ' ' + shownText(tag, values);
}

} // namespace host
