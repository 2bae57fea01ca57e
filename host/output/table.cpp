// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/table.h"

#include <algorithm>
#include <string>

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

// The member of this name, or the list of the same name in the plural.
Json member(const Json &record, const QString &name)
{
    for (const QString &key : {name, name + 's'})
        if (const auto found = record.find(key.toStdString()); found != record.end())
            return *found;
    return Json();
}

Json element(const Json &value, size_t index)
{
    if (!value.is_array())
        return value;
    return index < value.size() ? value.at(index) : Json();
}

bool hasList(const Json &record, const QStringList &columns)
{
    return std::any_of(columns.begin(), columns.end(),
                       [&](const QString &column) { return member(record, column).is_array(); });
}

size_t rowCount(const Json &record, const QStringList &columns)
{
    size_t rows = 1;
    for (const QString &column : columns)
        if (const Json value = member(record, column); value.is_array())
            rows = std::max(rows, value.size());
    return rows;
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
    const bool isNumbered = hasList(record, columns);
    QList<QStringList> rows;
    for (size_t row = 0; row < rowCount(record, columns); ++row) {
        QStringList cells;
        for (const QString &column : columns) {
            const bool isIndex = isNumbered && column == kIndexColumn;
            cells << (isIndex ? QString::number(row) : cellText(element(member(record, column), row)));
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
