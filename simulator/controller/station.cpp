// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/station.h"

#include "simulator/controller/access.h"
#include "simulator/faults/fault.h"

#include <optional>
#include <utility>

namespace sim {

namespace {

// Gives the code with which all items are refused; nothing when no fault asks for that.
std::optional<uint8_t> refusalCode(const Faults &faults)
{
    for (const Fault &fault : faults) {
        if (fault.kind == FaultKind::HardwareFault)
            return kHardwareFault;
        if (fault.kind == FaultKind::ItemRefused)
            return static_cast<uint8_t>(fault.argument.value_or(kInvalidAddress));
    }
    return std::nullopt;
}

// Gives the address, or what a fault of the kind puts in its place: its argument, or the next address.
uint8_t addressWith(const Faults &faults, FaultKind kind, uint8_t address)
{
    const Fault *fault = faults.find(kind);
    return fault ? static_cast<uint8_t>(fault->argument.value_or(address + 1u)) : address;
}

} // namespace

Station::Station(uint8_t address, Memory memory) : ownAddress(address), ownMemory(std::move(memory)) {}

Reply Station::handle(const Frame &frame, FaultPlan &plan)
{
    if (frame.destination != ownAddress || !isRequest(frame))
        return {};
    Reply reply;
    if (!isSendAndRequestData(frame))
        reply.bytes = sd1(frame.source, ownAddress, kServiceNotActive);
    else
        reply = frame.hasPdu ? takeRequest(frame, plan) : answerPoll(frame);
    if (isEchoing)
        reply.echo = frame.wire;
    return reply;
}

Bytes Station::receive(const uint8_t *data, size_t size)
{
    FaultPlan noFaults;
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        reader.push(data[i]);
        while (const std::optional<Frame> frame = reader.next())
            append(sent, handle(*frame, noFaults).bytes);
    }
    reader.takeSkipped();
    return sent;
}

void Station::storeLiveValues(Time now, Time start)
{
    for (const LiveValue &value : liveValues)
        value.store(ownMemory, now, start);
}

Reply Station::takeRequest(const Frame &frame, FaultPlan &plan)
{
    const Faults faults = plan.ofNextRequest();
    master = frame.source;
    isEchoing = faults.has(FaultKind::Echo);
    owed.clear();
    if (std::optional<Bytes> refusal = insteadOfAcknowledgement(faults, master, ownAddress)) {
        Reply reply;
        reply.bytes = std::move(*refusal);
        return reply;
    }
    if (faults.has(FaultKind::NotReady))
        owed.push_back(acknowledgement({}, plan.random()));
    owed.push_back(answer(answerFrame(frame, faults), faults, plan.random()));
    return acknowledgement(faults, plan.random());
}

Reply Station::answerPoll(const Frame &frame)
{
    if (owed.empty() || frame.source != master) {
        Reply nothingOwed;
        nothingOwed.bytes = {kShortAcknowledgement};
        return nothingOwed;
    }
    Reply reply = std::move(owed.front());
    owed.pop_front();
    return reply;
}

// Does the job of a request, at once, and returns the answer that the master will poll for.
Bytes Station::answerFrame(const Frame &request, const Faults &faults)
{
    Job job = decodeJob(request.pdu);
    if (faults.has(FaultKind::StaleReference))
        --job.reference;
    return sd2(addressWith(faults, FaultKind::WrongDestination, request.source),
               addressWith(faults, FaultKind::WrongSource, ownAddress), kAnswer, doJob(job, faults));
}

Bytes Station::doJob(const Job &job, const Faults &faults)
{
    if (faults.has(FaultKind::ErrorClass))
        return encodeRefusal(job.reference, kServiceNotImplemented);
    if (job.error)
        return encodeRefusal(job.reference, *job.error);
    const std::optional<uint8_t> code = refusalCode(faults);
    if (job.function == Function::Write)
        return encodeWriteAnswer(job.reference,
                                 code ? Bytes(job.items.size(), *code) : writeItems(job, faults));
    const std::vector<ReadResult> refused(job.items.size(), ReadResult{code.value_or(kSuccess), {}});
    return encodeReadAnswer(job.reference, code ? refused : readItems(ownMemory, job.items));
}

// Returns the code of each item. Writes that a fault ignores go to a copy, so that they get the codes that
// they would get otherwise.
Bytes Station::writeItems(const Job &job, const Faults &faults)
{
    Memory discarded = ownMemory;
    Memory &memory = faults.has(FaultKind::IgnoreWrites) ? discarded : ownMemory;
    Bytes codes;
    for (size_t i = 0; i < job.items.size(); ++i)
        codes.push_back(writeItem(memory, job.items[i], job.data[i]));
    return codes;
}

} // namespace sim
