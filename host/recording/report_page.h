// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Makes one page of what was watched, which needs nothing else: no script, no network. Light or dark as the
// reader's system is, and readable from a phone's width on.

#ifndef HOST_RECORDING_REPORT_PAGE_H
#define HOST_RECORDING_REPORT_PAGE_H

#include "host/recording/recording.h"

#include <QByteArray>
#include <QString>

namespace host {

// source: what the page says it was made of.
QByteArray reportPage(const Recording &recording, const QString &source);

} // namespace host

#endif
