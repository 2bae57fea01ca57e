// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/write_reason.h"

#include <cerrno>
#include <system_error>

namespace host {

QString writeReason(const QFileDevice &file)
{
    const int reason = errno;
    const bool isKnown = file.error() != QFileDevice::WriteError && file.error() != QFileDevice::NoError;
    if (isKnown || reason == 0)
        return file.errorString();
    return QString::fromStdString(std::generic_category().message(reason));
}

} // namespace host
