// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/trace_printer.h"

#include "host/frames/words.h"

#include <QByteArray>

namespace host {

TracePrinter::TracePrinter(const WriteLine &writeLine_) : writeLine(writeLine_) {}

void TracePrinter::sent(const QByteArray &frame)
{
    writeLine("-> " + frameLine(frame));
}

void TracePrinter::received(const QByteArray &frame)
{
    writeLine("<- " + frameLine(frame));
}

void TracePrinter::heardNothing(bool isOver)
{
    writeLine(isOver ? "<- nothing more" : "<- silence");
}

} // namespace host
