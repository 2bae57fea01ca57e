// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// A port that follows a script: which frames a driver must send, and what the line answers.
///
///     ScriptedPort port(5);
///     port.expects("02 05 52 4e 01 2c bd").answers("06 05 4e 01 00 00 04 d2 65 99");
///     driver->read(&port, command);
///     const bool isAsScripted = port.scriptIsFinished();
///
/// Nothing waits: what the script does not answer has not come when the time is up. The driver's pauses take
/// no time either, see fake_sleep.h. Bytes are hexadecimal text, blanks at will, or arrays.

#ifndef TESTS_SCRIPTED_PORT_H
#define TESTS_SCRIPTED_PORT_H

#include "abstract_device_interface.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// The port. One exists at a time in a thread. It writes down every call in order, the driver's pauses among
/// them.
class ScriptedPort : public AbstractDeviceInterface
{
public:
    /// A port that repeats nothing and wants no pause, and on which the controller has this station.
    explicit ScriptedPort(int station = 2);

    /// Pauses go to no list any more.
    ~ScriptedPort() override;

    /// The driver's next frame must be this one; frames have to come in the order of these calls.
    ScriptedPort &expects(const char *hexText);
    ScriptedPort &expects(const QByteArray &frame); ///< the same with the bytes themselves

    /// The driver's next frame must be a request of PPI, which begins with 68, whatever it asks for.
    ScriptedPort &expectsRequest();

    /// The driver's next frame must be the poll of PPI for the station that the port has at first.
    ScriptedPort &expectsPoll();

    /// What the line carries once that frame is sent; receive() gives at most as much as it is asked for.
    ScriptedPort &answers(const char *hexText);
    ScriptedPort &answers(const QByteArray &received); ///< the same with the bytes themselves

    /// What comes after a receive() has given up waiting.
    ScriptedPort &answersLate(const char *hexText);
    ScriptedPort &answersLate(const QByteArray &received); ///< the same with the bytes themselves

    /// Which station the port has from the moment that frame is sent.
    ScriptedPort &thenHasStation(int number);

    /// How many repetitions the port wants from the moment that frame is sent.
    ScriptedPort &thenRetries(int times);

    /// A whole exchange of PPI: some request, its acknowledgement, the poll, the answer.
    ScriptedPort &serves(const QByteArray &answer);

    /// The call of receive() with this number, counted from 1, returns result whatever it delivered; it
    /// delivers nothing when result is below 0.
    ScriptedPort &receiveClaims(int call, int result);

    /// How many repetitions the port wants.
    ScriptedPort &retries(int times);

    /// Which pause the port wants before every attempt.
    ScriptedPort &delays(int milliseconds);

    /// kClearInput no longer throws away bytes that came and were not received.
    ScriptedPort &keepsOldBytes();

    /// Whether every expected frame was sent, in order, and nothing else; says on stderr what was not so.
    bool scriptIsFinished() const;

    /// All calls and pauses so far: "delay", "retry", "option 12 = 0", "pause 12 ms", "send 1002...",
    /// "receive(7) -> 7". stationId() is not among them.
    QStringList events() const { return allEvents; }

    /// All frames that were sent, in the script or not.
    QList<QByteArray> frames() const { return sentFrames; }

    /// How many of them were requests of PPI.
    int requestsSent() const;

    int receive(unsigned char *buffer, int maxLength) override; ///< what came, up to so many bytes
    int send(const unsigned char *data, int length) override;   ///< compares the frame with the script
    bool setOption(int key, const QVariant &value) override;    ///< throws away what came, for every key
    int retry() override;                                       ///< as retries() or thenRetries() said
    int stationId() override; ///< as the constructor or thenHasStation() said
    int delay() override;     ///< as delays() said

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
    bool hasFrame(const char *what);
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
