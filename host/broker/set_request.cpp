// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/broker/set_request.h"

#include "common/terminal_text.h"
#include "host/base/filled.h"
#include "host/broker/item_messages.h"
#include "host/items/write_guard.h"
#include "host/text/json.h"
#include "host/text/time_text.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <string>

namespace host {

namespace {

// The longest item has 222 bytes, of which each can stand as four characters between quotes.
constexpr int kLongestPayload = 4096;

Failure wrongValue(const QString &text)
{
    return Failure(ExitCode::Usage, text,
                   "send a value as s7ppi write takes it, or {\"value\":21.5}; nothing was written");
}

// Returns a text as s7ppi write takes it, between quotes for a tag that is one.
QString textValue(const Tag &tag, const QString &text)
{
    if (!isText(tag.item.type))
        return text;
    const QByteArray bytes = text.toLatin1();
    if (QString::fromLatin1(bytes.constData(), int(bytes.size())) != text)
        throw wrongValue("the text has characters that are no bytes");
    return valueText(Characters{bytes});
}

// Returns a value of JSON as s7ppi write takes it. One of several whole numbers gets a point where fractions
// can be meant: two of them are no number with a decimal comma.
QString scalarText(const Tag &tag, const Json &json)
{
    const bool hasFractions = isFloat(tag.item.type) || tag.scaling.isActive();
    if (json.is_boolean())
        return json.get<bool>() ? "1" : "0";
    if (json.is_number())
        return QString::fromStdString(json.dump()) + (json.is_number_integer() && hasFractions ? ".0" : "");
    if (json.is_string())
        return textValue(tag, QString::fromStdString(json.get<std::string>()));
    throw wrongValue("the JSON is no value");
}

QString valuesText(const Tag &tag, const Json &json)
{
    if (!json.is_array())
        return scalarText(tag, json);
    QStringList texts;
    for (const Json &element : json)
        texts << scalarText(tag, element);
    return texts.join(',');
}

QString memberText(const Tag &tag, const Json &json)
{
    if (!json.is_object())
        return valuesText(tag, json);
    if (!json.contains("value"))
        throw wrongValue("the JSON has no member \"value\"");
    return valuesText(tag, json["value"]);
}

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

QString valuesOf(const Tag &tag, const QByteArray &payload)
{
    if (payload.size() > kLongestPayload)
        throw wrongValue(filled("the payload has %1 bytes", payload.size()));
    if (payload.trimmed().isEmpty())
        throw wrongValue("the payload is empty");
    QString text = QString::fromUtf8(payload).trimmed();
    if (text.toUtf8() != payload.trimmed() || std::any_of(text.begin(), text.end(), isControl))
        throw wrongValue("the payload is no text");
    const Json json = Json::parse(payload.toStdString(), nullptr, false);
    if (json.is_discarded()) {
        if (text.startsWith('{') || text.startsWith('['))
            throw wrongValue("the payload is no JSON");
        return text;
    }
    return json.is_structured() || json.is_string() ? memberText(tag, json) : text;
}

void checkAccess(const Tag &tag)
{
    if (tag.access != Access::ReadWrite)
        throw Failure(ExitCode::Usage, Cause::NotWritable, tag.label() + " cannot be written over the broker",
                      "only tags whose access in the tag file is rw are");
}

void checkLimits(const Assignment &assignment)
{
    try {
        checkWritable(assignment.tag, assignment.data);
    } catch (const Failure &failure) {
        throw Failure(failure.code(), Cause::OutOfRange, failure.text(), failure.hint());
    }
}

QByteArray answerText(const char *result, const Failure &reason, std::chrono::system_clock::time_point time)
{
    const Json record = {{"result", result},
                         {"cause", jsonText(causeWord(reason.cause()))},
                         {"error", jsonText(common::messageText(reason.text()))},
                         {"hint", jsonText(common::messageText(reason.hint()))},
                         {"time", jsonText(timeText(time))}};
    return QByteArray::fromStdString(record.dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace

Assignment parseSetRequest(const Tag &tag, const SetRequest &request)
{
    checkAccess(tag);
    if (request.isRetained)
        throw Failure(ExitCode::Usage, Cause::RetainedCommand,
                      "the command is retained, and was sent at some time before",
                      "send commands that the broker does not keep: it would repeat them at every start");
    Assignment assignment = assign(tag, valuesOf(tag, request.payload));
    checkLimits(assignment);
    return assignment;
}

QByteArray doneText(const Assignment &assignment, std::chrono::system_clock::time_point time)
{
    const Tag &tag = assignment.tag;
    const Json record = {{"result", "done"},
                         {"value", valueJson(tag, decodeValues(tag.item, assignment.data))},
                         {"time", jsonText(timeText(time))}};
    return QByteArray::fromStdString(record.dump(-1, ' ', false, Json::error_handler_t::replace));
}

QByteArray refusedText(const Failure &reason, std::chrono::system_clock::time_point time)
{
    return answerText("refused", reason, time);
}

QByteArray failedText(const Failure &reason, std::chrono::system_clock::time_point time)
{
    return answerText("failed", reason, time);
}

} // namespace host
