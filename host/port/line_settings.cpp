// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/line_settings.h"

#include "host/base/failure.h"
#include "host/base/filled.h"
#include "host/text/number_text.h"

#include <QStringList>

#include <cmath>
#include <cstdlib>

namespace host {

namespace {

// The names of the parities, in the order of their codes.
const QStringList kParityNames = {"none", "odd", "even", "mark", "space"};

// A speed may be off by one part in so many: 2 %.
constexpr int kSpeedTolerance = 50;

Failure unknownCode(const char *what, int code)
{
    return Failure(
        ExitCode::PluginUnusable, filled("the plug-in proposes %1 code %2", what, code),
        "the plug-in belongs to another host's ports; this host knows parity 0 to 4, stop bits 0 and 2");
}

ParityCode parityOfCode(int code)
{
    if (code < kNoParity || code > kSpaceParity)
        throw unknownCode("parity", code);
    return ParityCode(code);
}

int stopBitsOfCode(int code)
{
    if (code != kOneStopBit && code != kTwoStopBits)
        throw unknownCode("stop-bits", code);
    return code == kTwoStopBits ? 2 : 1;
}

ParityCode parityOfName(const QString &name)
{
    return ParityCode(kParityNames.indexOf(name));
}

QString parityText(ParityCode parity)
{
    return (parity == kNoParity ? "no" : parityName(parity)) + " parity";
}

QStringList words(const LineSettings &settings)
{
    return {QString("%1 baud").arg(settings.baud), parityText(settings.parity),
            counted(settings.dataBits, "data bit"), counted(settings.stopBits, "stop bit")};
}

} // namespace

LineSettings lineSettings(const DeviceSetting &setting)
{
    return {setting.baudrate, parityOfCode(setting.parity), setting.databits,
            stopBitsOfCode(setting.stopbits)};
}

LineSettings withOptions(LineSettings settings, const LineOptions &options)
{
    settings.baud = options.baud.value_or(settings.baud);
    settings.dataBits = options.dataBits.value_or(settings.dataBits);
    settings.stopBits = options.stopBits.value_or(settings.stopBits);
    if (options.parity)
        settings.parity = parityOfName(*options.parity);
    return settings;
}

QString lineText(const LineSettings &settings)
{
    return words(settings).join(", ");
}

QString parityName(ParityCode parity)
{
    return kParityNames.at(int(parity));
}

QString lineDifference(const LineSettings &wanted, LineSettings achieved)
{
    if (std::abs(achieved.baud - wanted.baud) <= wanted.baud / kSpeedTolerance)
        achieved.baud = wanted.baud;
    const QStringList wantedWords = words(wanted);
    const QStringList achievedWords = words(achieved);
    QStringList differences;
    for (int i = 0; i < int(wantedWords.size()); ++i)
        if (wantedWords.at(i) != achievedWords.at(i))
            differences << achievedWords.at(i) + " instead of " + wantedWords.at(i);
    return differences.join(", ");
}

} // namespace host
