// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Talking to a station without a line, in hexadecimal.

#ifndef TESTS_SIMULATOR_CONVERSATION_H
#define TESTS_SIMULATOR_CONVERSATION_H

#include "hex.h"

#include "simulator/station.h"

// "FF 04" and "ff04" alike come out as "ff04", the form in which bytes are compared.
QString plain(const QString &hexText);

sim::Bytes frameBytes(const QString &hexText);
QString hex(const sim::Bytes &bytes);

// What the station sends when it gets these bytes in one piece.
QString say(sim::Station &station, const QString &hexText);

// Sends the PDU from master 0 to station 2, polls, and returns the PDU of the answer; what came instead,
// in words, when it was not an acknowledgement and a good answer frame from 2 to 0.
QString answerTo(sim::Station &station, const QString &pdu);

// The item data (or return codes) of the answer to a read (write) job with these items, each 12 bytes,
// and this data; the whole answer's PDU when its header is not that of such an answer. Reference 1.
QString readItems(sim::Station &station, const QString &items);
QString writeItems(sim::Station &station, const QString &items, const QString &data);

#endif
