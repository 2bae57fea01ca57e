// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a library's file tells without being loaded, also one for another machine.

#ifndef HOST_DIAGNOSIS_ELF_FILE_H
#define HOST_DIAGNOSIS_ELF_FILE_H

#include "host/base/failure.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace host {

struct ElfFile
{
    std::optional<Failure> failure; // why it is no shared library in ELF
    int bits = 0;                   // 32 or 64
    bool isLittleEndian = true;
    int machine = 0;     // code of the ELF header
    QStringList exports; // the symbols that others can call or read
};

// Returns what the file says of itself; the bytes may be anything.
ElfFile parseElf(const QByteArray &bytes);

// "ARM, 32 bits, little endian"
QString machineText(const ElfFile &file);

// The lines behind "pattern=QT_PLUGIN_VERIFICATION_DATA", which Qt 4's loader looks for in the file; empty
// when it would not find them.
QStringList verificationLines(const QByteArray &bytes);

} // namespace host

#endif
