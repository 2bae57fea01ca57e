// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The interface of those who want to see the frames that pass a port.

#ifndef HOST_FRAMES_LISTENER_H
#define HOST_FRAMES_LISTENER_H

#include <QByteArray>

namespace host {

// The calls come from inside the driver: nothing may be thrown.
class FrameListener
{
public:
    virtual ~FrameListener() = default;

    virtual void sent(const QByteArray &frame) = 0;

    // Told of a whole frame, or of what there is of one when nothing more came.
    virtual void received(const QByteArray &frame) = 0;

    // Told when a receive brought nothing in its time; isOver: when there was nothing more to wait for.
    virtual void heardNothing(bool isOver) = 0;
};

} // namespace host

#endif
