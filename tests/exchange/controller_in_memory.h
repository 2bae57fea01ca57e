// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#ifndef TESTS_EXCHANGE_CONTROLLER_IN_MEMORY_H
#define TESTS_EXCHANGE_CONTROLLER_IN_MEMORY_H

#include "abstract_device_interface.h"
#include "answer.h"

#include <QByteArray>
#include <QVariant>

#include <cstring>

// A controller that gives one answer to every request and takes nothing from the heap.
class ControllerInMemory : public AbstractDeviceInterface
{
public:
    enum { kMostFrames = 4, kLargestFrame = 261 };

    explicit ControllerInMemory(const QByteArray &frame)
        : frames(), lengths(), sent(0), answerLength(int(frame.size())), next(nullptr), remaining(0)
    {
        std::memcpy(answer, frame.constData(), size_t(answerLength));
    }

    int receive(unsigned char *buffer, int maxLength) override
    {
        const int length = qMin(maxLength, remaining);
        std::memcpy(buffer, next, size_t(length));
        next += length;
        remaining -= length;
        return length;
    }

    int send(const unsigned char *data, int length) override
    {
        static const unsigned char acknowledgement = 0xe5;
        if (sent < kMostFrames && length <= kLargestFrame) {
            std::memcpy(frames[sent], data, size_t(length));
            lengths[sent] = length;
        }
        ++sent;
        const bool isRequest = data[0] == 0x68;
        if (isRequest)
            takeReference(data + Answer::kReference);
        next = isRequest ? &acknowledgement : answer;
        remaining = isRequest ? 1 : answerLength;
        return length;
    }

    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

    // What was sent: the number of frames, and the first of them.
    int framesSent() const { return sent; }
    QByteArray frame(int number) const
    {
        return QByteArray(reinterpret_cast<const char *>(frames[number]), lengths[number]);
    }

private:
    void takeReference(const unsigned char *reference)
    {
        unsigned char &sum = answer[answerLength - 2];
        for (int i = 0; i < 2; ++i) {
            unsigned char &field = answer[Answer::kReference + i];
            sum = static_cast<unsigned char>(sum - field + reference[i]);
            field = reference[i];
        }
    }

    unsigned char frames[kMostFrames][kLargestFrame];
    int lengths[kMostFrames];
    int sent;
    unsigned char answer[262];
    int answerLength;
    const unsigned char *next;
    int remaining;
};

#endif
