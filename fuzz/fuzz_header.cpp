// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The header of an answer's PDU: accepted exactly when it answers the request, and unpacked in any case.
//
//    input := reference(2) header(12)      a shorter header ends with zeros

#include "fuzzing.h"

#include "simatic_s7_200_ppi/ppi_response.h"

using fuzz::at;
using fuzz::require;
using fuzz::wordAt;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const int kHeaderSize = 12;
    fuzz::Input input(data, size);
    const uint16_t reference = input.word();
    QByteArray header = input.bytes(kHeaderSize);
    header.append(QByteArray(kHeaderSize - int(header.size()), '\0'));

    unsigned short parameterLength = 0xaaaa;
    unsigned short dataLength = 0xaaaa;
    unsigned char errorClass = 0xaa;
    unsigned char errorCode = 0xaa;
    const int result = S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(
        fuzz::ExactBytes(header).data(), reference, parameterLength, dataLength, errorClass, errorCode);

    const bool isAnswer = at(header, 0) == 0x32 && (at(header, 1) == 2 || at(header, 1) == 3) &&
                          wordAt(header, 2) == 0 && wordAt(header, 4) == reference &&
                          (wordAt(header, 6) == 0 || wordAt(header, 6) == 2);
    require(result == (isAnswer ? kHeaderSize : -1), "a header is accepted when it answers the request");
    require(parameterLength == wordAt(header, 6) && dataLength == wordAt(header, 8),
            "the lengths are unpacked");
    require(errorClass == at(header, 10) && errorCode == at(header, 11), "the errors are unpacked");
    return 0;
}
