// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Why a file takes no more data.

#ifndef HOST_BASE_WRITE_REASON_H
#define HOST_BASE_WRITE_REASON_H

#include <QFileDevice>
#include <QString>

namespace host {

// Right after the call that failed. Qt itself does not know the reason when a part was taken.
QString writeReason(const QFileDevice &file);

} // namespace host

#endif
