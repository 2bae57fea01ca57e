// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A controller that says anything: what is right, what is nearly right, and noise.

#ifndef TESTS_PROPERTY_LIAR_H
#define TESTS_PROPERTY_LIAR_H

#include "controller.h"
#include "random.h"

class Liar : public Controller
{
public:
    // Two liars of the same seed and honesty say the same to the same frames. One in honesty replies is
    // not right.
    Liar(int station, quint32 seed, int honesty);

    void nextRequest() override {}
    QByteArray replyTo(const QByteArray &frame) override;

private:
    QByteArray acknowledgement();
    QByteArray negativeFrame();
    QByteArray answer();
    QByteArray noise();
    QByteArray framedNoise();
    QByteArray rightItem();
    QByteArray rightData(int transportSize, int count);
    QByteArray wrongItem();
    QByteArray mutated(QByteArray frame);

    int request(int place) const { return static_cast<unsigned char>(lastRequest.at(place)); }
    int requestWord(int place) const { return request(place) * 256 + request(place + 1); }

    int station;
    int honesty;
    Random random;
    QByteArray lastRequest;
};

#endif
