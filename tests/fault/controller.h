// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What sits at the other end of the fault port.

#ifndef TESTS_FAULT_CONTROLLER_H
#define TESTS_FAULT_CONTROLLER_H

#include <QByteArray>
#include <QList>

class Controller
{
public:
    virtual ~Controller() {}

    // Told before the host makes its next request, which may take several attempts.
    virtual void nextRequest() = 0;

    // What the controller says to a frame that reached it; nothing when it keeps silent.
    virtual QByteArray replyTo(const QByteArray &frame) = 0;
};

// A whole answer frame of a station to the request with this PDU reference:
//    68 LE LE 68  00 station 08  32 03 0000 reference 0002 LLLL errors  item  FCS 16
QByteArray answerFrame(int station, int reference, const QByteArray &item, int errors = 0);

// Where a request and an answer carry their PDU reference, 2 bytes.
const int kReferencePlace = 11;

// What a controller makes of a request.
struct Reply
{
    QByteArray item; // parameter block and data of the answer
    int errors;      // error class and code of its header, 16 bits
    int refusal;     // function code of a negative frame in place of the acknowledgement; 0: none
};

// A controller that does nothing wrong: it acknowledges whole requests to its station, or refuses them
// with a negative frame, and has one answer for the next poll. What it makes of the host's requests is
// given in their order.
class CannedController : public Controller
{
public:
    CannedController(int itsStation, const QList<Reply> &itsReplies);

    void nextRequest() override { ++current; }
    QByteArray replyTo(const QByteArray &frame) override;

private:
    QByteArray replyToRequest(const QByteArray &frame);

    int station;
    QList<Reply> replies;
    int current;
    QByteArray owed;
};

#endif
