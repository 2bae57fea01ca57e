// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/station.h"

#include "simulator/access.h"

#include <utility>

namespace sim {

Station::Station(uint8_t address, Memory memory) : m_address(address), m_memory(std::move(memory)) {}

Bytes Station::receive(const uint8_t *data, size_t size)
{
    Bytes sent;
    for (size_t i = 0; i < size; ++i) {
        m_reader.push(data[i]);
        while (const std::optional<Frame> frame = m_reader.next()) {
            tell(Traffic::Skipped, m_reader.takeSkipped());
            tell(Traffic::Received, frame->wire);
            const Bytes reply = handle(*frame);
            tell(Traffic::Sent, reply);
            append(sent, reply);
        }
    }
    tell(Traffic::Skipped, m_reader.takeSkipped());
    return sent;
}

void Station::lineFellSilent()
{
    m_reader.abandon();
    tell(Traffic::Skipped, m_reader.takeSkipped());
}

Bytes Station::handle(const Frame &frame)
{
    if (frame.destination != m_address || !isRequest(frame))
        return {};
    if (!isSendAndRequestData(frame))
        return sd1(frame.source, m_address, kServiceNotActive);
    return frame.hasPdu ? takeRequest(frame) : answerPoll(frame);
}

Bytes Station::takeRequest(const Frame &frame)
{
    m_master = frame.source;
    m_owed.clear();
    const FaultKind fault = faultOfRequest(++m_requests);
    if (const std::optional<Bytes> refusal = insteadOfAcknowledgement(fault, m_master, m_address))
        return *refusal;
    if (fault == FaultKind::NotReady)
        m_owed.push_back({kShortAcknowledgement});
    m_owed.push_back(answerFrame(frame, fault));
    return {kShortAcknowledgement};
}

Bytes Station::answerPoll(const Frame &frame)
{
    if (m_owed.empty() || frame.source != m_master)
        return {kShortAcknowledgement};
    Bytes answer = std::move(m_owed.front());
    m_owed.pop_front();
    return answer;
}

// Does the job; empty when the master is to get no answer.
Bytes Station::answerFrame(const Frame &request, FaultKind fault)
{
    Job job = decodeJob(request.pdu);
    if (fault == FaultKind::StaleReference)
        --job.reference;
    const Bytes pdu = doJob(job, fault);
    if (fault == FaultKind::NoAnswer)
        return {};
    const auto source = static_cast<uint8_t>(m_address + (fault == FaultKind::WrongSource ? 1 : 0));
    return damagedFrame(fault, sd2(request.source, source, kAnswer, pdu));
}

Bytes Station::doJob(const Job &job, FaultKind fault)
{
    if (fault == FaultKind::ErrorClass)
        return encodeRefusal(job.reference, kServiceNotImplemented);
    if (job.error)
        return encodeRefusal(job.reference, *job.error);
    const bool broken = fault == FaultKind::HardwareFault;
    if (job.function == Function::Read) {
        const std::vector<ReadResult> refused(job.items.size(), ReadResult{kHardwareFault, {}});
        return encodeReadAnswer(job.reference, broken ? refused : readItems(m_memory, job.items));
    }
    const Bytes refused(job.items.size(), kHardwareFault);
    return encodeWriteAnswer(job.reference, broken ? refused : writeItems(job, fault));
}

// The return code of each item.
Bytes Station::writeItems(const Job &job, FaultKind fault)
{
    Memory discarded = m_memory;
    Memory &memory = fault == FaultKind::IgnoreWrites ? discarded : m_memory;
    Bytes codes;
    for (size_t i = 0; i < job.items.size(); ++i)
        codes.push_back(writeItem(memory, job.items[i], job.data[i]));
    return codes;
}

FaultKind Station::faultOfRequest(unsigned request) const
{
    for (const Fault &fault : m_faults) {
        if (fault.request == 0 || fault.request == request)
            return fault.kind;
    }
    return FaultKind::None;
}

void Station::tell(Traffic traffic, const Bytes &bytes) const
{
    if (m_listener && !bytes.empty())
        m_listener(traffic, bytes);
}

} // namespace sim
