// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/items/tag.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
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
    QString operator()(quint64 number) const { return scaledText(scaling, number); }
    QString operator()(float number) const { return scaledText(scaling, number); }
    QString operator()(double number) const { return scaledText(scaling, number); }
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

// The label of a tag's last line, which is the longest: the numbers in it only grow.
QString lastLabel(const Tag &tag)
{
    const int last = isText(tag.item.type) ? 0 : (tag.item.count - 1) / kValuesPerLine * kValuesPerLine;
    return last == 0 ? tag.label() : valueLabel(tag, last);
}

struct JsonWriter
{
    Json operator()(bool bit) const { return bit; }
    Json operator()(qint64 number) const { return number; }
    Json operator()(quint64 number) const { return number; }
    Json operator()(float number) const { return jsonNumber(number); }
    Json operator()(double number) const { return jsonNumber(number); }
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

// What both kinds of record have.
Json fieldsOf(const Origin &origin, const Tag &tag)
{
    Json fields = originFields(origin);
    fields.update(tagFields(tag));
    return fields;
}

// The raw number of a shown one.
QString rawText(const Tag &tag, double shown)
{
    const ValueType type = tag.item.type;
    if (isFloat(type))
        return unscaledFloatText(tag.scaling, shown);
    QString raw = unscaledWholeText(tag.scaling, shown);
    const bool isLong = type == ValueType::U64 || type == ValueType::I64;
    if (isLong && std::abs(raw.toDouble()) > kLargestExactWhole)
        throw Failure(ExitCode::Usage, "a scaled number of this size cannot be told from its neighbours",
                      filled("write the number as it lies in the controller: %1:%2=%3", tag.item.place(),
                             tag.item.typeText(), raw));
    return raw;
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
        numbers << rawText(tag, shown);
    }
    return numbers.join(',');
}

QStringList shownTexts(const Tag &tag, const std::vector<Value> &values)
{
    QStringList texts;
    for (const Value &value : values)
        texts << shownText(tag, value);
    return texts;
}

QString valueLabel(const Tag &tag, int index)
{
    if (!tag.name.isEmpty())
        return filled("%1[%2]", tag.name, index);
    Item value = tag.item;
    value.address = tag.item.valueAddress(index);
    return value.place();
}

std::vector<ValueLine> valueLines(const Tag &tag, const QStringList &values, int perLine)
{
    std::vector<int> widths(size_t(perLine), 0);
    if (values.size() > perLine)
        for (int i = 0; i < int(values.size()); ++i)
            widths[size_t(i % perLine)] = std::max(widths[size_t(i % perLine)], int(values.at(i).size()));
    std::vector<ValueLine> lines;
    for (int first = 0; first < int(values.size()); first += perLine) {
        QStringList texts;
        for (int i = first; i < int(values.size()) && i < first + perLine; ++i)
            texts << values.at(i).rightJustified(widths[size_t(i - first)]);
        if (!tag.unit.isEmpty())
            texts << tag.unit;
        lines.push_back({first == 0 ? tag.label() : valueLabel(tag, first), texts.join(' ')});
    }
    return lines;
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
    fields["type"] = jsonText(tag.item.typeText());
    if (!tag.unit.isEmpty())
        fields["unit"] = jsonText(tag.unit);
    return fields;
}

Json jsonValues(const Tag &tag, const std::vector<Value> &values)
{
    Json list = Json::array();
    for (const Value &value : values)
        list.push_back(jsonValue(tag, value));
    return list;
}

Json tagRecord(const Origin &origin, const Tag &tag, const std::vector<Value> &values)
{
    Json record = fieldsOf(origin, tag);
    record["values"] = jsonValues(tag, values);
    return record;
}

Json tagErrorRecord(const Origin &origin, const Tag &tag, const Failure &failure)
{
    Json record = fieldsOf(origin, tag);
    record["error"] = jsonText(failure.text());
    record["cause"] = jsonText(causeWord(failure.cause()));
    return record;
}

TextLines::TextLines(const std::vector<Tag> &tags)
{
    for (const Tag &tag : tags)
        labelWidth = std::max(labelWidth, int(lastLabel(tag).size()));
}

QString TextLines::text(const Tag &tag, const std::vector<Value> &values) const
{
    QStringList lines;
    for (const ValueLine &line : valueLines(tag, shownTexts(tag, values)))
        lines << line.label.leftJustified(labelWidth) + ' ' + line.text;
    return lines.join('\n');
}

} // namespace host
