// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What was written against what is read back.

#ifndef HOST_ITEMS_READ_BACK_H
#define HOST_ITEMS_READ_BACK_H

#include "host/items/assignment.h"

#include <QByteArray>

namespace host {

// Fails with the first difference, expected and read, when data is not what was assigned. Bytes are
// compared, so that every kind of number is held to its last bit.
void checkReadBack(const Assignment &assignment, const QByteArray &data);

} // namespace host

#endif
