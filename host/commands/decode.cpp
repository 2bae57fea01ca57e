// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/base/filled.h"
#include "host/commands/commands.h"

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
#include "host/text/hex_text.h"
#include "host/text/number_text.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <limits>
#include <memory>
#include <optional>

namespace host {

namespace {

struct DecodeOptions
{
    QStringList bytes;
    std::optional<QString> trace;
};

const Schema kSchema = {"decode", 1, "bytes", {"frame", "offset", "byte", "field", "meaning", "fault"}};

const char kFooter[] = R"(
Frames may follow each other; bytes that make none are told as such. ! marks a byte that is
not what it should be; what is missing of a cut frame stands behind its last byte. In a trace
the data of an answer have the addresses that the request before it named.

The exit code is 0 when all frames are whole and sound, and 5 when one is not.

Examples:
  s7ppi decode 10 02 00 5c 5e 16
  s7ppi decode --trace line.txt --format csv)";

// So many wrong lines of a trace are told one by one; the others are counted.
constexpr int kToldLines = 5;

// Bytes that are no trace are explained together.
constexpr qint64 kLargestHex = 4 << 20;

// A document of json has its list of frames at its end, and all of it is kept until then.
constexpr int kMostFrames = 100000;

class DecodeCommand
{
public:
    DecodeCommand(const OutputOptions &options, const QString &source_)
        : output(options, kSchema), source(source_)
    {
    }

    // Explains the frames in some bytes that passed together.
    void decode(const QByteArray &bytes, const QString &heading, const Json &origin);

    // Whether there have been as many frames as the output takes.
    bool isFull() const { return output.format() == Format::JsonDocument && count >= kMostFrames; }

    // Ends the data, and fails when a frame had a fault or there was none at all.
    void finish();

private:
    void decodeFrame(const QByteArray &frame, const QString &heading, const Json &origin);
    void list(const QByteArray &frame, const ExplainedFrame &explained, Json entry);
    void write(const ExplainedByte &byte, const QString &missing);
    Failure faultyFrames() const;

    Output output;
    QString source; // of the bytes
    FrameExplainer explainer;
    Json frames = Json::array(); // of a document of json
    qint64 count = 0;
    qint64 faulty = 0;
};

QString byteLine(const ExplainedByte &byte)
{
    constexpr int kOffsetWidth = 4;
    constexpr int kFieldWidth = 22;
    QString line = filled("%1  %2 %3 %4  %5", QString::number(byte.offset).rightJustified(kOffsetWidth),
                          hexByte(byte.byte).toLower(), byte.isFault ? "!" : " ",
                          byte.field.leftJustified(kFieldWidth), byte.meaning);
    while (line.endsWith(' '))
        line.chop(1);
    return line;
}

void DecodeCommand::decode(const QByteArray &bytes, const QString &heading, const Json &origin)
{
    for (const QByteArray &frame : splitFrames(bytes))
        decodeFrame(frame, heading, origin);
}

void DecodeCommand::decodeFrame(const QByteArray &frame, const QString &heading, const Json &origin)
{
    if (isFull())
        throw Failure(ExitCode::Usage, filled("%1there are more than %2 frames", source, kMostFrames),
                      "choose --format ndjson, csv or text, which take any number");
    const ExplainedFrame explained = explainer.explain(frame);
    if (count > 0)
        output.writeText(QString());
    if (output.format() == Format::JsonDocument)
        list(frame, explained, origin);
    ++count;
    faulty += explained.faults.isEmpty() ? 0 : 1;

    output.writeText(heading + frameWords(frame) + ", " + counted(frame.size(), "byte"));
    const int last = int(frame.size()) - 1;
    for (const ExplainedByte &byte : explained.bytes)
        write(byte, byte.offset == last ? explained.missing : QString());
    for (const QString &fault : explained.faults)
        output.writeText("         ! " + fault);
}

void DecodeCommand::list(const QByteArray &frame, const ExplainedFrame &explained, Json entry)
{
    entry["meaning"] = jsonText(frameWords(frame));
    entry["size"] = frame.size();
    entry["faults"] = Json::array();
    for (const QString &fault : explained.faults)
        entry["faults"].push_back(jsonText(fault));
    frames.push_back(entry);
}

// Writes a byte, and what is missing behind it, if anything is; in the text the latter has a line of its own.
void DecodeCommand::write(const ExplainedByte &byte, const QString &missing)
{
    const bool isBoth = !byte.meaning.isEmpty() && !missing.isEmpty();
    output.write({{"frame", count},
                  {"offset", byte.offset},
                  {"byte", QByteArray(1, char(byte.byte)).toHex().toStdString()},
                  {"field", jsonText(byte.field)},
                  {"meaning", jsonText(byte.meaning + (isBoth ? "; " : "") + missing)},
                  {"fault", byte.isFault || !missing.isEmpty()}},
                 byteLine(byte));
}

void DecodeCommand::finish()
{
    output.setField("frames", frames);
    output.finish();
    if (count == 0)
        throw Failure(ExitCode::Usage, source + "there are no bytes to decode",
                      "s7ppi decode --help has examples");
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

void decodeLine(DecodeCommand &command, const QByteArray &line)
{
    if (const std::optional<TraceRecord> record = parseTraceLine(line))
        command.decode(record->bytes, record->time + ' ' + record->direction + ' ',
                       {{"time", jsonText(record->time)}, {"direction", jsonText(record->direction)}});
}

void decodeTrace(DecodeCommand &command, const QString &fileName, Outcome &outcome)
{
    LineReader lines(fileName, std::numeric_limits<qint64>::max()); // a line at a time, it may go on for days
    int wrong = 0;
    while (lines.next()) {
        try {
            decodeLine(command, lines.line());
        } catch (const Failure &failure) {
            if (command.isFull())
                throw;
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

int decode(const OutputOptions &options, const DecodeOptions &own)
{
    if (own.trace.has_value() != own.bytes.isEmpty())
        throw Failure(ExitCode::Usage, "decode takes bytes or a trace",
                      "name bytes, as in s7ppi decode 10 02 00 5c 5e 16, or --trace FILE, or - for stdin");
    Outcome outcome;
    const QByteArray bytes = bytesOf(own.bytes);
    DecodeCommand command(options, own.trace ? *own.trace + ": " : QString());
    if (own.trace)
        decodeTrace(command, *own.trace, outcome);
    else
        command.decode(bytes, QString(), Json::object());
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
            "The frames of a trace, as --trace of other commands writes it");
    setFooter(*decoding, kFooter);
}

} // namespace host
