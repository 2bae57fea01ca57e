// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the controller does with a job's items: finds the memory they name, reads or writes it, or
// refuses with the return code of an item.
//
//    refused with                because
//    0A no such object, length   unknown area; data block other than V's 1 and the others' 0; no element;
//                                more than an answer carries; data that is not the elements' size;
//                                more than one bit in an item
//    03 illegal access           write to AI or HC
//    06 unsupported type         an element kind that the area does not have; written data of another
//                                kind than the elements'; a timer or counter record with anything
//                                but zeros before its 16-bit value
//    05 invalid address          outside the area; not at a whole byte (analogue: not at an even byte)

#ifndef SIMULATOR_CONTROLLER_ACCESS_H
#define SIMULATOR_CONTROLLER_ACCESS_H

#include "simulator/controller/memory.h"
#include "simulator/protocol/layer7.h"

#include <cstdint>
#include <vector>

namespace sim {

// Returns one result per item. The answer that carries them never exceeds kMaxPduSize: an item that does not
// fit behind those before it is refused.
std::vector<ReadResult> readItems(const Memory &memory, const std::vector<Item> &items);

// Returns the item's return code. The memory changes only on success.
uint8_t writeItem(Memory &memory, const Item &item, const Data &data);

} // namespace sim

#endif
