// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "lots.h"

#include "random.h"

#include <vector>

namespace {

const std::vector<std::string> kMemoryPrefixes = {
    "I",  "IB",  "IW", "ID", "Q",  "QB", "QW",  "QD",  "V",   "VB",  "VW", "VD", "M",  "MB",  "MW", "MD",
    "SM", "SMB", "S",  "SB", "SW", "SD", "AIW", "AQW", "SMW", "SMD", "",   "DB", "vb", "HCW", "_",  "VX"};
const std::vector<std::string> kObjectPrefixes = {"T", "C", "HC"};

} // namespace

rc::Gen<std::string> lots::memoryPrefix()
{
    return rc::gen::elementOf(kMemoryPrefixes);
}

rc::Gen<std::string> lots::prefix()
{
    return rc::gen::weightedOneOf<std::string>(
        {{3, memoryPrefix()}, {1, rc::gen::elementOf(kObjectPrefixes)}});
}

rc::Gen<QByteArray> lots::bytes(int atMost)
{
    return rc::gen::mapcat(rc::gen::inRange(0, atMost + 1), [](int size) {
        return rc::gen::map(rc::gen::container<std::string>(size_t(size), rc::gen::arbitrary<char>()),
                            [](const std::string &text) { return QByteArray::fromStdString(text); });
    });
}

rc::Gen<int> lots::word()
{
    return rc::gen::oneOf(rc::gen::inRange(0, 0x10000), rc::gen::inRange(0, 40),
                          rc::gen::inRange(0xfff0, 0x10000));
}

rc::Gen<uint32_t> lots::doubleWord()
{
    return rc::gen::oneOf(rc::gen::inRange<uint32_t>(0, 10240), rc::gen::inRange<uint32_t>(0, 0xffffffff),
                          rc::gen::inRange<uint32_t>(0x1fffff, 0x200002));
}

void lots::useSeedOfRun()
{
    if (qEnvironmentVariableIsEmpty("RC_PARAMS"))
        qputenv("RC_PARAMS", "seed=" + QByteArray::number(seedOfRun()) +
                                 " max_success=" + QByteArray::number(drawsOfRun(1000)));
}
