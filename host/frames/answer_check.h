// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Compares what answers to reads hold with what was asked for. A driver may fill up what did not come, with
// zeros that nobody could tell from values.

#ifndef HOST_FRAMES_ANSWER_CHECK_H
#define HOST_FRAMES_ANSWER_CHECK_H

#include "host/frames/listener.h"
#include "host/frames/wire.h"

#include <QByteArray>

#include <optional>
#include <vector>

namespace host {

// Bytes of an item's data.
struct Shortage
{
    int came;
    int asked;
};

class AnswerCheck : public FrameListener
{
public:
    void sent(const QByteArray &frame) override;
    void received(const QByteArray &frame) override;
    void heardNothing(bool isOver) override;

    // What the last read's answer lacks, counted in whole bytes; nothing when every item has all of its
    // bytes, is refused, or has not been answered.
    const std::optional<Shortage> &shortage() const { return lack; }

private:
    std::vector<WireItem> asked;
    std::optional<Shortage> lack;
};

} // namespace host

#endif
