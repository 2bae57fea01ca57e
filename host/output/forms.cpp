// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/forms.h"

#include "host/base/filled.h"
#include "host/output/spool.h"
#include "host/output/table.h"

#include <QList>
#include <QRegularExpression>
#include <QStringList>

#include <string>
#include <utility>

namespace host {

namespace {

constexpr char kSimulated[] = "simulated";

std::string formatName(const Schema &schema)
{
    return filled("s7ppi.%1/%2", schema.command, schema.version).toStdString();
}

// Texts that come from QString are sound, but the driver's own may be cut in the middle of a character.
QByteArray dumped(const Json &value, int indent = -1)
{
    return QByteArray::fromStdString(value.dump(indent, ' ', false, Json::error_handler_t::replace));
}

// What stands before everything else of a document.
Json headFields(const Schema &schema)
{
    Json head = {{"format", formatName(schema)}};
    if (schema.isSimulated)
        head[kSimulated] = true;
    return head;
}

Json withFormat(const Schema &schema, const Json &members)
{
    Json whole = headFields(schema);
    whole.update(members);
    return whole;
}

class TextForm : public OutputForm
{
public:
    TextForm(const Schema &schema, std::unique_ptr<OutputSink> sink)
        : OutputForm(std::move(sink)), columns(schema.columns)
    {
    }

    void write(const Json &record) override { rows += cellRows(record, columns); }
    void writeLine(const Json & /*record*/, const QString &text) override { writeText(text); }
    void writeText(const QString &text) override { putText(text + '\n'); }
    void writeHead(const QString &text) override { putHead(text.toUtf8() + '\n'); }
    void finish() override;

private:
    QStringList columns;
    QList<QStringList> rows;
};

void TextForm::finish()
{
    if (rows.isEmpty())
        return;
    QStringList head;
    for (const QString &column : columns)
        head << column.toUpper();
    rows.prepend(head);
    for (const QString &line : alignedLines(rows))
        writeText(line);
}

// The document has one record per line, so that a program that reads along and one that seeks an item find
// whole lines.
class JsonForm : public OutputForm
{
public:
    JsonForm(const Schema &schema_, std::unique_ptr<OutputSink> sink)
        : OutputForm(std::move(sink)), schema(schema_), fields(headFields(schema_))
    {
    }

    void setField(const QString &name, const Json &value) override { fields[name.toStdString()] = value; }
    void write(const Json &record) override;
    void writeBeside(const Json &record) override;
    void finish() override;

private:
    void putFields();
    void putBeside();
    void beginList();

    Schema schema;
    Json fields; // still to be put
    bool hasBegun = false;
    bool hasRecords = false;
    Spool beside; // the records of the second list, which has its place behind the first
    bool hasBeside = false;
};

void JsonForm::write(const Json &record)
{
    if (schema.list.isEmpty()) {
        fields.update(record);
        return;
    }
    beginList();
    put((hasRecords ? ",\n    " : "\n    ") + dumped(record));
    hasRecords = true;
}

void JsonForm::finish()
{
    if (schema.list.isEmpty()) {
        put(dumped(fields, 2) + '\n');
        return;
    }
    beginList();
    put(hasRecords ? "\n  ]" : "]");
    putFields();
    putBeside();
    put("\n}\n");
}

void JsonForm::writeBeside(const Json &record)
{
    beside.put((std::exchange(hasBeside, true) ? "," : "") + dumped(record));
}

void JsonForm::putBeside()
{
    if (schema.beside.isEmpty())
        return;
    put(",\n  " + dumped(jsonText(schema.beside)) + ": [");
    beside.rewind();
    for (QByteArray some = beside.next(); !some.isEmpty(); some = beside.next())
        put(some);
    put("]");
}

void JsonForm::beginList()
{
    if (std::exchange(hasBegun, true))
        return;
    put("{");
    putFields();
    put(",\n  " + dumped(jsonText(schema.list)) + ": [");
}

// The first field stands behind the brace, all others behind what went before.
void JsonForm::putFields()
{
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        const bool isFirst = field.key() == "format";
        put((isFirst ? "\n  " : ",\n  ") + dumped(field.key()) + ": " + dumped(field.value()));
    }
    fields.clear();
}

class NdjsonForm : public OutputForm
{
public:
    NdjsonForm(const Schema &schema_, std::unique_ptr<OutputSink> sink)
        : OutputForm(std::move(sink)), schema(schema_)
    {
    }

    void write(const Json &record) override { put(dumped(withFormat(schema, record)) + '\n'); }

private:
    Schema schema;
};

// A table whose cells are separated by commas or by tabulators.
class SeparatedForm : public OutputForm
{
public:
    using Line = QByteArray (*)(const QStringList &cells);

    SeparatedForm(const QStringList &columns_, Line line_, std::unique_ptr<OutputSink> sink)
        : OutputForm(std::move(sink)), columns(columns_), line(line_)
    {
    }

    // Adds a column that has the same cell in every line.
    void setColumn(const QString &name, const Json &value);

    void write(const Json &record) override;
    void finish() override { putColumns(); }

private:
    void putColumns();

    QStringList columns;
    Json common = Json::object(); // what every record has besides its own
    Line line;
    bool hasHead = false;
};

void SeparatedForm::setColumn(const QString &name, const Json &value)
{
    columns << name;
    common[name.toStdString()] = value;
}

void SeparatedForm::write(const Json &record)
{
    putColumns();
    Json whole;
    if (!common.empty()) {
        whole = record;
        whole.update(common);
    }
    QByteArray lines;
    for (const QStringList &cells : cellRows(common.empty() ? record : whole, columns))
        lines += line(cells);
    put(lines);
}

void SeparatedForm::putColumns()
{
    if (!std::exchange(hasHead, true))
        putHead(line(columns));
}

// A document without a list of records, as a table of two columns, field and value.
class SeparatedFieldsForm : public SeparatedForm
{
public:
    using SeparatedForm::SeparatedForm;

    void write(const Json &record) override
    {
        for (const auto &[field, value] : flatFields(record))
            SeparatedForm::write({{"field", jsonText(field)}, {"value", value}});
    }
};

class RawForm : public OutputForm
{
public:
    using OutputForm::OutputForm;

    void writeRaw(const QByteArray &bytes) override { put(bytes); }
};

std::unique_ptr<OutputForm> separatedForm(const Schema &schema, SeparatedForm::Line line,
                                          std::unique_ptr<OutputSink> sink)
{
    if (schema.list.isEmpty())
        return std::make_unique<SeparatedFieldsForm>(QStringList{"field", "value"}, line, std::move(sink));
    auto form = std::make_unique<SeparatedForm>(schema.columns, line, std::move(sink));
    if (schema.isSimulated)
        form->setColumn(kSimulated, true);
    return form;
}

QStringList columnsOf(const Schema &schema)
{
    return schema.isSimulated ? schema.columns + QStringList(kSimulated) : schema.columns;
}

LineStyle separatedStyle(const QByteArray &head, bool hasQuotes)
{
    const QString names = QString::fromUtf8(head).trimmed();
    return {head, QRegularExpression('^' + QRegularExpression::escape(names) + '$'), hasQuotes};
}

LineStyle textStyle(const Schema &schema, const QString &beginning)
{
    if (!schema.isSimulated)
        return {QByteArray(), QRegularExpression('^' + beginning), false};
    return {QByteArray(kSimulatedLine) + '\n',
            QRegularExpression('^' + QRegularExpression::escape(kSimulatedLine) + '$'), false};
}

} // namespace

const char kSimulatedLine[] = "# simulated: no machine had these values";

LineStyle lineStyle(Format format, const Schema &schema, const QString &textBeginning)
{
    if (format == Format::Csv)
        return separatedStyle(csvLine(columnsOf(schema)), true);
    if (format == Format::Tsv)
        return separatedStyle(tsvLine(columnsOf(schema)), false);
    if (format == Format::Text)
        return textStyle(schema, textBeginning);
    const QString object = QString("{\"format\":\"%1\",").arg(QString::fromStdString(formatName(schema)));
    return {QByteArray(), QRegularExpression('^' + QRegularExpression::escape(object)), false};
}

std::unique_ptr<OutputForm> outputForm(Format format, const Schema &schema, std::unique_ptr<OutputSink> sink)
{
    switch (format) {
    case Format::JsonDocument:
        return std::make_unique<JsonForm>(schema, std::move(sink));
    case Format::JsonLines:
        return std::make_unique<NdjsonForm>(schema, std::move(sink));
    case Format::Csv:
        return separatedForm(schema, csvLine, std::move(sink));
    case Format::Tsv:
        return separatedForm(schema, tsvLine, std::move(sink));
    case Format::Raw:
        return std::make_unique<RawForm>(std::move(sink));
    case Format::Text:
        break;
    }
    return std::make_unique<TextForm>(schema, std::move(sink));
}

} // namespace host
