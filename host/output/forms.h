// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The forms of a command's data; see output.h.

#ifndef HOST_OUTPUT_FORMS_H
#define HOST_OUTPUT_FORMS_H

#include "host/output/line_file.h"
#include "host/output/schema.h"
#include "host/output/sink.h"
#include "host/text/json.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <utility>

namespace host {

// The base of all forms. Each shows what its kind of file has a place for; by default that is nothing.
class OutputForm
{
public:
    explicit OutputForm(std::unique_ptr<OutputSink> sink) : target(std::move(sink)) {}
    virtual ~OutputForm() = default;

    virtual void setField(const QString & /*name*/, const Json & /*value*/) {}
    virtual void write(const Json & /*record*/) {}
    virtual void writeBeside(const Json & /*record*/) {}
    virtual void writeLine(const Json &record, const QString & /*text*/) { write(record); }
    virtual void writeText(const QString & /*text*/) {}
    virtual void writeHead(const QString & /*text*/) {} // a line in front of all others
    virtual void writeRaw(const QByteArray & /*bytes*/) {}
    virtual void finish() {}

    void commit() { target->commit(); }

protected:
    void put(const QByteArray &bytes) { target->put(bytes); }
    void putText(const QString &text) { target->putText(text); }
    void putHead(const QByteArray &head) { target->putHead(head); }

private:
    std::unique_ptr<OutputSink> target;
};

// The first line of texts in a file whose values are those of the simulated controller.
extern const char kSimulatedLine[];

// What a file of a command's records looks like, in a form that has a line, or lines, for each. A line of
// text begins as the pattern says.
LineStyle lineStyle(Format format, const Schema &schema, const QString &textBeginning);

std::unique_ptr<OutputForm> outputForm(Format format, const Schema &schema, std::unique_ptr<OutputSink> sink);

} // namespace host

#endif
