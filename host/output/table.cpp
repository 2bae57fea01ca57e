// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/table.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace host {

namespace {

const char kIndexColumn[] = "index";

QString cellText(const Json &value)
{
    if (value.is_null())
        return QString();
    if (value.is_boolean())
        return value.get<bool>() ? "1" : "0";
    const std::string text = value.is_string() ? value.get<std::string>()
                                               : value.dump(-1, ' ', false, Json::error_handler_t::replace);
    return QString::fromStdString(text);
}

// The member of this name, or the list of the same name in the plural; null without either.
const Json *member(const Json &record, const QString &name)
{
    const std::string key = name.toStdString();
    auto found = record.find(key);
    if (found == record.end())
        found = record.find(key + 's');
    return found == record.end() ? nullptr : &*found;
}

QString cellOf(const Json *member, size_t row)
{
    if (!member)
        return QString();
    if (!member->is_array())
        return cellText(*member);
    return row < member->size() ? cellText(member->at(row)) : QString();
}

// The number of a list's first element, which is 0 for records that do not say so.
size_t firstIndex(const Json *index)
{
    return index ? index->get<size_t>() : 0;
}

// The longest list among the members; nothing when none of them is a list.
std::optional<size_t> longestList(const std::vector<const Json *> &members)
{
    std::optional<size_t> longest;
    for (const Json *member : members)
        if (member && member->is_array())
            longest = std::max(longest.value_or(1), member->size());
    return longest;
}

QByteArray csvCell(const QString &cell)
{
    QByteArray text = cell.toUtf8();
    const bool isPlain = std::none_of(text.begin(), text.end(), [](char c) { return strchr(",\"\r\n", c); });
    return isPlain ? text : '"' + text.replace('"', "\"\"") + '"';
}

QByteArray tsvCell(const QString &cell)
{
    return cell.toUtf8().replace('\\', "\\\\").replace('\t', "\\t").replace('\n', "\\n").replace('\r', "\\r");
}

QByteArray separated(const QStringList &cells, char separator, QByteArray (*cellForm)(const QString &))
{
    QByteArrayList texts;
    for (const QString &cell : cells)
        texts << cellForm(cell);
    return texts.join(separator) + '\n';
}

void addFlatFields(QList<std::pair<QString, Json>> &fields, const QString &path, const Json &value)
{
    if (!value.is_structured()) {
        fields << std::make_pair(path, value);
        return;
    }
    for (const auto &[name, part] : value.items()) {
        const QString field = QString::fromStdString(name);
        addFlatFields(fields, path.isEmpty() ? field : path + '.' + field, part);
    }
}

} // namespace

QList<QStringList> cellRows(const Json &record, const QStringList &columns)
{
    std::vector<const Json *> members;
    for (const QString &column : columns)
        members.push_back(member(record, column));
    const std::optional<size_t> longest = longestList(members);
    QList<QStringList> rows;
    for (size_t row = 0; row < longest.value_or(1); ++row) {
        QStringList cells;
        for (int i = 0; i < columns.size(); ++i) {
            const bool isIndex = longest && columns.at(i) == kIndexColumn;
            cells << (isIndex ? QString::number(firstIndex(members.at(size_t(i))) + row)
                              : cellOf(members.at(size_t(i)), row));
        }
        rows << cells;
    }
    return rows;
}

QList<std::pair<QString, Json>> flatFields(const Json &record)
{
    QList<std::pair<QString, Json>> fields;
    addFlatFields(fields, QString(), record);
    return fields;
}

QStringList alignedLines(const QList<QStringList> &rows)
{
    QList<int> widths;
    for (const QStringList &row : rows)
        for (int column = 0; column < row.size(); ++column) {
            if (column == widths.size())
                widths << 0;
            widths[column] = std::max(widths.at(column), int(row.at(column).size()));
        }
    QStringList lines;
    for (const QStringList &row : rows) {
        QString line;
        for (int column = 0; column < row.size(); ++column)
            line += row.at(column).leftJustified(widths.at(column) + 2);
        while (line.endsWith(' '))
            line.chop(1);
        lines << line;
    }
    return lines;
}

QByteArray csvLine(const QStringList &cells)
{
    return separated(cells, ',', csvCell);
}

QByteArray tsvLine(const QStringList &cells)
{
    return separated(cells, '\t', tsvCell);
}

} // namespace host
