-- Copyright (c) 2026 The s7ppi authors
-- SPDX-License-Identifier: MIT
--
-- A dissector for Wireshark: the frames of a PPI line, in captures that s7ppi --trace FILE.pcapng and
-- s7ppi-sim --trace FILE.pcapng make. What long frames carry is handed to Wireshark's own dissector.
--
--   E5                                acknowledgement
--   10 DA SA FC FCS 16                poll, refusal
--   68 LE LE 68 DA SA FC PDU FCS 16   request, answer
--
-- LE counts from DA to the end of the PDU; FCS is the sum of the same bytes, modulo 256.

local s7ppi = Proto("s7ppi", "Simatic S7-200 PPI")

local ACKNOWLEDGEMENT, SHORT, LONG, FINAL = 0xe5, 0x10, 0x68, 0x16
local SHORT_SIZE, LONG_FIXED = 6, 6

local fields = s7ppi.fields
fields.kind = ProtoField.string("s7ppi.kind", "Kind")
fields.start = ProtoField.uint8("s7ppi.start", "Start", base.HEX)
fields.length = ProtoField.uint8("s7ppi.length", "Length", base.DEC)
fields.length_again = ProtoField.uint8("s7ppi.length_again", "Length, again", base.DEC)
fields.start_again = ProtoField.uint8("s7ppi.start_again", "Start, again", base.HEX)
fields.destination = ProtoField.uint8("s7ppi.destination", "Destination", base.DEC)
fields.source = ProtoField.uint8("s7ppi.source", "Source", base.DEC)
fields.code = ProtoField.uint8("s7ppi.function", "Function code", base.HEX)
fields.pdu = ProtoField.bytes("s7ppi.pdu", "Data unit")
fields.sum = ProtoField.uint8("s7ppi.fcs", "Check sum", base.HEX)
fields.sum_good = ProtoField.bool("s7ppi.fcs_good", "Check sum is right")
fields.final = ProtoField.uint8("s7ppi.end", "End", base.HEX)
fields.request_in = ProtoField.framenum("s7ppi.request_in", "Request in", base.NONE, frametype.REQUEST)
fields.acknowledged_in = ProtoField.framenum("s7ppi.acknowledged_in", "Acknowledged in", base.NONE, frametype.ACK)
fields.polled_in = ProtoField.framenum("s7ppi.polled_in", "Polled in")
fields.answer_in = ProtoField.framenum("s7ppi.answer_in", "Answer in", base.NONE, frametype.RESPONSE)
fields.time = ProtoField.double("s7ppi.answer_time", "Time since the request, in seconds")

local experts = {
    sum = ProtoExpert.new("s7ppi.wrong_fcs", "wrong check sum", expert.group.CHECKSUM, expert.severity.ERROR),
    length = ProtoExpert.new("s7ppi.wrong_length", "the length and the bytes differ", expert.group.MALFORMED,
        expert.severity.ERROR),
    heads = ProtoExpert.new("s7ppi.wrong_head", "the two halves of the head differ", expert.group.MALFORMED,
        expert.severity.ERROR),
    final = ProtoExpert.new("s7ppi.wrong_end", "the last byte is not 16", expert.group.MALFORMED, expert.severity.ERROR),
    noise = ProtoExpert.new("s7ppi.noise", "bytes that begin no frame", expert.group.MALFORMED, expert.severity.WARN),
    behind = ProtoExpert.new("s7ppi.behind", "bytes behind the frame", expert.group.MALFORMED, expert.severity.WARN),
}
s7ppi.experts = experts

-- What is known of the exchange that a packet belongs to, by the packet's number: one table for all packets of
-- an exchange, {request, acknowledgement, poll, answer, asked}.
local exchanges = {}
local current

function s7ppi.init()
    exchanges = {}
    current = nil
end

-- The place of each kind of packet in its exchange.
local places = {
    request = "request", acknowledgement = "acknowledgement", poll = "poll", answer = "answer", refusal = "answer",
}

-- Takes note of a packet when it is seen for the first time, in the order of the line.
local function note(kind, pinfo)
    if kind == "request" then
        current = { asked = pinfo.rel_ts }
    end
    if current and places[kind] then
        current[places[kind]] = pinfo.number
        current.answered = places[kind] == "answer" and pinfo.rel_ts or current.answered
        exchanges[pinfo.number] = current
    end
end

local function add_exchange(tree, pinfo)
    local exchange = exchanges[pinfo.number]
    if not exchange then
        return
    end
    local function add(field, number)
        if number and number ~= pinfo.number then
            tree:add(field, number):set_generated()
        end
    end
    add(fields.request_in, exchange.request)
    add(fields.acknowledged_in, exchange.acknowledgement)
    add(fields.polled_in, exchange.poll)
    add(fields.answer_in, exchange.answer)
    if exchange.answer == pinfo.number then
        tree:add(fields.time, exchange.answered - exchange.asked):set_generated()
    end
end

local function sum_of(buffer, first, last)
    local sum = 0
    for i = first, last do
        sum = sum + buffer(i, 1):uint()
    end
    return sum % 256
end

-- The poll and the request have bit 6 in their function code, what a controller sends has not.
local function kind_of(buffer)
    local size = buffer:len()
    local start = buffer(0, 1):uint()
    if start == ACKNOWLEDGEMENT and size == 1 then
        return "acknowledgement"
    elseif start == SHORT and size >= 4 then
        return buffer(3, 1):uint() % 0x80 >= 0x40 and "poll" or "refusal"
    elseif start == LONG and size >= 7 then
        return buffer(6, 1):uint() % 0x80 >= 0x40 and "request" or "answer"
    end
    return "no frame"
end

-- Adds the fields from a place on, as far as there are bytes. Returns whether all of them were there.
local function add_bytes(tree, buffer, place, list)
    for _, field in ipairs(list) do
        if place >= buffer:len() then
            return false
        end
        tree:add(field, buffer(place, 1))
        place = place + 1
    end
    return true
end

-- Check sum and end, behind what the sum counts.
local function add_tail(tree, buffer, first, last)
    if not add_bytes(tree, buffer, last + 1, { fields.sum, fields.final }) then
        tree:add_proto_expert_info(experts.length)
        return
    end
    local is_good = buffer(last + 1, 1):uint() == sum_of(buffer, first, last)
    tree:add(fields.sum_good, buffer(last + 1, 1), is_good):set_generated()
    if not is_good then
        tree:add_proto_expert_info(experts.sum)
    end
    if buffer(last + 2, 1):uint() ~= FINAL then
        tree:add_proto_expert_info(experts.final)
    end
    if buffer:len() > last + 3 then
        tree:add_proto_expert_info(experts.behind)
    end
end

local addresses = { fields.destination, fields.source, fields.code }

local function add_short(tree, buffer)
    add_bytes(tree, buffer, 0, { fields.start })
    if not add_bytes(tree, buffer, 1, addresses) or buffer:len() < SHORT_SIZE then
        tree:add_proto_expert_info(experts.length)
        return
    end
    add_tail(tree, buffer, 1, 3)
end

local function add_long(tree, buffer, pinfo, root)
    add_bytes(tree, buffer, 0, { fields.start, fields.length, fields.length_again, fields.start_again })
    add_bytes(tree, buffer, 4, addresses)
    if buffer:len() < 7 or buffer:len() < buffer(1, 1):uint() + LONG_FIXED then
        tree:add_proto_expert_info(experts.length)
        return
    end
    local length = buffer(1, 1):uint()
    if length ~= buffer(2, 1):uint() or buffer(3, 1):uint() ~= LONG then
        tree:add_proto_expert_info(experts.heads)
    end
    if length < 3 then
        tree:add_proto_expert_info(experts.length)
        return
    end
    if length > 3 then
        tree:add(fields.pdu, buffer(7, length - 3))
    end
    add_tail(tree, buffer, 4, 4 + length - 1)
    if length > 3 then
        DissectorTable.try_heuristics("cotp", buffer(7, length - 3):tvb(), pinfo, root)
    end
end

local function info_of(kind, buffer)
    if kind == "acknowledgement" then
        return "acknowledgement"
    elseif kind == "no frame" then
        return buffer:len() .. " bytes that are no frame"
    end
    local place = buffer(0, 1):uint() == SHORT and 1 or 4
    local destination, source = buffer(place, 1):uint(), buffer(place + 1, 1):uint()
    return string.format("%s, %d to %d", kind, source, destination)
end

function s7ppi.dissector(buffer, pinfo, root)
    pinfo.cols.protocol = "S7PPI"
    if buffer:len() == 0 then
        pinfo.cols.info = "remark"
        return 0
    end
    local kind = kind_of(buffer)
    if not pinfo.visited then
        note(kind, pinfo)
    end
    pinfo.cols.info = ""
    local tree = root:add(s7ppi, buffer())
    tree:add(fields.kind, kind):set_generated()
    if kind == "acknowledgement" then
        add_bytes(tree, buffer, 0, { fields.start })
    elseif kind == "poll" or kind == "refusal" then
        add_short(tree, buffer)
    elseif kind == "request" or kind == "answer" then
        add_long(tree, buffer, pinfo, root)
    else
        tree:add_proto_expert_info(experts.noise)
    end
    add_exchange(tree, pinfo)
    pinfo.cols.protocol = "S7PPI"
    pinfo.cols.info:prepend(info_of(kind, buffer) .. "  ") -- in front of what the other dissector wrote
    return buffer:len()
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, s7ppi)
