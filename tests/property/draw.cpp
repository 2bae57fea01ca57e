// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "draw.h"

#include <climits>

namespace {

const char *const kPrefixes[] = {"I",  "IB",  "IW",  "ID",  "Q",   "QB", "QW", "QD", "V",   "VB", "VW", "VD",
                                 "M",  "MB",  "MW",  "MD",  "T",   "C",  "HC", "SM", "SMB", "S",  "SB", "SW",
                                 "SD", "SMW", "SMD", "AIW", "AQW", "T",  "C",  "HC", "VB",  "VW", "VD"};
const char *const kStrangePrefixes[] = {"",    "DB", "AI", "AQ",    "vb",       "t",  "hc",
                                        "HCW", "TD", "CW", "Vx",    "V_",       "_",  "_W",
                                        "VBD", "XW", "XD", "M\xc4", "\xe4\x42", "V B"};
const char *const kNumbers[] = {"0",         "1",          "2097151",    "2097152",    "536870911",
                                "536870912", "4294967295", "4294967296", "4294967306", "99999999999999999999",
                                "16777215",  "16777216",   "00000010"};

QString drawCharacter(Random &random)
{
    if (random.oneIn(20))
        return QString(QChar(ushort(random.below(0x10000))));
    return QString(QChar(ushort(random.below(random.oneIn(4) ? 0x100 : 0x80))));
}

QString drawGarbage(Random &random)
{
    QString text;
    for (int i = random.below(8); i > 0; --i)
        text += drawCharacter(random);
    return text;
}

QString drawNumber(Random &random)
{
    if (random.oneIn(10))
        return QString::fromLatin1(random.oneOf(kNumbers));
    return QString::number(random.below(random.oneIn(4) ? 100000 : 300));
}

QString drawBit(Random &random)
{
    const char *const strange[] = {"", "8", "9", "12", "A", ".", "3.5", "-1", " ", "7 "};
    if (random.oneIn(10))
        return QString::fromLatin1(random.oneOf(strange));
    return QString::number(random.below(8));
}

int drawType(Random &random)
{
    const int strange[] = {-1, kQuadWords, 7, 8, INT_MIN, INT_MAX};
    return random.oneIn(30) ? random.oneOf(strange) : (random.below(6) + 5) % 7;
}

int drawCount(Random &random)
{
    const int limits[] = {-65537, -65536, -65535, -1,    0,     1,     255,   256,
                          257,    32767,  32768,  65535, 65536, 65537, 65544, 131073};
    if (random.oneIn(15))
        return random.oneOf(limits);
    return random.oneIn(20) ? random.between(-70000, 140000) : random.below(random.oneIn(4) ? 260 : 40);
}

QByteArray drawData(Random &random, int size)
{
    if (random.oneIn(2))
        return random.bytes(random.below(301));
    return random.bytes(qBound(0, size, 300));
}

PortSettings drawPort(Random &random)
{
    const int stations[] = {2, 2, 2, 0, 1, 8, 126, 127, 128, 255, 256, 258, 514, -1};
    const int delays[] = {0, 0, 0, 1, 20, 1000, 4294, 4295, 5000};
    PortSettings port;
    port.station = random.oneOf(stations);
    port.retries = random.between(-1, 3);
    port.delay = random.oneOf(delays);
    port.purges = !random.oneIn(4);
    return port;
}

CallFault drawCallFault(Random &random)
{
    const Call call = random.oneIn(3) ? kSend : kReceive;
    return callFault(call, random.between(1, 8), Failure(random.below(kFailureKinds)), random.oneIn(4));
}

QString drawAddress(Random &random)
{
    if (random.oneIn(40))
        return drawGarbage(random);
    const char *const prefix = random.oneIn(12) ? random.oneOf(kStrangePrefixes) : random.oneOf(kPrefixes);
    QString text = QString::fromLatin1(prefix) + drawNumber(random);
    if (random.oneIn(3))
        text += QLatin1Char('.') + drawBit(random);
    return random.oneIn(40) ? text + drawGarbage(random) : text;
}

HostRequest drawRequest(Random &random)
{
    HostRequest request;
    request.isWrite = random.oneIn(2);
    request.command.dataType = drawType(random);
    request.command.count = drawCount(random);
    request.command.address = drawAddress(random);
    if (request.isWrite)
        request.data = drawData(random, request.command.count);
    return request;
}

} // namespace

Scene drawScene(Random &random)
{
    Scene scene;
    scene.port = drawPort(random);
    for (int i = random.between(1, 3); i > 0; --i)
        scene.requests += drawRequest(random);
    if (random.oneIn(10))
        scene.callFaults += drawCallFault(random);
    scene.disturbed = random.below(int(scene.requests.size()));
    return scene;
}
