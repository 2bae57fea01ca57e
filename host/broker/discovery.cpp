// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/discovery.h"

#include "host/base/filled.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <string>

namespace host {

namespace {

// The letters of a topic or name that an identifier may have; _ and two digits for each byte of another one.
QString identifierOf(const QString &text)
{
    QString identifier;
    for (const char byte : text.toUtf8()) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        const bool isAllowed = isLetter || (byte >= '0' && byte <= '9') || byte == '-' || byte == '_';
        identifier += isAllowed     ? QString(QLatin1Char(byte))
                      : byte == '/' ? QString("-")
                                    : '_' + QString::number(uchar(byte), 16).rightJustified(2, '0');
    }
    return identifier;
}

// Home Assistant's templates are Python's expressions; a JSON text is a text there, too.
QString pathOf(const QString &name, PayloadForm form)
{
    const Json text = jsonText(name);
    return form == PayloadForm::Group ? "value_json['values'][" + QString::fromStdString(text.dump()) + ']'
                                      : QString("value_json");
}

bool isBit(const Tag &tag)
{
    return tag.item.type == ValueType::Bool && tag.item.count == 1;
}

bool isNumber(const Tag &tag)
{
    return hasNumbers(tag.item.type) && tag.item.count == 1;
}

const char *componentOf(const Tag &tag)
{
    if (tag.access != Access::ReadWrite)
        return isBit(tag) ? "binary_sensor" : "sensor";
    return isBit(tag) ? "switch" : isNumber(tag) ? "number" : "text";
}

// Limits of values of the type; a tag without limits of its own has them, as Home Assistant takes 1 to 100
// otherwise.
constexpr double kLargestShown = 1e9;

// Home Assistant takes no step that is smaller.
constexpr double kLeastStep = 0.001;

double stepOf(const Tag &tag)
{
    return isFloat(tag.item.type) ? kLeastStep : std::max(kLeastStep, std::abs(tag.scaling.scale));
}

void addNumber(Json &record, const Tag &tag)
{
    record["min"] = tag.minimum.value_or(-kLargestShown);
    record["max"] = tag.maximum.value_or(kLargestShown);
    record["step"] = stepOf(tag);
    record["mode"] = "box";
}

// How the state is read out of a message, and which commands a switch sends.
void addState(Json &record, const Tag &tag, PayloadForm form)
{
    const QString value = pathOf(tag.label(), form) + ".value";
    const bool isPlain = form == PayloadForm::Plain;
    if (!isBit(tag)) {
        if (!isPlain)
            record["value_template"] = jsonText("{{ " + value + " }}");
        return;
    }
    if (!isPlain)
        record["value_template"] = jsonText("{{ 1 if " + value + " else 0 }}");
    record["payload_on"] = "1";
    record["payload_off"] = "0";
}

Json recordOf(const Tag &tag, const QByteArray &stateTopic, const Topics &topics, PayloadForm form)
{
    const std::string line = identifierOf(topics.prefix()).toStdString();
    Json record = {{"name", jsonText(tag.label())},
                   {"unique_id", line + '-' + identifierOf(tag.label()).toStdString()},
                   {"state_topic", stateTopic.toStdString()},
                   {"availability_topic", topics.status().toStdString()}};
    addState(record, tag, form);
    if (!tag.unit.isEmpty() && !isBit(tag))
        record["unit_of_measurement"] = jsonText(tag.unit);
    if (tag.access == Access::ReadWrite) {
        record["command_topic"] = topics.set(tag.label()).toStdString();
        if (isNumber(tag))
            addNumber(record, tag);
    }
    record["device"] = {{"identifiers", {line}}, {"name", jsonText(topics.prefix())}};
    return record;
}

} // namespace

std::vector<Message> discoveryMessages(const std::vector<Tag> &tags,
                                       const std::vector<std::chrono::milliseconds> &intervals,
                                       const Topics &topics, PayloadForm form, const QString &prefix)
{
    std::vector<Message> messages;
    for (size_t i = 0; i < tags.size(); ++i) {
        const Tag &tag = tags[i];
        const QByteArray state =
            form == PayloadForm::Group ? topics.group(intervals[i]) : topics.item(tag.label());
        const QString topic = filled("%1/%2/%3/%4/config", prefix, componentOf(tag),
                                     identifierOf(topics.prefix()), identifierOf(tag.label()));
        messages.push_back(
            {topic.toUtf8(), QByteArray::fromStdString(recordOf(tag, state, topics, form).dump())});
    }
    return messages;
}

} // namespace host
