// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/line_file.h"

#include "host/base/files.h"
#include "host/base/line_reader.h"
#include "host/base/messages.h"
#include "host/text/size_text.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <map>

#include <unistd.h>

namespace host {

namespace {

const char kRotationHint[] = "give a size from 1k on, as 500k, 10M or 1G, or the word day";
const char kOtherHint[] = "name another file with -o, or move this one away";
const char kRoomHint[] = "check the directory, its rights and its room; the records before are in the file";

// As much of a file's first line is looked at.
constexpr qint64 kHeadSize = 4096;

// Records reach the disk at least so often, for the case that power fails; milliseconds.
constexpr qint64 kSyncInterval = 10000;

constexpr qint64 kLeastSize = 1024;

// Returns the numbered files that a rotation left, by their numbers.
std::map<qint64, QString> rotatedFiles(const QString &name)
{
    const QFileInfo file(name);
    const QString suffix = file.suffix().isEmpty() ? QString() : '.' + file.suffix();
    const QRegularExpression pattern('^' + QRegularExpression::escape(file.completeBaseName()) +
                                     "\\.([1-9][0-9]{0,17})" + QRegularExpression::escape(suffix) + '$');
    std::map<qint64, QString> files;
    const QDir directory = file.dir();
    for (const QString &entry : directory.entryList(QDir::AllEntries | QDir::System | QDir::Hidden)) {
        const QRegularExpressionMatch match = pattern.match(entry);
        if (match.hasMatch())
            files[match.captured(1).toLongLong()] = directory.filePath(entry);
    }
    return files;
}

QString rotatedName(const QString &name, qint64 number)
{
    const QFileInfo file(name);
    const QString suffix = file.suffix().isEmpty() ? QString() : '.' + file.suffix();
    return file.dir().filePath(file.completeBaseName() + '.' + QString::number(number) + suffix);
}

QByteArray firstLine(const QByteArray &text)
{
    const int end = int(text.indexOf('\n'));
    return end < 0 ? text : text.left(end);
}

} // namespace

Rotation parseRotation(const QString &text)
{
    Rotation rotation;
    rotation.daily = text == "day";
    if (rotation.daily)
        return rotation;
    const std::optional<qint64> size = parseSize(text);
    if (!size || *size < kLeastSize)
        throw Failure(ExitCode::Usage, '"' + text + "\" is no size of a file", kRotationHint);
    rotation.size = *size;
    return rotation;
}

LineFile::LineFile(const QString &name_, const LineStyle &style_, const Rotation &rotation_)
    : name(name_), style(style_), rotation(rotation_)
{
    checkOutputName(name);
    if (QFileInfo(name).isSymLink() && QFileInfo::exists(name))
        name = QFileInfo(name).canonicalFilePath(); // what rotates is the file, not the link
    isWanted = QFileInfo::exists(name);
    open();
    sinceSync.start();
}

LineFile::~LineFile()
{
    if (!isWanted)
        file.remove();
}

void LineFile::put(const QByteArray &record)
{
    if (isDue(record))
        rotate();
    append(record);
    isWanted = true;
    if (sinceSync.hasExpired(kSyncInterval))
        sync();
}

void LineFile::commit()
{
    isWanted = true;
    sync();
}

void LineFile::open()
{
    file.setFileName(name);
    const QFileInfo before(name);
    lastDay = before.exists() ? before.lastModified().date() : QDate::currentDate();
    if (!file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        throwUnwritable(file, kRoomHint);
    if (!lockForWriting(file))
        throw Failure(ExitCode::OutputLost, name + " is being written by another s7ppi",
                      "wait for its end, or name another file with -o");
    size = file.size();
    if (size > 0)
        goOn();
    if (size == 0 && !style.head.isEmpty())
        append(style.head);
}

// Takes a last record that was cut out of the file, and goes to its end.
void LineFile::goOn()
{
    const qint64 whole = wholeSize();
    checkBeginning(whole);
    checkRest(whole);
    if (whole > qint64(style.head.size()))
        reportNote(name + " goes on behind what is recorded there");
    if (whole < size)
        reportNote(QString("%1: its last record was cut, and is taken out").arg(name));
    if (!file.resize(whole) || !file.seek(whole))
        throwUnwritable(file, kRoomHint);
    size = whole;
}

// Without a whole line there may be a beginning of one only.
void LineFile::checkBeginning(qint64 wholeSize)
{
    if (!file.seek(0))
        throwUnwritable(file, kRoomHint);
    const QByteArray text = file.read(kHeadSize);
    const QRegularExpressionMatch match = style.beginning.match(
        utf8Text(firstLine(text)), 0,
        wholeSize > 0 ? QRegularExpression::NormalMatch : QRegularExpression::PartialPreferCompleteMatch);
    if (!match.hasMatch() && !match.hasPartialMatch())
        throw Failure(ExitCode::Usage, name + " is there, and is no such recording in the same form",
                      kOtherHint);
}

// A quote that was left open anywhere makes one record of all that follow. They are not taken out.
void LineFile::checkRest(qint64 wholeSize)
{
    if (!file.seek(wholeSize))
        throwUnwritable(file, kRoomHint);
    const QList<QByteArray> lines = file.read(kLongestLine + 1).split('\n');
    static const QRegularExpression time("^[0-9]{4}-[0-9]{2}-[0-9]{2}T");
    const bool hasRecords = std::any_of(lines.begin() + 1, lines.end(), [](const QByteArray &line) {
        return time.match(utf8Text(line)).hasMatch();
    });
    if (hasRecords || size - wholeSize > kLongestLine)
        throw Failure(ExitCode::Usage, name + " has a record in it whose end is not to be found", kOtherHint);
}

// Returns the size of the file up to the end of its last whole record.
qint64 LineFile::wholeSize()
{
    qint64 whole = 0;
    qint64 position = 0;
    bool isOpen = false;
    if (!file.seek(0))
        throwUnwritable(file, kRoomHint);
    for (QByteArray part = file.read(1 << 20); !part.isEmpty(); part = file.read(1 << 20)) {
        for (const char character : part) {
            ++position;
            isOpen ^= style.hasQuotes && character == '"';
            if (character == '\n' && !isOpen)
                whole = position;
        }
    }
    return whole;
}

// A file that has nothing but its head is never too full.
bool LineFile::isDue(const QByteArray &record) const
{
    if (size <= qint64(style.head.size()))
        return false;
    return (rotation.size && size + record.size() > *rotation.size) ||
           (rotation.daily && QDate::currentDate() != lastDay);
}

// The number is greater than all that are there, so that whatever goes wrong on the way no file takes the
// place of another one.
void LineFile::rotate()
{
    sync();
    const std::map<qint64, QString> earlier = rotatedFiles(name);
    const QString full = rotatedName(name, earlier.empty() ? 1 : earlier.rbegin()->first + 1);
    if (!QFile::rename(name, full))
        throw Failure(ExitCode::OutputLost, name + " cannot be renamed to " + full, kRoomHint);
    file.close();
    open();
    dropOldest();
}

// What is no such recording is not of this one's making, whatever its name.
void LineFile::dropOldest() const
{
    if (!rotation.keep)
        return;
    QStringList own;
    for (const auto &[number, fileName] : rotatedFiles(name)) {
        QFile rotated(fileName);
        if (QFileInfo(fileName).isFile() && rotated.open(QIODevice::ReadOnly) &&
            style.beginning.match(utf8Text(firstLine(rotated.read(kHeadSize)))).hasMatch())
            own << fileName;
    }
    for (int i = 0; i < int(own.size()) - *rotation.keep; ++i)
        if (!QFile::remove(own.at(i)))
            reportWarning(own.at(i) + " is one too many, and cannot be removed");
}

// What does not fit as a whole is taken out again, so that the file ends with a whole record.
void LineFile::append(const QByteArray &text)
{
    if (file.write(text) != text.size()) {
        const Failure failure = unwritable(file, kRoomHint);
        static_cast<void>(file.resize(size));
        throw Failure(failure);
    }
    size += text.size();
    lastDay = QDate::currentDate();
}

// Not everything that takes records can be told to keep them; on a disk that can, a failure is one.
void LineFile::sync()
{
    sinceSync.start();
    if (fdatasync(file.handle()) != 0 && errno != EINVAL)
        throwUnwritable(file, kRoomHint);
}

} // namespace host
