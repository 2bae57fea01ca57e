// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Sizes of files as people write them: bytes, or with k, M or G behind them 1024 of these, of those, and so
// on.

#ifndef HOST_TEXT_SIZE_TEXT_H
#define HOST_TEXT_SIZE_TEXT_H

#include <QString>

#include <optional>

namespace host {

// Reads "500", "64k", "10M" or "1G" as bytes. Gives nothing when the text is no size.
std::optional<qint64> parseSize(const QString &text);

} // namespace host

#endif
