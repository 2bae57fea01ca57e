// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/text/time_text.h"

#include <QDateTime>

namespace host {

QString timeText(std::chrono::system_clock::time_point time)
{
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

} // namespace host
