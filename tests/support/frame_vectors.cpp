// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "frame_vectors.h"

#include <QFile>
#include <QtGlobal>

FrameVectors::FrameVectors(const char *fileName) : file(fileName), last(nullptr)
{
    QFile text(QString::fromLatin1(TESTS_DIR) + QLatin1Char('/') + QString::fromLatin1(fileName));
    if (!text.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", fileName);
    while (!text.atEnd()) {
        QByteArray line = text.readLine();
        const int comment = int(line.indexOf('#'));
        if (comment >= 0)
            line.truncate(comment);
        if (!line.trimmed().isEmpty())
            addLine(line);
    }
}

void FrameVectors::addLine(const QByteArray &line)
{
    const QByteArray content = line.trimmed();
    if (line.at(0) != ' ') {
        allNames += content;
        last = nullptr;
        return;
    }
    const char mark = content.at(0);
    const bool isNew = mark == '>' || mark == '<';
    QByteArray digits = content.mid(isNew ? 1 : 0);
    digits.replace(" ", "");
    const QByteArray bytes = QByteArray::fromHex(digits);
    if (allNames.isEmpty() || (!isNew && last == nullptr) || bytes.toHex() != digits)
        qFatal("%s: not a frame: %s", file.constData(), content.constData());
    if (isNew) {
        last = mark == '>' ? &sentFrames : &receivedFrames;
        (*last)[allNames.last()] += bytes;
    } else {
        (*last)[allNames.last()].last() += bytes;
    }
}

QByteArray FrameVectors::frame(const QByteArray &name) const
{
    return sentFrames.contains(name) ? sent(name) : received(name);
}

QByteArray FrameVectors::sent(const QByteArray &name, int number) const
{
    return frameOf(sentFrames, name, number);
}

QByteArray FrameVectors::received(const QByteArray &name, int number) const
{
    return frameOf(receivedFrames, name, number);
}

QByteArray FrameVectors::frameOf(const Frames &frames, const QByteArray &name, int number) const
{
    const QList<QByteArray> list = frames.value(name);
    if (number >= list.size())
        qFatal("%s has no such frame: %s", file.constData(), name.constData());
    return list.at(number);
}
