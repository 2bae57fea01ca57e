// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/explanation.h"

#include "host/base/filled.h"
#include "host/frames/layout.h"
#include "host/frames/words.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

bool isFrameStart(char byte)
{
    const auto start = uchar(byte);
    return start == kAcknowledgement || start == kShortFrame || start == kLongFrame;
}

// Goes along a frame, field by field. A field is taken as far as there are bytes for it; where they
// end, everything that is asked for later is taken as missing, too.
class Walk
{
public:
    explicit Walk(const QByteArray &frame_)
        : facts{frame_}, frame(frame_), wholeSize(frameSize(frame_)), limit(int(frame_.size()))
    {
    }

    FrameFacts facts;
    ExplainedFrame explained;

    // Fields reach up to this offset and not beyond it: a length has said so.
    void setLimit(int offset) { limit = std::max(place, std::min(offset, int(frame.size()))); }
    int left() const { return limit - place; }

    // Whether a field did not find its bytes, in what the limit leaves or in what there is of the frame.
    bool isShort() const { return missed; }

    // The text stands before the names of the fields that follow: "item 1 ".
    void setSubject(const QString &text) { subject = text; }

    void take(const FrameFields &fields);
    void takeData(int length, const WireItem *item);
    void takeNameless(const QString &field, bool isFault);
    void skipTo(int offset);

private:
    bool take(const FrameField &field);
    void add(const QString &field, const QString &meaning, bool isFault);
    void miss(const QString &field);

    bool isCut() const { return wholeSize == 0 || wholeSize > frame.size(); }

    const QByteArray &frame;
    int wholeSize; // 0 when the frame does not tell
    int limit;
    int place = 0;
    QString subject;
    bool missed = false;
};

void Walk::add(const QString &field, const QString &meaning, bool isFault)
{
    explained.bytes.push_back({place, uchar(frame.at(place)), field, meaning, isFault});
    ++place;
}

void Walk::miss(const QString &field)
{
    if (std::exchange(missed, true))
        return;
    if (wholeSize == 0)
        explained.missing = QString("cut: it ends before \"%1\"").arg(field);
    else if (isCut())
        explained.missing = filled("cut: %1 of %2 bytes are missing, from \"%3\" on",
                                   wholeSize - frame.size(), wholeSize, field);
    else
        explained.missing = QString("there are no bytes for \"%1\" within the lengths").arg(field);
    explained.faults << explained.missing;
}

bool Walk::take(const FrameField &field)
{
    const QString name = subject + field.name;
    if (left() < field.size) {
        takeNameless(name, false);
        miss(name);
        return false;
    }
    facts.offset = place;
    const int value = readField(field, facts);
    const FieldMeaning meaning = meaningOf(field, facts, value);
    if (meaning.isFault)
        explained.faults << name + ": " + meaning.text;
    add(name, meaning.text, meaning.isFault);
    for (int i = 1; i < field.size; ++i)
        add(name, QString(), meaning.isFault);
    return true;
}

void Walk::take(const FrameFields &fields)
{
    for (const FrameField &field : fields)
        if (!take(field))
            return;
}

void Walk::takeNameless(const QString &field, bool isFault)
{
    while (left() > 0)
        add(field, QString(), isFault);
}

QString recordMeaning(const QByteArray &bytes, const WireItem &item, int element)
{
    const DataRecord record = dataRecord(item);
    const QString address = elementAddress(item, element);
    if (bytes.size() < record.size)
        return address + ": cut";
    quint32 value = 0;
    for (int i = record.valueOffset; i < record.size; ++i)
        value = value << 8 | uchar(bytes.at(i));
    const QString status = record.valueOffset ? ", status " + hexByte(uchar(bytes.at(0))) : QString();
    return filled("%1: %2%3", address, value, status);
}

void Walk::takeData(int length, const WireItem *item)
{
    const int recordSize = item ? dataRecord(*item).size : 1;
    const QString name = subject + "data";
    for (int done = 0; done < length; ++done) {
        if (left() == 0) {
            miss(name);
            return;
        }
        const QByteArray bytes = frame.mid(place, std::min({recordSize, left(), length - done}));
        if (done % recordSize)
            add(name, QString(), false);
        else if (item)
            add(name, recordMeaning(bytes, *item, done / recordSize), false);
        else
            add(name, QString::number(uchar(bytes.at(0))), false);
    }
}

// Goes to the offset where the next known field lies. Bytes on the way there belong to no field, which is a
// fault.
void Walk::skipTo(int offset)
{
    setLimit(offset);
    if (left() > 0)
        explained.faults << QString("%1 bytes more than the fields before them account for").arg(left());
    takeNameless("unexpected", true);
    setLimit(int(frame.size()));
    missed = missed && isCut();
}

QString itemSubject(const Walk &walk, int item)
{
    return walk.facts.itemCount > 1 ? QString("item %1 ").arg(item + 1) : QString();
}

const WireItem *itemAt(const QList<WireItem> &items, int index)
{
    return index < items.size() ? &items.at(index) : nullptr;
}

// Every item but the last is filled up to an even number of bytes.
void takeDataItem(Walk &walk, const FrameFields &head, const QList<WireItem> &items, int item)
{
    walk.setSubject(itemSubject(walk, item));
    walk.facts.dataLength = 0;
    walk.take(head);
    const int length = dataSize(uchar(walk.facts.dataKind), walk.facts.dataLength);
    walk.takeData(length, itemAt(items, item));
    if (length % 2 && item + 1 < walk.facts.itemCount)
        walk.take(fillerFields());
}

QList<WireItem> takeRequestItems(Walk &walk)
{
    QList<WireItem> items;
    for (int i = 0; i < walk.facts.itemCount && !walk.isShort(); ++i) {
        walk.setSubject(itemSubject(walk, i));
        walk.take(requestItemFields());
        items << walk.facts.item;
    }
    return items;
}

void takeDataItems(Walk &walk, const FrameFields &head, const QList<WireItem> &items)
{
    for (int i = 0; i < walk.facts.itemCount && !walk.isShort(); ++i)
        takeDataItem(walk, head, items, i);
}

void takeReturnCodes(Walk &walk, const QList<WireItem> &items)
{
    for (int i = 0; i < walk.facts.itemCount && !walk.isShort(); ++i) {
        const WireItem *item = itemAt(items, i);
        walk.setSubject(item ? elementAddress(*item, 0) + ' ' : itemSubject(walk, i));
        walk.take(returnCodeFields());
    }
}

using Asked = QHash<int, QList<WireItem>>;

void takeRequest(Walk &walk, Asked &asked)
{
    const QList<WireItem> items = takeRequestItems(walk);
    asked[walk.facts.reference] = items;
    if (walk.facts.function == kWriteVariable)
        takeDataItems(walk, writtenDataFields(), items);
}

void takeAnswer(Walk &walk, const Asked &asked)
{
    const QList<WireItem> items = asked.value(walk.facts.reference);
    if (walk.facts.function == kReadVariable)
        takeDataItems(walk, readDataFields(), items);
    else
        takeReturnCodes(walk, items);
}

// An answer that refuses the whole request may end behind its header. A message of a type that is not known
// has nothing in it that could be named.
void takePdu(Walk &walk, Asked &asked)
{
    walk.take(headerFields());
    const bool isRequest = walk.facts.messageType == kJob;
    const bool isKnown = walk.facts.messageType > 0 && walk.facts.messageType <= kLastAnswerType;
    if (isKnown && !isRequest)
        walk.take(errorFields());
    const bool isRefused = walk.facts.errorClass != 0 || walk.facts.errorCode != 0;
    if (isRefused && walk.left() == 0)
        return;
    if (!isKnown) {
        walk.takeNameless("parameters", false);
        return;
    }
    walk.take(parameterFields());
    if (walk.facts.function != kReadVariable && walk.facts.function != kWriteVariable)
        walk.takeNameless("parameters", false);
    else if (isRequest)
        takeRequest(walk, asked);
    else
        takeAnswer(walk, asked);
    walk.setSubject(QString());
}

void takeLongFrame(Walk &walk, Asked &asked)
{
    walk.facts.checkedFrom = kLongFrameCounted;
    walk.take(longFrameHead());
    const int end = kLongFrameCounted + walk.facts.length;
    walk.setLimit(end);
    takePdu(walk, asked);
    walk.skipTo(end);
    walk.take(frameTail());
}

void takeFrame(Walk &walk, const QByteArray &frame, Asked &asked)
{
    switch (uchar(frame.at(0))) {
    case kAcknowledgement:
        walk.take(acknowledgementFields());
        return;
    case kShortFrame:
        walk.facts.checkedFrom = kShortFrameCounted;
        walk.take(shortFrameHead());
        walk.take(frameTail());
        return;
    case kLongFrame:
        takeLongFrame(walk, asked);
        return;
    default:
        walk.explained.faults << "no frame begins so";
        walk.takeNameless("noise", true);
    }
}

} // namespace

QList<QByteArray> splitFrames(const QByteArray &bytes)
{
    QList<QByteArray> frames;
    for (int done = 0; done < bytes.size();) {
        int size = 1;
        if (isFrameStart(bytes.at(done)))
            size = frameSize(bytes.mid(done, 2));
        else
            while (done + size < bytes.size() && !isFrameStart(bytes.at(done + size)))
                ++size;
        frames << (size > 0 ? bytes.mid(done, size) : bytes.mid(done));
        done += int(frames.last().size());
    }
    return frames;
}

ExplainedFrame FrameExplainer::explain(const QByteArray &frame)
{
    if (frame.isEmpty())
        return {};
    Walk walk(frame);
    takeFrame(walk, frame, asked);
    walk.skipTo(int(frame.size()));
    return walk.explained;
}

} // namespace host
