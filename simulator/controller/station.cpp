// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/controller/station.h"

#include "simulator/controller/access.h"

#include <utility>

namespace sim {

namespace {

// The code with which all items are refused; nothing when no fault asks for that.
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

// address, or that which a fault of the kind puts in its place: its argument or the next one.
uint8_t addressWith(const Faults &faults, FaultKind kind, uint8_t address)
{
    const Fault *fault = faults.find(kind);
    return fault ? static_cast<uint8_t>(fault->argument.value_or(address + 1u)) : address;
}

} // namespace

Station::Station(uint8_t address, Memory memory) : m_address(address), m_memory(std::move(memory)) {}

Reply Station::handle(const Frame &frame, FaultPlan &plan)
{
    if (frame.destination != m_address || !isRequest(frame))
        return {};
    Reply reply;
    if (!isSendAndRequestData(frame))
        reply.bytes = sd1(frame.source, m_address, kServiceNotActive);
    else
        reply = frame.hasPdu ? takeRequest(frame, plan) : answerPoll(frame);
    if (m_echoing)
        reply.echo = frame.wire;
    return reply;
}

Bytes Station::receive(const uint8_t *data, size_t size)
{
    FaultPlan noFaults;
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        m_reader.push(data[i]);
        while (const std::optional<Frame> frame = m_reader.next())
            append(sent, handle(*frame, noFaults).bytes);
    }
    m_reader.takeSkipped();
    return sent;
}

void Station::storeLiveValues(Time now, Time start)
{
    for (const LiveValue &value : m_live)
        value.store(m_memory, now, start);
}

Reply Station::takeRequest(const Frame &frame, FaultPlan &plan)
{
    const Faults faults = plan.ofNextRequest();
    m_master = frame.source;
    m_echoing = faults.has(FaultKind::Echo);
    m_owed.clear();
    if (std::optional<Bytes> refusal = insteadOfAcknowledgement(faults, m_master, m_address)) {
        Reply reply;
        reply.bytes = std::move(*refusal);
        return reply;
    }
    if (faults.has(FaultKind::NotReady))
        m_owed.push_back(acknowledgement({}, plan.random()));
    m_owed.push_back(answer(answerFrame(frame, faults), faults, plan.random()));
    return acknowledgement(faults, plan.random());
}

Reply Station::answerPoll(const Frame &frame)
{
    if (m_owed.empty() || frame.source != m_master) {
        Reply nothingOwed;
        nothingOwed.bytes = {kShortAcknowledgement};
        return nothingOwed;
    }
    Reply reply = std::move(m_owed.front());
    m_owed.pop_front();
    return reply;
}

// Does the job.
Bytes Station::answerFrame(const Frame &request, const Faults &faults)
{
    Job job = decodeJob(request.pdu);
    if (faults.has(FaultKind::StaleReference))
        --job.reference;
    return sd2(addressWith(faults, FaultKind::WrongDestination, request.source),
               addressWith(faults, FaultKind::WrongSource, m_address), kAnswer, doJob(job, faults));
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
    return encodeReadAnswer(job.reference, code ? refused : readItems(m_memory, job.items));
}

// The return code of each item.
Bytes Station::writeItems(const Job &job, const Faults &faults)
{
    Memory discarded = m_memory;
    Memory &memory = faults.has(FaultKind::IgnoreWrites) ? discarded : m_memory;
    Bytes codes;
    for (size_t i = 0; i < job.items.size(); ++i)
        codes.push_back(writeItem(memory, job.items[i], job.data[i]));
    return codes;
}

} // namespace sim
