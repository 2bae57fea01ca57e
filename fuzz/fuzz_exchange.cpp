// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver on a line that says anything, against the model of it: any request, any replies, any calls of
// the port that fail. A difference in data, error, log or port calls is a finding.

#include "controller.h"
#include "scene.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

namespace {

const char *const kAddresses[] = {"VB100", "VW100", "VD100", "V100.3", "T37",
                                  "C5",    "HC0",   "AIW2",  "SMB28",  "S0.7"};
const int kLongestFrame = 262;

QByteArray bytesFrom(FuzzedDataProvider &input, size_t most)
{
    return QByteArray::fromStdString(input.ConsumeRandomLengthString(most));
}

// Replies as the input has them: an acknowledgement, an answer that is right but for its item and errors, or
// bytes as they are.
class Speaker : public Controller
{
public:
    Speaker(int itsStation, const std::string &replies)
        : station(itsStation), reference(0),
          input(reinterpret_cast<const uint8_t *>(replies.data()), replies.size())
    {
    }

    void nextRequest() override {}

    QByteArray replyTo(const QByteArray &frame) override
    {
        if (frame.size() > kReferencePlace + 1)
            reference = static_cast<unsigned char>(frame.at(kReferencePlace)) * 256 +
                        static_cast<unsigned char>(frame.at(kReferencePlace + 1));
        switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            return bytesFrom(input, kLongestFrame);
        case 1:
            return answerFrame(station, reference, bytesFrom(input, 220), input.ConsumeIntegral<uint16_t>());
        case 2:
            return answerFrame(station, reference, bytesFrom(input, 220));
        default:
            return QByteArray(1, '\xe5');
        }
    }

private:
    int station;
    int reference;
    FuzzedDataProvider input;
};

PortSettings portFrom(FuzzedDataProvider &input)
{
    PortSettings port;
    port.retries = input.ConsumeIntegralInRange(-1, 3);
    port.station = input.ConsumeIntegralInRange(-1, 300);
    port.purges = input.ConsumeBool();
    return port;
}

HostRequest requestFrom(FuzzedDataProvider &input)
{
    HostRequest request;
    request.isWrite = input.ConsumeBool();
    request.command.dataType = input.ConsumeIntegralInRange(-1, 8);
    request.command.count = input.ConsumeBool() ? input.ConsumeIntegralInRange(0, 300)
                                                : input.ConsumeIntegralInRange(-70000, 140000);
    request.command.address = input.ConsumeBool() ? QString::fromLatin1(input.PickValueInArray(kAddresses))
                                                  : QString::fromLatin1(bytesFrom(input, 12));
    if (request.isWrite)
        request.data = bytesFrom(input, 300);
    return request;
}

CallFault callFaultFrom(FuzzedDataProvider &input)
{
    const Call call = input.ConsumeBool() ? kSend : kReceive;
    const int number = input.ConsumeIntegralInRange(1, 8);
    const Failure failure = Failure(input.ConsumeIntegralInRange(0, kFailureKinds - 1));
    return callFault(call, number, failure, input.ConsumeBool());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    Scene scene;
    scene.port = portFrom(input);
    for (int i = input.ConsumeIntegralInRange(1, 3); i > 0; --i)
        scene.requests += requestFrom(input);
    for (int i = input.ConsumeIntegralInRange(0, 2); i > 0; --i)
        scene.callFaults += callFaultFrom(input);

    const std::string replies = input.ConsumeRemainingBytesAsString();
    Speaker toDriver(scene.port.station & 0xff, replies);
    Speaker toModel(scene.port.station & 0xff, replies);
    const Comparison comparison = compared(scene, playToDriver(scene, toDriver), playToModel(scene, toModel));
    if (!comparison.difference.isEmpty()) {
        fputs(qPrintable(comparison.difference), stderr);
        abort();
    }
    return 0;
}
