// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Commands that come over the broker: what they may ask for, and what becomes of them.
//
// A payload is a value as s7ppi write takes it, 21.5 or on or 1,2,3, or JSON: a number, true, false, a text,
// a list of these, or an object that has one of them as "value".

#ifndef HOST_BROKER_SET_REQUEST_H
#define HOST_BROKER_SET_REQUEST_H

#include "host/base/failure.h"
#include "host/broker/message.h"
#include "host/items/assignment.h"
#include "host/items/tag.h"

#include <QByteArray>

#include <chrono>

namespace host {

// Returns what a request wants written to the tag that it names. Fails when the tag file does not allow that,
// and on what is no value of the tag.
Assignment parseSetRequest(const Tag &tag, const SetRequest &request);

// The payloads of answers: what was written, and why nothing was, or may have been.
QByteArray doneText(const Assignment &assignment, std::chrono::system_clock::time_point time);
QByteArray refusedText(const Failure &reason, std::chrono::system_clock::time_point time);
QByteArray failedText(const Failure &reason, std::chrono::system_clock::time_point time);

} // namespace host

#endif
