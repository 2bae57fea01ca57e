// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A port that follows a script: which frames the driver must send, and what the line answers.
//
//     ScriptedPort port;
//     port.expects("10 02 00 5c 5e 16").answers("e5");
//
// It writes down every call in order, the driver's pauses among them, so a program that uses it also
// compiles fake_sleep.cpp. One port exists at a time in a thread.

#ifndef TESTS_SCRIPTED_PORT_H
#define TESTS_SCRIPTED_PORT_H

#include "abstract_device_interface.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class ScriptedPort : public AbstractDeviceInterface
{
public:
    explicit ScriptedPort(int station = 2);
    ~ScriptedPort() override;

    // The script. The driver's next frame must be this one, bytes or hex text; some request; the poll
    // of the station that the port has at first.
    ScriptedPort &expects(const char *hexText);
    ScriptedPort &expects(const QByteArray &frame);
    ScriptedPort &expectsRequest();
    ScriptedPort &expectsPoll();

    // What the line carries once that frame is sent; receive() gives at most as much as it is asked for.
    ScriptedPort &answers(const char *hexText);
    ScriptedPort &answers(const QByteArray &received);

    // What comes after a receive() has given up waiting.
    ScriptedPort &answersLate(const char *hexText);
    ScriptedPort &answersLate(const QByteArray &received);

    // What the port says of itself from the moment that frame is sent.
    ScriptedPort &thenHasStation(int number);
    ScriptedPort &thenRetries(int times);

    // A whole exchange: some request, its acknowledgement, the poll, the answer.
    ScriptedPort &serves(const QByteArray &answer);

    // The call of receive() with this number, counted from 1, returns result whatever it delivered;
    // it delivers nothing when result is below 0.
    ScriptedPort &receiveClaims(int call, int result);

    ScriptedPort &retries(int times);
    ScriptedPort &delays(int milliseconds);

    // Option 12 no longer throws away bytes that came and were not received.
    ScriptedPort &keepsOldBytes();

    // Every expected frame was sent, in order, and nothing else; says on stderr what was not so.
    bool scriptIsFinished() const;

    // "delay", "retry", "option 12 = 0", "pause 12 ms", "send 1002...", "receive(7) -> 7"
    QStringList events() const { return allEvents; }

    QList<QByteArray> frames() const { return sentFrames; }
    int requestsSent() const;

    int receive(unsigned char *buffer, int maxLength) override;
    int send(const unsigned char *data, int length) override;
    bool setOption(int key, const QVariant &value) override;
    int retry() override;
    int stationId() override;
    int delay() override;

private:
    enum Kind { kThisFrame, kAnyRequest };

    struct Step
    {
        Kind kind;
        QByteArray frame;
        QByteArray answer;
        QByteArray lateAnswer;
    };

    ScriptedPort(const ScriptedPort &);
    ScriptedPort &operator=(const ScriptedPort &);

    ScriptedPort &addStep(Kind kind, const QByteArray &frame);
    QString complaintAbout(int number, const QByteArray &frame) const;
    int deliver(unsigned char *buffer, int maxLength);
    static void notePause(qint64 nanoseconds);

    int station;
    int repetitions;
    int milliseconds;
    bool purges;
    QList<Step> script;
    QMap<int, int> claims;
    QMap<int, int> laterStations;
    QMap<int, int> laterRepetitions;
    QByteArray input;
    QByteArray lateInput;
    QList<QByteArray> sentFrames;
    QStringList allEvents;
    QStringList complaints;
    int receiveCalls;
};

#endif
