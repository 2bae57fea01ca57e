// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How far a load came that was stopped, in a file of its own beside the one that is loaded. It counts only
// for the same bytes to the same place of the same station.
//
//   file := "s7ppi-load 1" NL "area " FIRST ".." LAST NL "station " NUMBER NL
//           "sha256 " DIGITS NL "written " BYTES NL

#ifndef HOST_DUMP_LOAD_STATE_H
#define HOST_DUMP_LOAD_STATE_H

#include "host/items/item.h"

#include <QByteArray>
#include <QString>

namespace host {

class LoadState
{
public:
    LoadState(const QString &file, const Item &target, int station, const QByteArray &data);

    // How many of the bytes an earlier run has written; 0 when it was another load, or there was none.
    int written() const;

    // Keeps how many bytes are written. False when that does not work.
    bool save(int written) const;

    // Removes the file when the load has come to its end.
    void forget() const;

private:
    QString file;
    int size;
    QByteArray head;
};

} // namespace host

#endif
