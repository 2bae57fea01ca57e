// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the model of the driver makes of the bytes that came. Every judgement is a text, null when there
// is nothing wrong.

#ifndef TESTS_FAULT_MODEL_ANSWER_H
#define TESTS_FAULT_MODEL_ANSWER_H

#include "model_address.h"

#include <QByteArray>
#include <QString>

const char *modelFaultOfAcknowledgement(int first, qint64 received);

// refusal holds 6 bytes.
const char *modelReasonOfRefusal(const QByteArray &refusal, qint64 received, int station);

// One answer to a poll: the whole receive buffer, zero behind what came.
class ModelAnswer
{
public:
    explicit ModelAnswer(const QByteArray &receiveBuffer) : buffer(receiveBuffer) {}

    const char *faultOfHead(qint64 received, int station) const;
    const char *faultOfRest(qint64 received) const;
    bool answers(int reference) const;
    bool refusesRequest() const { return word(kErrorClass) != 0; }

    int owedBehindHead() const { return at(1) - 1; }

    int function() const { return at(kItem); }
    int itemCount() const { return at(kItem + 1); }
    int returnCode() const { return at(kItem + 2); }
    bool isGoodRead(int transportSize) const;
    bool isGoodWrite() const { return function() == 5 && itemCount() == 1 && returnCode() == 0xff; }

    // A good read whose length goes beyond the frame.
    bool isLongerThanFrame(int transportSize, int width = 1) const;

    // Data of a good read that the frame holds, as the host gets them.
    QByteArray memory(int width) const;
    QByteArray values(const ModelAddress &address) const;
    QByteArray statuses(const ModelAddress &address) const;

    // One byte per bit; false when these are not the bits.
    bool bits(quint32 first, int count, QByteArray &result) const;

    // The codes of a bit write, a code behind the end of the PDU being 0.
    QByteArray returnCodes() const;

private:
    enum Place { kHead = 7, kErrorClass = 17, kItem = 19, kData = 25 };

    int at(int place) const { return static_cast<unsigned char>(buffer.at(place)); }
    int word(int place) const { return at(place) * 256 + at(place + 1); }
    int endOfPdu() const { return 4 + at(1); }
    int length() const { return word(kItem + 4); }
    int endOfRecords() const;
    QByteArray reversed(int place, int size) const;

    QByteArray buffer;
};

// Null for success.
QString modelTextOfCode(int code);
QString modelTextOfCodes(const QByteArray &codes);

#endif
