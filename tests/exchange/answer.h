// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// An answer frame of the controller, built good and then broken byte by byte:
//
//     68 LE LE 68  00 station 08  32 03 00 00 reference 00 02 length 00 00  item  FCS 16

#ifndef TESTS_ANSWER_H
#define TESTS_ANSWER_H

#include <QByteArray>
#include <QString>

class Answer
{
public:
    // Where the fields lie in the frame.
    enum Offset {
        kLength = 1,
        kLengthAgain = 2,
        kSecondStart = 3,
        kDestination = 4,
        kSource = 5,
        kFunctionCode = 6,
        kProtocol = 7,
        kMessageType = 8,
        kReserved = 9,
        kReference = 11,
        kParameterLength = 13,
        kDataLength = 15,
        kErrorClass = 17,
        kErrorCode = 18,
        kFunction = 19,
        kItemCount = 20,
        kReturnCode = 21,
        kTransportSize = 22,
        kItemLength = 23,
        kData = 25
    };

    // A good answer of station 2 with this parameter block and data item, hex text, to the request
    // with this PDU reference.
    explicit Answer(const QString &item, int reference = 1);

    // Puts value at an offset of the frame, or 16 bits of it; the check sum stays as it is.
    Answer &withByte(int offset, int value);
    Answer &withWord(int offset, int value);

    // The last two bytes of the frame.
    Answer &withCheckSum(int value);
    Answer &withEnd(int value);

    Answer &from(int station);

    // Drops the last bytes of the frame.
    Answer &shortBy(int count);

    // Makes the check sum right again.
    Answer &sealed();

    operator QByteArray() const { return frame; }

private:
    QByteArray frame;
};

// Items of the answers that are needed most: four bytes that were read, one write that was done.
const char kFourBytes[] = "04 01 ff 04 00 20 11 22 33 44";
const char kAccepted[] = "05 01 ff";

#endif
