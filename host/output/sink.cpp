// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "host/output/sink.h"

#include "host/base/failure.h"
#include "host/base/files.h"
#include "host/base/messages.h"

#include <QFileInfo>
#include <QSaveFile>

namespace host {

namespace {

const char kNothingLeftHint[] = "check the directory, its rights and its room; nothing was left there";

class StdoutSink : public OutputSink
{
public:
    void put(const QByteArray &bytes) override { printBytes(bytes); }
    void putText(const QString &text) override { printText(text); }
    void commit() override {}
};

class FileSink : public OutputSink
{
public:
    explicit FileSink(const QString &name);

    void put(const QByteArray &bytes) override;
    void commit() override;

private:
    QSaveFile file;
};

FileSink::FileSink(const QString &name) : file(name)
{
    checkOutputName(name);
    if (!file.open(QIODevice::WriteOnly))
        throwUnwritable(file, kNothingLeftHint);
}

void FileSink::put(const QByteArray &bytes)
{
    if (file.write(bytes) != bytes.size())
        throwUnwritable(file, kNothingLeftHint);
}

// The file is flushed first: commit() alone would not notice that its last buffer found no room.
void FileSink::commit()
{
    if (!file.flush() || !file.commit())
        throwUnwritable(file, kNothingLeftHint);
}

} // namespace

void BatchSink::put(const QByteArray &bytes)
{
    constexpr int kMuch = 1 << 16;
    batch += bytes;
    if (batch.size() > kMuch)
        flush();
}

void BatchSink::flush()
{
    target->put(batch);
    batch.resize(0);
}

void BatchSink::commit()
{
    flush();
    target->commit();
}

void checkOutputName(const QString &name)
{
    const QFileInfo info(name);
    if (info.exists() && !info.isFile())
        throw Failure(ExitCode::Usage, name + " is no file", "name a file, or send stdout there with >");
}

std::unique_ptr<OutputSink> sinkFor(const OutputOptions &options)
{
    if (!options.output || *options.output == "-")
        return std::make_unique<StdoutSink>();
    return std::make_unique<FileSink>(*options.output);
}

} // namespace host
