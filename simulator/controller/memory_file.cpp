// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/memory_file.h"

#include "simulator/text/user_error.h"

#include <QByteArray>
#include <QFile>
#include <QSaveFile>

namespace sim {

namespace {

constexpr qint64 kLargestFile = 16 << 20; // a hundred times a full memory; /dev/zero has no end

std::string reasonOf(const QIODevice &file)
{
    return file.errorString().toStdString();
}

[[noreturn]] void failToLoad(const std::string &path, const std::string &what)
{
    throw MemoryFileError(path + ": " + what,
                          "check the file's name and rights; without a file there is an example memory");
}

} // namespace

StoredMemory loadMemory(const std::string &path)
{
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly))
        failToLoad(path, "cannot open: " + reasonOf(file));
    const QByteArray text = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        failToLoad(path, "cannot read: " + reasonOf(file));
    if (text.size() > kLargestFile)
        failToLoad(path, "is too large for a memory file");
    try {
        return parseMemory(text.toStdString());
    } catch (const MemoryFileError &error) {
        throw MemoryFileError(path + ": " + error.what(), error.hint());
    }
}

void checkSavable(const std::string &path)
{
    QSaveFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::WriteOnly))
        throw UserError(path + ": cannot save: " + reasonOf(file), "check the file's folder and its rights");
}

void saveMemory(const StoredMemory &stored, const std::string &path)
{
    const std::string text = formatMemory(stored);
    QSaveFile file(QFile::decodeName(path.c_str()));
    const bool begun = file.open(QIODevice::WriteOnly);
    if (begun)
        file.write(text.data(), static_cast<qint64>(text.size()));
    // commit() alone would not notice that there was no room for the last bytes.
    if (!begun || !file.flush() || !file.commit())
        throw MemoryFileError(path + ": cannot save: " + reasonOf(file),
                              "the memory is lost; check the file's folder, its rights and its room");
}

} // namespace sim
