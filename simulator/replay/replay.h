// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The controllers' side of a recording, played to a master that asks what was asked then.
//
// A frame is the recorded one when destination, source and what it carries are the same, but for the PDU
// reference, which counts on from program to program: answers get the one that was asked with. What was
// damaged on the line then is damaged again.

#ifndef SIMULATOR_REPLAY_REPLAY_H
#define SIMULATOR_REPLAY_REPLAY_H

#include "simulator/line/controllers.h"
#include "simulator/line/line_end.h"
#include "simulator/protocol/layer2.h"
#include "simulator/replay/recording.h"

#include <functional>
#include <string>
#include <vector>

namespace sim {

class Replay : public Controllers
{
public:
    // The recording has a whole frame of a master in it. speed: 1 for the times of the recording, 2 for half
    // of them; 0 answers at once; not less than a thousandth otherwise.
    Replay(std::vector<Recorded> recording, double speed, Time start);

    void setListener(Listener listener) { lineEnd.setListener(std::move(listener)); }

    // Told, in words, of everything that is asked and was not then, and when the recording begins anew.
    using Tell = std::function<void(const std::string &)>;
    void setTell(Tell tell_) { tell = std::move(tell_); }

    // How often something else was asked than was recorded.
    int differenceCount() const { return differences; }

    Bytes feed(const uint8_t *data, size_t size) override;
    Bytes advanceTo(Time now) override;
    Time now() const override { return clock; }
    std::optional<Time> nextDue() const override { return lineEnd.nextDue(); }

private:
    // A frame of the master.
    struct Asked
    {
        size_t place; // in the recording
        Frame frame;
    };

    void take(const Frame &frame);
    void answer(size_t index, const Frame &frame);
    void report(const Frame &frame, const std::optional<size_t> &elsewhere);
    void say(const std::string &text);
    std::optional<size_t> find(const Frame &frame) const;

    std::vector<Recorded> recording;
    std::vector<Asked> asked;
    double speed;
    Time clock;
    LineEnd lineEnd;
    size_t next = 0; // of asked, which the master is expected to send
    unsigned referenceShift = 0;
    int differences = 0;
    std::optional<Frame> lastReported; // none while what is asked is what was recorded
    Tell tell;
};

} // namespace sim

#endif
