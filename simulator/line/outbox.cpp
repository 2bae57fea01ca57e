// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/outbox.h"

#include <algorithm>

namespace sim {

void Outbox::post(const Bytes &bytes, Time start, Time perByte)
{
    if (bytes.empty())
        return;
    const auto later = std::find_if(pieces.begin(), pieces.end(),
                                    [start](const Piece &piece) { return piece.start > start; });
    pieces.insert(later, Piece{bytes, start, perByte});
}

Bytes Outbox::take(Time now, const Listener &listener)
{
    Bytes due;
    for (Piece &piece : pieces) {
        if (piece.taken == 0 && piece.due() <= now)
            listener(piece.due(), piece.bytes);
        for (; !piece.isDone() && piece.due() <= now; ++piece.taken)
            due.push_back(piece.bytes[piece.taken]);
    }
    pieces.remove_if([](const Piece &piece) { return piece.isDone(); });
    return due;
}

std::optional<Time> Outbox::nextDue() const
{
    std::optional<Time> next;
    for (const Piece &piece : pieces)
        next = next ? std::min(*next, piece.due()) : piece.due();
    return next;
}

} // namespace sim
