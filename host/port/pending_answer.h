// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// How much of an answer may still be under way.

#ifndef HOST_PORT_PENDING_ANSWER_H
#define HOST_PORT_PENDING_ANSWER_H

#include <QByteArray>

namespace host {

// Sees what is sent, and what comes after it, whether somebody took it or it was thrown away. Frames of
// another protocol have no answer that could be judged.
class PendingAnswer
{
public:
    void sent(const QByteArray &frame);
    void received(const QByteArray &bytes);

    // How many bytes of the answer to the last frame may still come. A request that nothing came back for
    // counts as one that nobody heard.
    int missing() const;

    // Whether the last frame was a request, and it is acknowledged.
    bool isAcknowledged() const;

    // Whether the last frame was a poll, and its answer is there to its end.
    bool isAnswered() const;

    // Whether the last frame did not get what belongs to it.
    bool hasFailed() const;

    // Whether the frame itself came back, whole; or may yet, for all that came is its beginning.
    bool isEcho() const;
    bool isEchoBegun() const;

private:
    QByteArray answer() const;
    bool isRequest() const;
    bool isPoll() const;

    QByteArray frame; // the last one sent
    QByteArray heard; // since then
};

} // namespace host

#endif
