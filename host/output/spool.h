// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Bytes that wait for their turn, however many: a mebibyte of them in memory, what is more in a temporary
// file that has no name, so that it is gone with the program however that ends.

#ifndef HOST_OUTPUT_SPOOL_H
#define HOST_OUTPUT_SPOOL_H

#include "host/base/failure.h"

#include <QByteArray>
#include <QFile>
#include <QString>

namespace host {

class Spool
{
public:
    // Appends bytes. Fails when the temporary file cannot be written.
    void put(const QByteArray &bytes);

    // Goes to the first byte; nothing can be put from then on.
    void rewind();

    // The next bytes in the order in which they were put; none at the end. Fails when the file cannot be
    // read.
    QByteArray next();

private:
    void moveToFile();
    void openFile();
    [[noreturn]] static void fail(const QString &reason);

    QFile file;
    QByteArray kept;
};

} // namespace host

#endif
