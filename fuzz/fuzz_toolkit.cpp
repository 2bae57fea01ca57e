// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The toolkit's routines with any bytes, any text, any index and any length: nothing outside an array is
// touched. What they compute is for the unit and property tests.

#include "communicator_command.h"
#include "tools/address_text.h"
#include "tools/bits.h"
#include "tools/byte_order.h"
#include "tools/bytes.h"
#include "tools/checksum.h"
#include "tools/diagnostics.h"
#include "tools/sizes.h"
#include "tools/tx_package.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

const int kLongest = 64;

QByteArray bytesFrom(FuzzedDataProvider &input)
{
    return QByteArray::fromStdString(input.ConsumeRandomLengthString(kLongest));
}

// Mostly near an array's ends, now and then any.
int numberFrom(FuzzedDataProvider &input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange(-2, kLongest * 8 + 9)
                               : input.ConsumeIntegral<int>();
}

void useTexts(FuzzedDataProvider &input)
{
    const QByteArray text = bytesFrom(input);
    const int base = input.ConsumeIntegralInRange(7, 17);
    ExtractPrefixSymbol(text);
    ExtractPrefixSymbol(QString::fromUtf8(text));
    ExtractPLCDeviceAddress(text, base);
    ExtractPLCDeviceAddress(QString::fromUtf8(text), base);
    HexToUInt(text.constData(), input.ConsumeIntegralInRange(-1, int(text.size())));
    dumpByteArray(text);
}

void useBits(FuzzedDataProvider &input)
{
    QByteArray bits = bytesFrom(input);
    QByteArray source = bytesFrom(input);
    getBit(bits, numberFrom(input));
    setBit(bits, numberFrom(input), input.ConsumeBool());
    getBitData(bits);
    ExpandBitsToBytes(bits, input.ConsumeIntegral<unsigned short>(), input.ConsumeIntegralInRange(-2, 2000));
    CopyBits(bits, source, numberFrom(input), numberFrom(input));
    RightShiftNBits(bits, numberFrom(input));
    clearUnnecessaryBits(bits, numberFrom(input));
    FitBitArray(bits, input.ConsumeIntegralInRange(-2, 2000));
}

void useBytes(FuzzedDataProvider &input)
{
    QByteArray bytes = bytesFrom(input);
    toLittleEndianUShortArray(bytes);
    toLittleEndianULongArray(bytes);
    toBigEndianUShortArray(bytes);
    toBigEndianULongArray(bytes);
    QByteArrayToInt(bytes);
    QByteArrayToWord(bytes);
    QByteArrayToShort(bytes);
    reverseArray(bytes);
    To16bitsData(bytes);
    To32bitsData(bytes);
    To64bitsData(bytes);
    const unsigned char *data = reinterpret_cast<const unsigned char *>(bytes.constData());
    UInt8CheckSum(data, int(bytes.size()));
    UShortCheckSum(data, int(bytes.size()));
    XorUInt8CheckSum(data, int(bytes.size()));
    CRC16Calculate(data, int(bytes.size()));

    CommunicatorCommand command;
    command.dataType = input.ConsumeIntegralInRange(-1, 8);
    command.count = input.ConsumeIntegralInRange(-70000, 140000);
    ToSafeData(command, bytes);
}

void usePackage(FuzzedDataProvider &input)
{
    TxPackage package;
    for (int i = input.ConsumeIntegralInRange(0, 8); i > 0; --i) {
        package.appendSection(bytesFrom(input));
        package.appendLRCAscii();
        package.appendFCSAscii(0);
    }
    QList<int> sizes;
    for (int i = input.ConsumeIntegralInRange(0, 12); i > 0; --i)
        sizes += input.ConsumeIntegralInRange(-12, kLongest);
    if (input.ConsumeBool())
        package.setSectionSize(sizes);
    if (input.ConsumeBool())
        package.setData(bytesFrom(input));
    const int section = numberFrom(input);
    package.sectionStartIndex(section);
    package.dataAt(section);
    for (int i = 0; i < package.numberOfSections(); ++i)
        package.dataAt(i);
    TxPackage::calculateFCS(&package, numberFrom(input));
    package.toString();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    while (input.remaining_bytes() > 0) {
        switch (input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            useTexts(input);
            break;
        case 1:
            useBits(input);
            break;
        case 2:
            useBytes(input);
            break;
        default:
            usePackage(input);
        }
    }
    return 0;
}
