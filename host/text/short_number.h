// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Numbers as people read them at a glance.

#ifndef HOST_TEXT_SHORT_NUMBER_H
#define HOST_TEXT_SHORT_NUMBER_H

#include <QString>

namespace host {

// Whole numbers of up to nine digits whole, others with five digits: 100000, 52.098, 1.2346e+12.
QString shortNumber(double number);

} // namespace host

#endif
