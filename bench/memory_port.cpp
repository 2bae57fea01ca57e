// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "memory_port.h"

#include <cstring>

namespace bench {

namespace {

constexpr unsigned char kRequestStart = 0x68;
constexpr unsigned char kAcknowledgement = 0xE5;
constexpr int kCovered = 4;    // where the check sum begins to count
constexpr int kReference = 11; // of the PDU reference, two bytes, in requests and answers alike

} // namespace

MemoryPort::MemoryPort(const QByteArray &answer_) : answer(answer_)
{
    for (int i = kCovered; i < answer.size() - 2; ++i) {
        if (i != kReference && i != kReference + 1)
            sumWithoutReference += static_cast<unsigned char>(answer.at(i));
    }
}

int MemoryPort::receive(unsigned char *buffer, int maxLength)
{
    if (next < 0) {
        buffer[0] = kAcknowledgement;
        next = 0;
        return 1;
    }
    memcpy(buffer, answer.constData() + next, static_cast<size_t>(maxLength));
    next += maxLength;
    return maxLength;
}

int MemoryPort::send(const unsigned char *data, int length)
{
    if (data[0] == kRequestStart)
        answerTo(data);
    return length;
}

bool MemoryPort::setOption(int, const QVariant &)
{
    return true;
}

void MemoryPort::answerTo(const unsigned char *request)
{
    char *bytes = answer.data();
    bytes[kReference] = static_cast<char>(request[kReference]);
    bytes[kReference + 1] = static_cast<char>(request[kReference + 1]);
    bytes[answer.size() - 2] =
        static_cast<char>(sumWithoutReference + request[kReference] + request[kReference + 1]);
    next = -1;
}

} // namespace bench
