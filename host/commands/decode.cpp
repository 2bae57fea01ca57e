// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/commands/commands.h"

#include "common/capture.h"
#include "host/base/files.h"
#include "host/base/filled.h"
#include "host/base/line_reader.h"
#include "host/base/outcome.h"
#include "host/cli/command_line.h"
#include "host/frames/explanation.h"
#include "host/frames/trace_file.h"
#include "host/frames/wire.h"
#include "host/frames/words.h"
#include "host/output/output.h"
#include "host/output/sink.h"
#include "host/text/hex_text.h"
#include "host/text/number_text.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace host {

namespace {

struct DecodeOptions
{
    QStringList bytes;
    std::optional<QString> trace;
};

const Schema kDecodeSchema = {
    "decode", 1, "bytes", {"frame", "offset", "byte", "field", "meaning", "fault"}, false, false, "frames"};

const char kDecodeFooter[] = R"(
Frames may follow each other; bytes that make none are told as such. ! marks a byte that is
not what it should be; what is missing of a cut frame stands behind its last byte. In a trace
the data of an answer have the addresses that the request before it named.

The exit code is 0 when all frames are whole and sound, and 5 when one is not.)";

// So many wrong lines of a trace are told one by one; the others are counted.
constexpr int kToldLines = 5;

// Bytes that are no trace are explained together.
constexpr qint64 kLargestHex = 4 << 20;

class DecodeCommand
{
public:
    DecodeCommand(const OutputOptions &options, const QString &source_)
        : DecodeCommand(options, source_, std::make_unique<BatchSink>(sinkFor(options)))
    {
    }

    // Explains the frames in some bytes.
    void decode(const QByteArray &bytes);

    // Explains the frames of a record of a trace.
    void decode(const TraceRecord &record);

    // Ends the data, and fails when a frame had a fault or there was none at all.
    void finish();

private:
    DecodeCommand(const OutputOptions &options, const QString &source_, std::unique_ptr<BatchSink> sink)
        : batch(*sink), output(options, kDecodeSchema, std::move(sink)), source(source_)
    {
    }

    void decodeFrame(const QByteArray &frame, const TraceRecord *record);
    void writeText(const QByteArray &frame, const ExplainedFrame &explained, const TraceRecord *record);
    void writeToList(const QByteArray &frame, const ExplainedFrame &explained, const TraceRecord *record);
    void writeRecords(const ExplainedFrame &explained);
    void writeRecord(const ExplainedByte &byte, const QString &missing);
    Failure faultyFrames() const;

    BatchSink &batch; // of the output: a frame goes out in one piece
    Output output;
    QString source; // of the bytes
    FrameExplainer explainer;
    Json byteRecord; // filled anew for every byte: to make one takes longer than to explain the byte
    qint64 count = 0;
    qint64 faulty = 0;
};

// Appends a line for the byte: its offset, itself, its field and what that means.
void addByteLine(QString &text, const ExplainedByte &byte)
{
    constexpr int kOffsetWidth = 4;
    constexpr int kFieldWidth = 22;
    text += '\n';
    text += QString::number(byte.offset).rightJustified(kOffsetWidth);
    text += "  ";
    text += QLatin1String(QByteArray(1, char(byte.byte)).toHex());
    text += byte.isFault ? " ! " : "   ";
    text += byte.meaning.isEmpty() ? byte.field : byte.field.leftJustified(kFieldWidth) + "  " + byte.meaning;
    while (text.endsWith(' '))
        text.chop(1);
}

void DecodeCommand::decode(const QByteArray &bytes)
{
    for (const QByteArray &frame : splitFrames(bytes))
        decodeFrame(frame, nullptr);
}

void DecodeCommand::decode(const TraceRecord &record)
{
    for (const QByteArray &frame : splitFrames(record.bytes))
        decodeFrame(frame, &record);
}

void DecodeCommand::decodeFrame(const QByteArray &frame, const TraceRecord *record)
{
    const ExplainedFrame explained = explainer.explain(frame);
    ++count;
    faulty += explained.faults.isEmpty() ? 0 : 1;
    if (output.format() == Format::Text)
        writeText(frame, explained, record);
    else
        writeRecords(explained);
    if (output.format() == Format::JsonDocument)
        writeToList(frame, explained, record);
    batch.flush();
}

void DecodeCommand::writeText(const QByteArray &frame, const ExplainedFrame &explained,
                              const TraceRecord *record)
{
    QString text = count > 1 ? "\n" : "";
    if (record)
        text += record->time + ' ' + record->direction + ' ';
    text += frameWords(frame) + ", " + counted(frame.size(), "byte");
    for (const ExplainedByte &byte : explained.bytes)
        addByteLine(text, byte);
    for (const QString &fault : explained.faults)
        text += "\n         ! " + fault;
    output.writeText(text);
}

void DecodeCommand::writeToList(const QByteArray &frame, const ExplainedFrame &explained,
                                const TraceRecord *record)
{
    Json entry = Json::object();
    if (record)
        entry = {{"time", jsonText(record->time)}, {"direction", jsonText(record->direction)}};
    entry["meaning"] = jsonText(frameWords(frame));
    entry["size"] = frame.size();
    entry["faults"] = Json::array();
    for (const QString &fault : explained.faults)
        entry["faults"].push_back(jsonText(fault));
    output.writeBeside(entry);
}

// What is missing of a frame stands in the record of its last byte.
void DecodeCommand::writeRecords(const ExplainedFrame &explained)
{
    for (const ExplainedByte &byte : explained.bytes)
        writeRecord(byte, &byte == &explained.bytes.back() ? explained.missing : QString());
}

void DecodeCommand::writeRecord(const ExplainedByte &byte, const QString &missing)
{
    const bool isBoth = !byte.meaning.isEmpty() && !missing.isEmpty();
    byteRecord["frame"] = count;
    byteRecord["offset"] = byte.offset;
    byteRecord["byte"] = QByteArray(1, char(byte.byte)).toHex().toStdString();
    byteRecord["field"] = jsonText(byte.field);
    byteRecord["meaning"] = jsonText(byte.meaning + (isBoth ? "; " : "") + missing);
    byteRecord["fault"] = byte.isFault || !missing.isEmpty();
    output.write(byteRecord);
}

void DecodeCommand::finish()
{
    output.finish();
    if (count == 0)
        throw Failure(ExitCode::Usage, source + "there are no bytes to decode",
                      "s7ppi help decode has examples");
    if (faulty > 0)
        throw faultyFrames();
}

Failure DecodeCommand::faultyFrames() const
{
    const bool isText = output.format() == Format::Text;
    return Failure(ExitCode::BrokenAnswer, filled("%1 of %2 frames are cut, damaged or none", faulty, count),
                   isText ? "the lines with ! tell what is wrong with them"
                          : "the records whose fault is true tell what is wrong with them");
}

using TakeRecord = std::function<void(const TraceRecord &)>;

constexpr qint64 kLargestCapture = 256 << 20;

void readCapture(const QString &fileName, const TakeRecord &take)
{
    const CapturedRecords captured = parseCapture(readInput(fileName, kLargestCapture));
    for (const TraceRecord &record : captured.records)
        take(record);
    if (captured.isDamaged)
        reportWarning(fileName + " is no capture, or is damaged: what is behind the last frame is left out");
}

void readTrace(const QString &fileName, const TakeRecord &take, Outcome &outcome)
{
    if (common::isCaptureName(fileName.toStdString()))
        return readCapture(fileName, take);
    LineReader lines(fileName, std::numeric_limits<qint64>::max()); // a line at a time, it may go on for days
    int wrong = 0;
    while (lines.next()) {
        try {
            if (const std::optional<TraceRecord> record = parseTraceLine(lines.line()))
                take(*record);
        } catch (const Failure &failure) {
            if (failure.isFinal() || ++wrong <= kToldLines)
                outcome.add(filled("%1:%2", fileName, lines.number()), failure);
        }
    }
    if (wrong > kToldLines)
        reportWarning(
            QString("%1: %2: no record of a trace").arg(fileName, counted(wrong - kToldLines, "more line")));
}

QByteArray bytesOf(const QStringList &texts)
{
    if (texts.size() == 1 && texts.first() == "-")
        return parseHex(utf8Text(readInput("-", kLargestHex)));
    QString joined;
    for (const QString &text : texts)
        joined += text + '\n';
    return parseHex(joined);
}

// Turns a trace into a capture for Wireshark.
int convert(const OutputOptions &options, const DecodeOptions &own, Outcome &outcome)
{
    if (!own.trace)
        throw Failure(ExitCode::Usage, "bytes have no times, and a capture is of frames with their times",
                      "name a trace with --trace FILE");
    const std::unique_ptr<OutputSink> sink = sinkFor(options);
    sink->put(captureBeginning(*own.trace));
    readTrace(
        *own.trace, [&sink](const TraceRecord &record) { sink->put(captureRecord(record)); }, outcome);
    sink->commit();
    return outcome.exitCode();
}

int decode(const OutputOptions &options, const DecodeOptions &own)
{
    if (own.trace.has_value() != own.bytes.isEmpty())
        throw Failure(ExitCode::Usage, "decode takes bytes or a trace",
                      "name bytes, as in s7ppi decode 10 02 00 5c 5e 16, or --trace FILE, or - for stdin");
    Outcome outcome;
    if (options.output && common::isCaptureName(options.output->toStdString()))
        return convert(options, own, outcome);
    const QByteArray bytes = bytesOf(own.bytes);
    DecodeCommand command(options, own.trace ? *own.trace + ": " : QString());
    if (own.trace)
        readTrace(
            *own.trace, [&command](const TraceRecord &record) { command.decode(record); }, outcome);
    else
        command.decode(bytes);
    command.finish();
    return outcome.exitCode();
}

} // namespace

void declareDecode(CLI::App &app, CommandLine &line)
{
    const auto own = std::make_shared<DecodeOptions>();
    CLI::App *decoding = addCommand(app, line, "decode", "Explain frames byte by byte",
                                    [own](const Options &options) { return decode(options, *own); });
    addTexts(*decoding, "bytes", own->bytes, "HEX",
             "Hexadecimal text, grouped in any way; - reads it from stdin");
    addText(*decoding, "--trace", own->trace, "FILE",
            "The frames of a trace or capture, as --trace of other commands writes it; with -o\n"
            "NEW.pcapng it becomes a capture for Wireshark");
    setFooter(*decoding, kDecodeFooter,
              {"s7ppi decode 10 02 00 5c 5e 16", "s7ppi write --dry-run VW10=300 | s7ppi decode -",
               "s7ppi decode --trace line.txt --format csv", "s7ppi decode --trace line.txt -o line.pcapng"});
}

} // namespace host
