// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/port/line_errors.h"

#include "host/text/number_text.h"

#include <QStringList>

#include <linux/serial.h>
#include <sys/ioctl.h>

namespace host {

namespace {

void add(QStringList &texts, int count, const char *name)
{
    if (count != 0)
        texts << counted(count, name);
}

} // namespace

std::optional<LineErrors> lineErrors(int descriptor)
{
    serial_icounter_struct counters = {};
    if (ioctl(descriptor, TIOCGICOUNT, &counters) != 0)
        return std::nullopt;
    return LineErrors{counters.frame, counters.parity, counters.overrun + counters.buf_overrun, counters.brk};
}

LineErrors operator-(const LineErrors &after, const LineErrors &before)
{
    return {after.frame - before.frame, after.parity - before.parity, after.overrun - before.overrun,
            after.breaks - before.breaks};
}

QString errorsText(const LineErrors &errors)
{
    QStringList texts;
    add(texts, errors.frame, "framing error");
    add(texts, errors.parity, "parity error");
    add(texts, errors.overrun, "lost character");
    add(texts, errors.breaks, "break");
    return texts.join(", ");
}

} // namespace host
