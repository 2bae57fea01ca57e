// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver on a line that says anything, against the model of it: any request, any replies, any calls of
// the port that fail. A difference in data, error, log or port calls is a finding.
//
//    input   := retries(1) station(1) purges(1) requests(1) request... faults(1) fault... replies
//    request := write(1) type(1) count(4) address data      address and data: a byte that counts the
//    following fault   := call(1) number(1) failure(1) forever(1) replies := { 00 | frame | noise } one for
//    each frame of the driver; 00 is silence
//
// The mutator mends the frames of the replies, and gives each answer the reference of the attempt that it
// would answer if all before it succeeded.

#include "fuzzing.h"

#include "controller.h"
#include "scene.h"

using fuzz::at;

namespace {

const char *const kAddresses[] = {"VB100", "VW100", "VD100", "V100.3", "T37",
                                  "C5",    "HC0",   "AIW2",  "SMB28",  "S0.7"};

bool isStart(char byte)
{
    return byte == '\xe5' || byte == '\x10' || byte == '\x68' || byte == '\0';
}

// How many bytes the reply has with which the bytes begin.
int replySize(const QByteArray &bytes)
{
    const int size = int(bytes.size());
    switch (at(bytes, 0)) {
    case 0x10:
        return std::min(size, 6);
    case 0x68:
        return size < 2 ? size : std::min(size, at(bytes, 1) + 6);
    case 0x00:
    case 0xe5:
        return 1;
    default:
        break;
    }
    int end = 1;
    while (end < size && !isStart(bytes.at(end)))
        ++end;
    return end;
}

class Speaker : public Controller
{
public:
    explicit Speaker(const QByteArray &replies) : left(replies) {}

    void nextRequest() override {}

    QByteArray replyTo(const QByteArray & /*frame*/) override
    {
        if (left.isEmpty())
            return left;
        const QByteArray reply = left.left(replySize(left));
        left.remove(0, int(reply.size()));
        return reply == QByteArray(1, '\0') ? QByteArray() : reply;
    }

private:
    QByteArray left;
};

PortSettings portFrom(fuzz::Input &input)
{
    PortSettings port;
    port.retries = input.within(0, 4) - 1;
    port.station = input.byte();
    port.purges = !input.flag();
    return port;
}

QByteArray addressFrom(fuzz::Input &input)
{
    const QByteArray address = input.counted();
    return address.size() == 1 ? QByteArray(kAddresses[at(address, 0) % 10]) : address;
}

HostRequest requestFrom(fuzz::Input &input)
{
    HostRequest request;
    request.isWrite = input.flag();
    request.command.dataType = input.within(0, 9) - 1;
    request.command.count = int(input.longWord() % 200000) - 30000;
    request.command.address = QString::fromLatin1(addressFrom(input));
    if (request.isWrite)
        request.data = input.counted();
    return request;
}

CallFault callFaultFrom(fuzz::Input &input)
{
    const Call call = input.flag() ? kSend : kReceive;
    const int number = input.within(1, 8);
    const Failure failure = Failure(input.within(0, kFailureKinds - 1));
    return callFault(call, number, failure, input.flag());
}

// Takes all that stands in front of the replies.
Scene sceneFrom(fuzz::Input &input)
{
    Scene scene;
    scene.port = portFrom(input);
    for (int i = input.within(1, 3); i > 0; --i)
        scene.requests += requestFrom(input);
    for (int i = input.within(0, 2); i > 0; --i)
        scene.callFaults += callFaultFrom(input);
    return scene;
}

// Gives the answers among the replies the references 1, 2, 3 and so on.
void countAnswers(uint8_t *replies, size_t size)
{
    int reference = 0;
    for (size_t i = 0; i < size;) {
        const int length = replySize(fuzz::arrayOf(replies + i, size - i));
        if (replies[i] == 0x68 && length > kReferencePlace + 2) {
            ++reference;
            replies[i + kReferencePlace] = uint8_t(reference >> 8);
            replies[i + kReferencePlace + 1] = uint8_t(reference);
        }
        i += size_t(length);
    }
}

} // namespace

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t most);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t most, unsigned seed)
{
    const size_t mutated = LLVMFuzzerMutate(data, size, most);
    fuzz::Input input(data, mutated);
    sceneFrom(input);
    const size_t place = mutated - size_t(input.rest().size());
    if (seed % 4 != 0)
        fuzz::mendFrames(data + place, mutated - place); // the lengths, by which replies are told apart
    if (seed % 8 > 1) {
        countAnswers(data + place, mutated - place);
        fuzz::mendFrames(data + place, mutated - place);
    }
    return mutated;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    fuzz::Input input(data, size);
    const Scene scene = sceneFrom(input);
    const QByteArray replies = input.rest();
    Speaker toDriver(replies);
    Speaker toModel(replies);
    const Comparison comparison = compared(scene, playToDriver(scene, toDriver), playToModel(scene, toModel));
    fuzz::require(comparison.difference.isEmpty(), qPrintable(comparison.difference));
    return 0;
}
