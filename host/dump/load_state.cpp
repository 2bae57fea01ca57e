// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/load_state.h"

#include "host/items/memory_range.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>
#include <QString>

namespace host {

LoadState::LoadState(const QString &file_, const Item &target, int station, const QByteArray &data)
    : file(file_), size(int(data.size())),
      head("s7ppi-load 1\narea " + rangeText(target).toLatin1() + "\nstation " + QByteArray::number(station) +
           "\nsha256 " + QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex() + "\nwritten ")
{
}

int LoadState::written() const
{
    QFile state(file);
    if (!state.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = state.readAll();
    if (!text.startsWith(head))
        return 0;
    const int bytes = text.mid(head.size()).trimmed().toInt();
    return bytes > 0 && bytes <= size ? bytes : 0;
}

// The file is flushed first: commit() alone would not notice that there was no room.
bool LoadState::save(int written) const
{
    QSaveFile state(file);
    const QByteArray text = head + QByteArray::number(written) + '\n';
    return state.open(QIODevice::WriteOnly) && state.write(text) == text.size() && state.flush() &&
           state.commit();
}

void LoadState::forget() const
{
    QFile::remove(file);
}

} // namespace host
