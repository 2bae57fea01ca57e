// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Talking to simulated stations without a line, in hexadecimal.

#ifndef TESTS_SIMULATOR_CONVERSATION_H
#define TESTS_SIMULATOR_CONVERSATION_H

#include "hex.h"

#include "simulator/simulator.h"

#include <QString>

#include <functional>

// "FF 04" and "ff04" alike come out as "ff04", the form in which bytes are compared.
QString plain(const QString &hexText);

// Master 0 reads VB100 of station 2, and finds 11 there.
inline const QString kReadVB100 = "68 1b 1b 68 02 00 6c 32 01 00 00 00 01 00 0e 00 00"
                                  "04 01 12 0a 10 02 00 01 00 01 84 00 03 20 8c 16";
inline const QString kPoll = "10 02 00 5c 5e 16";
inline const QString kAnswerVB100 =
    "68 16 16 68 00 02 08 32 03 00 00 00 01 00 02 00 05 00 00 04 01 ff 04 00 08 11 68 16";

sim::Bytes frameBytes(const QString &hexText);
QString hex(const sim::Bytes &bytes);

// Who is talked to: a station alone, or whoever is there on a line.
struct Partner
{
    Partner(sim::Station &station) : hear([&station](const auto &data) { return station.receive(data); }) {}
    Partner(sim::Simulator &line) : hear([&line](const auto &data) { return line.feed(data); }) {}

    std::function<sim::Bytes(const sim::Bytes &)> hear;
};

// What comes back at once for these bytes, sent in one piece.
QString say(const Partner &partner, const QString &hexText);

// Sends the PDU from master 0 to station 2, polls, and returns the PDU of the answer; what came instead,
// in words, when it was not an acknowledgement and a good answer frame from 2 to 0.
QString answerTo(const Partner &partner, const QString &pdu);

// The item data (or return codes) of the answer to a read (write) job with these items, each 12 bytes,
// and this data; the whole answer's PDU when its header is not that of such an answer. Reference 1.
QString readItems(const Partner &partner, const QString &items);
QString writeItems(const Partner &partner, const QString &items, const QString &data);

#endif
