// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A command's data, in the form that --format names, on stdout or in the file that -o names.
//
//   text     lines for people, from the command, or a table
//   json     one document: {"format": "s7ppi.read/1", FIELDS, "items": [RECORDS]}
//   ndjson   one such object per record and line, with "format" in each
//   csv tsv  a line of column names, then one line per record; a record with a list "values" is one line per
//            element, in the column "value", its number from 0 on in the column "index" if there is one
//   raw      bytes as they lie in the controller
//
// Without --format a file is written in the form that its name ends with: .json .ndjson .csv .tsv .txt
// Otherwise environment or configuration file may say which form is usual; a command that has no such form
// takes text.
//
// Lines are out when a call returns, so that what was got is seen even if the program is stopped then. A file
// appears when the command has come to its end, or to Ctrl-C, and never in part, unless a command sends its
// records to a file that grows.

#ifndef HOST_OUTPUT_OUTPUT_H
#define HOST_OUTPUT_OUTPUT_H

#include "host/base/options.h"
#include "host/output/schema.h"
#include "host/text/json.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace host {

// Fails when the command line asks for a form that the command does not have.
Format formatOf(const OutputOptions &options, const Schema &schema);

// With --verbose tells that data are in another form than usual.
void noteUnusedFormat(const OutputOptions &options, const QString &format);

class OutputForm;
class OutputSink;

class Output
{
public:
    // Fails when the command has no such form, or the file cannot be written.
    Output(const OutputOptions &options, const Schema &schema);

    // The same with the data going where they are sent.
    Output(const OutputOptions &options, const Schema &schema, std::unique_ptr<OutputSink> sink);

    // After Ctrl-C finishes what was got; otherwise an output that was not finished leaves no file.
    ~Output();

    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    Format format() const { return chosen; }

    // Sets a field of the document beside its records; only json shows it.
    void setField(const QString &name, const Json &value);

    // Writes a record; in text it is a line of a table that is printed at the end.
    void write(const Json &record);

    // Writes a record of the second list, of which only json shows anything.
    void writeBeside(const Json &record);

    // Writes a record that has a line, or lines, of text of its own, which are printed at once.
    void write(const Json &record, const QString &text);

    // Writes a record that only programs need: in text it does not appear.
    void writeUnlessText(const Json &record);

    // Writes a line that only people need: other formats do not have it.
    void writeText(const QString &text);

    // Writes bytes as they are; formats other than raw do not have them.
    void writeRaw(const QByteArray &bytes);

    // Ends the data: closes the document and puts the file in its place. Fails when that does not work.
    void finish();

private:
    Format chosen;
    std::unique_ptr<OutputForm> form;
    bool isFinished = false;
};

} // namespace host

#endif
