// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "ppi_layer2.h"

#include "ppi_block.h"

namespace {

const unsigned char kSD1 = kRefusalStart;
const unsigned char kSD2 = 0x68;
const unsigned char kEndDelimiter = 0x16;
const unsigned char kShortAcknowledgement = 0xE5;
const unsigned char kRequestData = 0x5C;    // the frame-count bit is never toggled
const unsigned char kSendAndRequest = 0x6C; // nor here
const unsigned char kAnswer = 0x08;
const unsigned char kNoResource = 0x02;
const unsigned char kServiceNotActive = 0x03;

// An end byte up to this one is what the zero-filled buffer or a cut frame leaves there.
const unsigned char kLargestTruncatedEnd = 0x14;

const int kCovered = 4;  // where LE and FCS begin to count in an SD2 frame
const int kTailSize = 2; // FCS and end delimiter

unsigned char checkSum(const unsigned char *covered, int length)
{
    unsigned char sum = 0;
    for (int i = 0; i < length; ++i)
        sum = static_cast<unsigned char>(sum + covered[i]);
    return sum;
}

} // namespace

QByteArray S7_200_PPIPackLayer2SD1Poll(unsigned char da, unsigned char sa)
{
    return wholeBlock(
        ByteArrayPack("CCCCCC", kSD1, da, sa, kRequestData, da + sa + kRequestData, kEndDelimiter));
}

QByteArray S7_200_PPIPackLayer2SD2Request(unsigned char da, unsigned char sa, const QByteArray &pdu)
{
    const unsigned char length = static_cast<unsigned char>(pdu.size() + 3);
    QByteArray frame =
        wholeBlock(ByteArrayPack("CCCCCCC", kSD2, length, length, kSD2, da, sa, kSendAndRequest));
    frame.reserve(int(frame.size() + pdu.size()) + kTailSize);
    frame += pdu;
    const unsigned char *covered = reinterpret_cast<const unsigned char *>(frame.constData()) + kCovered;
    frame += static_cast<char>(checkSum(covered, length));
    frame += static_cast<char>(kEndDelimiter);
    return frame;
}

const char *S7_200_PPIFaultInAcknowledgement(const unsigned char *buffer, int length)
{
    if (length == 0)
        return "plc no response";
    return buffer[0] == kShortAcknowledgement ? nullptr : "invalid response";
}

const char *S7_200_PPIReasonOfRefusal(const unsigned char *buffer, int length, unsigned char da,
                                      unsigned char sa)
{
    if (length != kRefusalSize)
        return "first NAK packet loss";
    // Kept: the sum is not reduced modulo 256, so a refusal whose bytes add up to more is never taken
    // for one (refusalWithACarryInItsSumIsNotTaken).
    const bool wellFormed =
        buffer[0] == kSD1 && buffer[5] == kEndDelimiter && buffer[1] + buffer[2] + buffer[3] == buffer[4];
    if (!wellFormed || buffer[1] != da || buffer[2] != sa)
        return "invalid response9";
    switch (buffer[3]) {
    case kNoResource:
        return "no resource";
    case kServiceNotActive:
        return "no service actived";
    default:
        return "unknown error";
    }
}

const char *S7_200_PPIFaultInAnswerHead(const unsigned char *buffer, int length, unsigned char da,
                                        unsigned char sa)
{
    if (length < kAnswerHeadSize)
        return "packet length < minimum second response";
    const bool wellFormed =
        buffer[0] == kSD2 && buffer[3] == kSD2 && buffer[1] != 0 && buffer[2] == buffer[1];
    const bool forUs = buffer[4] == da && buffer[5] == sa && buffer[6] == kAnswer;
    return wellFormed && forUs ? nullptr : "invalid response";
}

const char *S7_200_PPIFaultInAnswerRest(const unsigned char *buffer, int length, int expectedLength)
{
    if (length < expectedLength)
        return "packet loss";
    const int covered = buffer[1];
    const unsigned char sum = buffer[kCovered + covered];
    const unsigned char end = buffer[kCovered + covered + 1];
    if (end <= kLargestTruncatedEnd)
        return "packet loss";
    if (end != kEndDelimiter)
        return "invalid response";
    return checkSum(buffer + kCovered, covered) == sum ? nullptr : "checksum error";
}
