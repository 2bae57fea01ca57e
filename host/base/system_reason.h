// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The system's own words for the number of an error.

#ifndef HOST_BASE_SYSTEM_REASON_H
#define HOST_BASE_SYSTEM_REASON_H

#include <QString>

#include <system_error>

namespace host {

// "No space left on device" for ENOSPC.
inline QString systemReason(int number)
{
    return QString::fromStdString(std::generic_category().message(number));
}

} // namespace host

#endif
