// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/dump/load_state.h"

#include "host/items/memory_range.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace host {

namespace {

constexpr qint64 kLongest = 4096; // bytes, ten times what is ever written

} // namespace

LoadState::LoadState(const QString &file_, const Item &target, int station, const QByteArray &data)
    : file(file_), size(int(data.size())),
      head("s7ppi-load 1\narea " + rangeText(target).toLatin1() + "\nstation " + QByteArray::number(station) +
           "\nsha256 " + QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex() + "\nwritten ")
{
}

int LoadState::written() const
{
    QFile state(file);
    if (!QFileInfo(file).isFile() || !state.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = state.read(kLongest);
    const int end = int(text.indexOf('\n', head.size()));
    if (!text.startsWith(head) || end < 0)
        return 0;
    const int bytes = text.mid(head.size(), end - head.size()).toInt();
    return bytes > 0 && bytes <= size ? bytes : 0;
}

// A load saves after every block, so that nothing is made anew then: the few bytes that are other ones are
// written over in one go, which a kill cannot divide.
bool LoadState::save(int written) const
{
    QFile state(file);
    if (QFileInfo::exists(file) && !QFileInfo(file).isFile())
        return false;
    const QByteArray text = head + QByteArray::number(written) + '\n';
    return state.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && state.write(text) == text.size() &&
           state.resize(text.size());
}

void LoadState::forget() const
{
    QFile::remove(file);
}

} // namespace host
