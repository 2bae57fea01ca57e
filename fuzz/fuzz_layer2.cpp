// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Layer 2: what the driver sends, and what it takes for an acknowledgement, a refusal and an answer. A frame
// is accepted exactly when a second reading of the rules here accepts it.
//
//    input := station master frame      the frame's bytes are the PDU of a request, too

#include "mending_mutator.h"

#include "simatic_s7_200_ppi/ppi_layer2.h"

#include <cstring>

using fuzz::at;
using fuzz::require;

namespace {

const int kFixed = 6; // 68 LE LE 68 in front of what LE counts, FCS 16 behind it

void buildFrames(uint8_t station, uint8_t master, const QByteArray &pdu)
{
    const QByteArray poll = S7_200_PPIPackLayer2SD1Poll(station, master);
    require(poll.size() == 6 && at(poll, 0) == 0x10 && at(poll, 1) == station && at(poll, 2) == master &&
                at(poll, 3) == 0x5c && at(poll, 4) == fuzz::sumOf(poll, 1, 4) && at(poll, 5) == 0x16,
            "a poll is a frame without data");

    const QByteArray request = S7_200_PPIPackLayer2SD2Request(station, master, pdu);
    const int length = (int(pdu.size()) + 3) & 0xff;
    const int size = int(request.size());
    require(size == pdu.size() + 3 + kFixed && request.mid(7, int(pdu.size())) == pdu,
            "a request carries its PDU");
    require(at(request, 0) == 0x68 && at(request, 1) == length && at(request, 2) == length &&
                at(request, 3) == 0x68 && at(request, 4) == station && at(request, 5) == master &&
                at(request, 6) == 0x6c,
            "a request's head has length and stations");
    require(at(request, size - 2) == fuzz::sumOf(request, 4, 4 + length) && at(request, size - 1) == 0x16,
            "a request's check sum covers what its length counts");
}

void readFirstAnswer(uint8_t station, uint8_t master, const QByteArray &frame)
{
    const int size = std::min(int(frame.size()), int(kRefusalSize));
    QByteArray buffer = frame.left(size);
    buffer.append(QByteArray(kRefusalSize - size, '\0'));
    const fuzz::ExactBytes exact(buffer);

    const char *fault = S7_200_PPIFaultInAcknowledgement(exact.data(), size);
    require((fault == nullptr) == (size > 0 && at(buffer, 0) == 0xe5), "E5 alone acknowledges");

    const QByteArray reason = S7_200_PPIReasonOfRefusal(exact.data(), size, master, station);
    const int sum = at(buffer, 1) + at(buffer, 2) + at(buffer, 3); // not modulo 256
    const bool isRefusal = size == kRefusalSize && at(buffer, 0) == 0x10 && at(buffer, 5) == 0x16 &&
                           sum == at(buffer, 4) && at(buffer, 1) == master && at(buffer, 2) == station;
    const bool isTaken =
        reason == "no resource" || reason == "no service actived" || reason == "unknown error";
    require(isTaken == isRefusal, "a refusal is taken when it is whole, sound and for us");
    require((reason == "no resource") == (isRefusal && at(buffer, 3) == 0x02), "02 is no resource");
}

void readAnswer(uint8_t station, uint8_t master, const QByteArray &frame)
{
    QByteArray buffer = frame.left(kAnswerHeadSize);
    const int headSize = int(buffer.size());
    buffer.append(QByteArray(kReceiveBufferSize - headSize, '\0'));
    const char *headFault =
        S7_200_PPIFaultInAnswerHead(fuzz::ExactBytes(buffer).data(), headSize, master, station);
    const int length = at(buffer, 1);
    require((headFault == nullptr) ==
                (headSize == kAnswerHeadSize && at(buffer, 0) == 0x68 && at(buffer, 3) == 0x68 &&
                 length != 0 && at(buffer, 2) == length && at(buffer, 4) == master &&
                 at(buffer, 5) == station && at(buffer, 6) == 0x08),
            "an answer's head is accepted when all of it is right");
    if (headFault)
        return;

    const int owed = length - 1;
    const QByteArray rest = frame.mid(kAnswerHeadSize, owed);
    buffer.replace(kAnswerHeadSize, int(rest.size()), rest);
    const char *restFault =
        S7_200_PPIFaultInAnswerRest(fuzz::ExactBytes(buffer).data(), int(rest.size()), owed);
    require((restFault == nullptr) == (rest.size() == owed && at(buffer, length + 5) == 0x16 &&
                                       at(buffer, length + 4) == fuzz::sumOf(buffer, 4, 4 + length)),
            "an answer is accepted when it is whole and its check sum is right");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const uint8_t station = input.byte();
    const uint8_t master = input.byte();
    const QByteArray frame = input.rest();
    buildFrames(station, master, frame);
    readFirstAnswer(station, master, frame);
    readAnswer(station, master, frame);
    return 0;
}
