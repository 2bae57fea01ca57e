// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/frames/trace_reader.h"

#include "host/base/failure.h"
#include "host/base/text_input.h"
#include "host/text/hex_text.h"

#include <QStringList>

namespace host {

std::optional<TraceRecord> parseTraceLine(const QByteArray &line)
{
    const QString text = utf8Text(line).simplified();
    if (text.isEmpty() || text.startsWith('#'))
        return std::nullopt;
    const QString direction = text.section(' ', 1, 1);
    if (direction != ">" && direction != "<")
        throw Failure(ExitCode::Usage, "no record of a trace",
                      "a record is a time, > or <, and bytes; hexadecimal text alone goes without --trace");
    return TraceRecord{text.section(' ', 0, 0), direction, parseHex(text.section(' ', 2))};
}

} // namespace host
