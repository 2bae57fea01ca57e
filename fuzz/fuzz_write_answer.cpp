// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What answers a write: one return code, or one for each bit; and the texts of return codes.
//
//    input := parameters      05 COUNT CODE...

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_response.h"

#include <QStringList>

using fuzz::at;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray parameters = fuzz::arrayOf(data, size);
    const int held = int(parameters.size());
    while (parameters.size() < 3)
        parameters += '\0';
    const fuzz::ExactBytes exact(parameters);

    unsigned char code = 0;
    const bool isDone = S7_200_PPICheckWriteRspParamData(exact.data(), code);
    require(code == at(parameters, 2), "the return code is the item's");
    require(isDone == (at(parameters, 0) == 5 && at(parameters, 1) == 1 && code == 0xff),
            "one item is written when its code says so");

    const QByteArray codes = S7_200_PPIGetWriteRspCodes(exact.data(), held);
    const bool isWrite = at(parameters, 0) == 5;
    require(codes.size() == (isWrite ? at(parameters, 1) : 0), "every item has a code");
    for (int i = 0; i < int(codes.size()); ++i)
        require(at(codes, i) == (i + 2 < held ? at(parameters, i + 2) : 0), "a code beyond the frame is 0");

    const QStringList texts = S7_200_PPIWriteRspCodesToStr(codes).split(',');
    require(codes.isEmpty() || texts.size() >= codes.size(), "every code has its place among the texts");
    for (int i = 0; i < int(codes.size()); ++i)
        require(S7_200_PPIReadRspErrorCodeToStr(uint8_t(codes.at(i))).isEmpty() == (at(codes, i) == 0xff),
                "only success has no text");
    return 0;
}
