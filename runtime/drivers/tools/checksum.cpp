// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The tables of the CRC steps are made by the compiler: no step waits for one, and a panel keeps them in
// read-only memory.

#include "checksum.h"

namespace {

const quint16 kSickPolynomial = 0x8005;
const quint16 kTopBit = 0x8000;

// The numbers 0 to kCount - 1 as template arguments.
template <unsigned... kNumbers> struct Numbers
{
};
template <unsigned kCount, unsigned... kRest> struct NumbersTo : NumbersTo<kCount - 1, kCount - 1, kRest...>
{
};
template <unsigned... kNumbers> struct NumbersTo<0, kNumbers...>
{
    typedef Numbers<kNumbers...> List;
};
typedef NumbersTo<256>::List EveryByte;

template <typename Crc> struct Table
{
    Crc entries[256];
};

// What stands in the register when bits zero bits were shifted in behind value, least significant bit first.
template <typename Crc> constexpr Crc reflected(Crc value, Crc polynomial, int bits)
{
    return bits == 0 ? value
                     : reflected(static_cast<Crc>(value >> 1 ^ ((value & 1) != 0 ? polynomial : 0)),
                                 polynomial, bits - 1);
}

// The same, most significant bit of 16 first.
constexpr quint16 forward(quint16 value, quint16 polynomial, int bits)
{
    return bits == 0 ? value
                     : forward(static_cast<quint16>(value << 1 ^ ((value & kTopBit) != 0 ? polynomial : 0)),
                               polynomial, bits - 1);
}

template <typename Crc, unsigned... kBytes>
constexpr Table<Crc> reflectedTable(Crc polynomial, Numbers<kBytes...>)
{
    return {{reflected(static_cast<Crc>(kBytes), polynomial, 8)...}};
}

template <unsigned... kBytes> constexpr Table<quint16> forwardTable(quint16 polynomial, Numbers<kBytes...>)
{
    return {{forward(static_cast<quint16>(kBytes << 8), polynomial, 8)...}};
}

constexpr Table<quint16> kCcittTable = forwardTable(0x1021, EveryByte());
constexpr Table<quint16> k16Table = reflectedTable<quint16>(0xA001, EveryByte());
constexpr Table<quint16> kKermitTable = reflectedTable<quint16>(0x8408, EveryByte());
constexpr Table<quint16> kDnpTable = reflectedTable<quint16>(0xA6BC, EveryByte());
constexpr Table<quint32> k32Table = reflectedTable<quint32>(0xEDB88320, EveryByte());

template <typename Crc> Crc reflectedStep(const Table<Crc> &table, Crc crc, unsigned char c)
{
    return static_cast<Crc>(crc >> 8 ^ table.entries[(crc ^ c) & 0xFF]);
}

quint32 sumOf(const unsigned char *data, int length)
{
    quint32 sum = 0;
    for (int i = 0; data && i < length; ++i)
        sum += data[i];
    return sum;
}

} // namespace

unsigned char UInt8CheckSum(const unsigned char *data, int length)
{
    return static_cast<unsigned char>(sumOf(data, length));
}

unsigned short UShortCheckSum(const unsigned char *data, int length)
{
    return static_cast<unsigned short>(sumOf(data, length));
}

unsigned char XorUInt8CheckSum(const unsigned char *data, int length)
{
    unsigned char sum = 0;
    for (int i = 0; data && i < length; ++i)
        sum ^= data[i];
    return sum;
}

unsigned short CRC16Calculate(const unsigned char *data, int length)
{
    unsigned short crc = 0;
    for (int i = 0; data && i < length; ++i)
        crc = update_crc_16(crc, data[i]);
    return crc;
}

unsigned short update_crc_ccitt(unsigned short crc, unsigned char c)
{
    return static_cast<unsigned short>(crc << 8 ^ kCcittTable.entries[crc >> 8 ^ c]);
}

unsigned short update_crc_16(unsigned short crc, unsigned char c)
{
    return reflectedStep<quint16>(k16Table, crc, c);
}

unsigned short update_crc_kermit(unsigned short crc, unsigned char c)
{
    return reflectedStep<quint16>(kKermitTable, crc, c);
}

unsigned short update_crc_dnp(unsigned short crc, unsigned char c)
{
    return reflectedStep<quint16>(kDnpTable, crc, c);
}

unsigned int update_crc_32(unsigned int crc, unsigned char c)
{
    return reflectedStep<quint32>(k32Table, crc, c);
}

unsigned short update_crc_sick(unsigned short crc, unsigned char c, unsigned char prev)
{
    const int shifted = crc << 1 ^ ((crc & kTopBit) != 0 ? kSickPolynomial : 0);
    return static_cast<unsigned short>(shifted ^ (prev << 8 | c));
}
