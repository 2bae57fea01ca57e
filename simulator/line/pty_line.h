// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A new pseudo-terminal. Masters may open and close its slave side as often as they like.

#ifndef SIMULATOR_LINE_PTY_LINE_H
#define SIMULATOR_LINE_PTY_LINE_H

#include "simulator/line/line.h"
#include "simulator/protocol/bytes.h"

#include <QString>

#include <memory>

class QSocketNotifier;

namespace sim {

class PtyLine : public Line
{
    Q_OBJECT

public:
    PtyLine(); // throws LineError
    ~PtyLine() override;

    QString name() const override { return slaveName; }
    void send(const Bytes &bytes) override;

private:
    void open();
    void closeAll();
    void readAll();
    void letOthersIn();

    int controller = -1; // our side
    int slave = -1;      // held open, or our side would report a hang-up whenever no master is there
    QString slaveName;
    int closings = -1; // tells when somebody closes the slave side
    std::unique_ptr<QSocketNotifier> notifier;
    std::unique_ptr<QSocketNotifier> closingNotifier;
};

} // namespace sim

#endif
