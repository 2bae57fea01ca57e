// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "faults.h"

#include "answer.h"
#include "hex.h"
#include "scripted_port.h"

namespace {

// clang-format off
const HeaderFault kHeaderFaults[] = {
    {"protocol 33",           Answer::kProtocol,            0x33},
    {"protocol 72",           Answer::kProtocol,            0x72},
    {"job request",           Answer::kMessageType,         1},
    {"message type 0",        Answer::kMessageType,         0},
    {"message type 4",        Answer::kMessageType,         4},
    {"message type 7",        Answer::kMessageType,         7},
    {"reserved 0100",         Answer::kReserved,            1},
    {"reserved 0001",         Answer::kReserved + 1,        1},
    {"parameter length 1",    Answer::kParameterLength + 1, 1},
    {"parameter length 3",    Answer::kParameterLength + 1, 3},
    {"parameter length 6",    Answer::kParameterLength + 1, 6},
    {"parameter length 0102", Answer::kParameterLength,     1},
    {"reference one lower",   Answer::kReference + 1,       0},
    {"reference one higher",  Answer::kReference + 1,       2},
    {"reference 256 higher",  Answer::kReference,           1},
};
// clang-format on

const Refusal kRefusals[] = {
    {0x01, "Hardware fault"},
    {0x03, "Illegal object access"},
    {0x05, "Invalid address (incorrect variable address)"},
    {0x06, "Data type is not supported"},
    {0x0a, "Object does not exist or length error"},
    {0x00, "unknow error"},
    {0x04, "unknow error"},
    {0x07, "unknow error"},
    {0xfe, "unknow error"},
};

LineFault fault(const char *name, const char *acknowledgement, const char *text)
{
    const LineFault fault = {name, bytes(acknowledgement), QByteArray(), QString(text)};
    return fault;
}

LineFault fault(const char *name, const QByteArray &answer, const char *text)
{
    const LineFault fault = {name, bytes("e5"), answer, QString(text)};
    return fault;
}

QList<LineFault> acknowledgementFaults()
{
    return QList<LineFault>() << fault("no acknowledgement", "", "plc no response")
                              << fault("first byte 00", "00", "invalid response")
                              << fault("first byte e4", "e4", "invalid response")
                              << fault("first byte 16", "16", "invalid response")
                              << fault("first byte 68", "68", "invalid response")
                              << fault("refusal of 1 byte", "10", "first NAK packet loss")
                              << fault("refusal of 5 bytes", "10 00 02 02 04", "first NAK packet loss")
                              << fault("refusal, wrong check sum", "10 00 02 02 05 16", "invalid response9")
                              << fault("refusal, wrong end", "10 00 02 02 04 17", "invalid response9")
                              << fault("refusal to another master", "10 01 02 02 05 16", "invalid response9")
                              << fault("refusal of another station", "10 00 03 02 05 16", "invalid response9")
                              << fault("refusal, sum above 255", "10 00 02 fe 00 16", "invalid response9")
                              << fault("refusal, function code 2", "10 00 02 02 04 16", "no resource")
                              << fault("refusal, function code 3", "10 00 02 03 05 16", "no service actived")
                              << fault("refusal, function code 0", "10 00 02 00 02 16", "unknown error")
                              << fault("refusal, function code 4", "10 00 02 04 06 16", "unknown error")
                              << fault("refusal, function code 11", "10 00 02 11 13 16", "unknown error");
}

QList<LineFault> headFaults(const QString &item, int reference)
{
    const char tooShort[] = "packet length < minimum second response";
    const char invalid[] = "invalid response";
    const QByteArray whole = Answer(item, reference);
    const int length = whole.at(Answer::kLength);
    return QList<LineFault>()
           << fault("no answer to the poll", QByteArray(), tooShort)
           << fault("1 byte of the head", whole.left(1), tooShort)
           << fault("6 bytes of the head", whole.left(6), tooShort)
           << fault("start 10", Answer(item, reference).withByte(0, 0x10), invalid)
           << fault("second start 69", Answer(item, reference).withByte(Answer::kSecondStart, 0x69), invalid)
           << fault("length 0",
                    Answer(item, reference).withByte(Answer::kLength, 0).withByte(Answer::kLengthAgain, 0),
                    invalid)
           << fault("lengths differ", Answer(item, reference).withByte(Answer::kLengthAgain, length + 1),
                    invalid)
           << fault("to another master", Answer(item, reference).withByte(Answer::kDestination, 1).sealed(),
                    invalid)
           << fault("from another station", Answer(item, reference).from(3), invalid)
           << fault("function code 18",
                    Answer(item, reference).withByte(Answer::kFunctionCode, 0x18).sealed(), invalid)
           << fault("function code 00", Answer(item, reference).withByte(Answer::kFunctionCode, 0).sealed(),
                    invalid);
}

QList<LineFault> restFaults(const QString &item, int reference)
{
    const char loss[] = "packet loss";
    const char invalid[] = "invalid response";
    const QByteArray whole = Answer(item, reference);
    const int sum = whole.at(whole.size() - 2);
    const int reserved = Answer::kReserved;
    return QList<LineFault>()
           << fault("only the head", whole.left(7), loss)
           << fault("1 byte short", Answer(item, reference).shortBy(1), loss)
           << fault("2 bytes short", Answer(item, reference).shortBy(2), loss)
           << fault("end 00", Answer(item, reference).withEnd(0x00), loss)
           << fault("end 14", Answer(item, reference).withEnd(0x14), loss)
           << fault("end 15", Answer(item, reference).withEnd(0x15), invalid)
           << fault("end 17", Answer(item, reference).withEnd(0x17), invalid)
           << fault("end 96", Answer(item, reference).withEnd(0x96), invalid)
           << fault("end ff", Answer(item, reference).withEnd(0xff), invalid)
           << fault("check sum 1 more", Answer(item, reference).withCheckSum(sum + 1), "checksum error")
           << fault("check sum 1 less", Answer(item, reference).withCheckSum(sum - 1), "checksum error")
           << fault("first byte of the PDU broken", Answer(item, reference).withByte(Answer::kProtocol, 0x33),
                    "checksum error")
           << fault("reserved byte broken", Answer(item, reference).withByte(reserved, 1), "checksum error");
}

template <typename Row, size_t Size> QList<Row> listOf(const Row (&rows)[Size])
{
    QList<Row> list;
    for (const Row &row : rows)
        list += row;
    return list;
}

} // namespace

QList<LineFault> lineFaults(const QString &item, int reference)
{
    return acknowledgementFaults() + headFaults(item, reference) + restFaults(item, reference);
}

void addAttempt(ScriptedPort &port, const LineFault &fault)
{
    port.expectsRequest().answers(fault.acknowledgement);
    if (fault.acknowledgement == bytes("e5"))
        port.expectsPoll().answers(fault.answer);
}

QList<HeaderFault> headerFaults()
{
    return listOf(kHeaderFaults);
}

QList<Refusal> refusals()
{
    return listOf(kRefusals);
}
