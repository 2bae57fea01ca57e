// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Where the parts of a request's frame lie, counted in bytes.

#ifndef TESTS_REQUEST_LAYOUT_H
#define TESTS_REQUEST_LAYOUT_H

const int kPDUStart = 7;
const int kBlockStart = 17; // the parameter block, behind the PDU's header
const int kFrameEnd = 2;    // check sum and end delimiter

#endif
