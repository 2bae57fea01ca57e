// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/trace/trace.h"

#include "simulator/controller/areas.h"
#include "simulator/protocol/cursor.h"
#include "simulator/protocol/hex_text.h"
#include "simulator/protocol/layer2.h"
#include "simulator/protocol/layer7.h"

#include <cstdint>
#include <optional>

namespace sim {

namespace {

std::string unitOf(uint8_t transport)
{
    switch (transport) {
    case kTransportBit:
        return "bits";
    case kTransportByte:
        return "bytes";
    case kTransportWord:
        return "words";
    case kTransportDWord:
        return "double words";
    case kTransportTimer:
    case kTransportCounter:
    case kTransportHighSpeedCounter:
        return "objects";
    default:
        return "elements of kind " + hexText(transport);
    }
}

std::string placeOf(const Item &item)
{
    const Area *area = findArea(item.area);
    const std::string name = area ? area->name : "area " + hexText(item.area) + " ";
    if (area && area->holdsObjects())
        return name + std::to_string(item.address);
    const std::string byte = name + std::to_string(item.address / 8);
    const bool bit = item.transport == kTransportBit || item.address % 8 != 0;
    return bit ? byte + "." + std::to_string(item.address % 8) : byte;
}

std::string meaningOfJob(const Bytes &pdu)
{
    const Job job = decodeJob(pdu);
    const std::string name = "request " + std::to_string(job.reference);
    if (job.error)
        return name + ": not a job";
    std::string text = name + (job.function == Function::Read ? ": read" : ": write");
    for (const Item &item : job.items)
        text += " " + placeOf(item) + " (" + std::to_string(item.count) + " " + unitOf(item.transport) + ")";
    return text;
}

// Tells the code of the first item only, so that the line stays short.
std::string meaningOfAnswer(const Bytes &pdu)
{
    Cursor cursor(pdu);
    cursor.takeBytes(4); // protocol, type, reserved
    const std::string name = "answer " + std::to_string(cursor.take16());
    cursor.takeBytes(4); // parameterLength, dataLength
    const uint8_t errorClass = cursor.take8();
    const uint8_t errorCode = cursor.take8();
    if (errorClass != 0 || errorCode != 0)
        return name + ": error " + hexText(errorClass) + " " + hexText(errorCode);
    cursor.takeBytes(2); // function, itemCount
    const uint8_t code = cursor.take8();
    return cursor.ok() ? name + ": first item's code " + hexText(code) : name;
}

std::string meaningOfShortFrame(uint8_t function)
{
    if (function == kNoResource)
        return "refused, no resource";
    if (function == kServiceNotActive)
        return "refused, service not active";
    return "function code " + hexText(function);
}

std::string meaningOf(const Frame &frame)
{
    if (isSendAndRequestData(frame))
        return frame.hasPdu ? meaningOfJob(frame.pdu) : "poll";
    if (frame.hasPdu && frame.function == kAnswer)
        return meaningOfAnswer(frame.pdu);
    return meaningOfShortFrame(frame.function);
}

} // namespace

std::string frameWords(const Bytes &bytes)
{
    if (bytes == Bytes{kShortAcknowledgement})
        return "acknowledged";
    FrameReader reader;
    for (const uint8_t byte : bytes)
        reader.push(byte);
    const std::optional<Frame> frame = reader.next();
    if (!frame)
        return "not a frame";
    return std::to_string(frame->source) + " to " + std::to_string(frame->destination) + ": " +
           meaningOf(*frame);
}

std::string traceLine(Traffic traffic, const Bytes &bytes)
{
    if (traffic == Traffic::Skipped)
        return "? " + hexText(bytes) + "  skipped";
    const char *direction = traffic == Traffic::Sent ? "< " : "> ";
    return direction + hexText(bytes) + "  " + frameWords(bytes);
}

} // namespace sim
