// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/trace_printer.h"

#include "host/frames/words.h"

#include <QByteArray>

namespace host {

TracePrinter::TracePrinter(const WriteLine &writeLine_, bool isProtocolKnown_)
    : writeLine(writeLine_), isProtocolKnown(isProtocolKnown_)
{
}

QString TracePrinter::textOf(const QByteArray &frame) const
{
    return isProtocolKnown ? frameLine(frame) : QString::fromLatin1(frame.toHex(' '));
}

void TracePrinter::sent(const QByteArray &frame)
{
    writeLine("-> " + textOf(frame));
}

void TracePrinter::received(const QByteArray &frame)
{
    writeLine("<- " + textOf(frame));
}

void TracePrinter::heardNothing(bool isOver)
{
    writeLine(isOver ? "<- nothing more" : "<- silence");
}

} // namespace host
