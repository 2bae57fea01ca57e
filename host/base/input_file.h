// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A file that is read from its beginning to its end, once. It may be a pipe or a device as well: a wait for
// what does not come ends with the first signal, and what has no end is refused at a limit.

#ifndef HOST_BASE_INPUT_FILE_H
#define HOST_BASE_INPUT_FILE_H

#include "host/base/failure.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace host {

class InputFile
{
public:
    // Opens a file. Fails, with the hint, when it cannot be read, and when more is read of it than the limit,
    // in bytes, allows.
    InputFile(const QString &name, const QString &hint, qint64 largest);

    // Stdin.
    explicit InputFile(qint64 largest);

    ~InputFile();

    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;

    // Waits for the next bytes; none come at the end of the file.
    QByteArray readSome();

private:
    void checkKind() const;
    Failure unreadable(const QString &reason) const;

    QString name;
    QString hint;
    qint64 largest;
    qint64 total = 0;
    int descriptor;
};

// Opens a file that the user names, or stdin for "-".
std::unique_ptr<InputFile> inputNamed(const QString &fileName, qint64 largest);

// A limit, or a size beyond it, for people: "16 MiB".
QString limitText(qint64 bytes);

} // namespace host

#endif
