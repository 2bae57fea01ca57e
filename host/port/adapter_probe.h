// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the frames that pass tell of the adapter and its line: whether anything is heard, how long answers let
// it wait, how many requests were sent.

#ifndef HOST_PORT_ADAPTER_PROBE_H
#define HOST_PORT_ADAPTER_PROBE_H

#include "host/frames/listener.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <optional>

namespace host {

class AdapterProbe : public FrameListener
{
public:
    void sent(const QByteArray &frame) override;
    void received(const QByteArray &frame) override;
    void heardNothing(bool isOver) override;

    // Tells that the driver of another protocol is called. Its requests are known by what it sends first:
    // when it repeats a request, that frame comes again.
    void beginCall() { firstFrame = QByteArray(); }

    // Whether anything came at all.
    bool hasHeard() const { return heard; }

    // Whether anything came since the last request.
    bool hasHeardSinceRequest() const { return heardSinceRequest; }

    // How many frames were sent, of whatever protocol.
    int frameCount() const { return frames; }

    // How many requests were sent: every attempt at a read or write sends one. Polls, which belong to the
    // request before them, do not count.
    int requestCount() const { return requests; }

    // From the beginning of a frame sent to the whole of the next one received; milliseconds.
    qint64 longestWait() const { return longest; }

private:
    QElapsedTimer sinceSent;
    bool isFirst = false;                 // the next frame received is the first one after what was sent
    std::optional<QByteArray> firstFrame; // of a call; none while requests are those of PPI
    bool heard = false;
    bool heardSinceRequest = false;
    int frames = 0;
    int requests = 0;
    qint64 longest = 0;
};

} // namespace host

#endif
