// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "model.h"

#include "model_answer.h"
#include "model_request.h"

#include <QVariant>

#include <ctime>

namespace {

const int kBufferSize = 262;
const int kHeadSize = 7;
const int kPauseBeforeFrame = 12;
const quint32 kNanosecondsPerMillisecond = 1000000;
const quint32 kNanosecondsPerSecond = 1000000000;
const char kInvalid[] = "invalid response";

// Wraps where 32 bits of nanoseconds end.
void pause(int milliseconds)
{
    const quint32 nanoseconds = quint32(milliseconds) * kNanosecondsPerMillisecond;
    struct timespec time;
    time.tv_sec = static_cast<time_t>(nanoseconds / kNanosecondsPerSecond);
    time.tv_nsec = static_cast<long>(nanoseconds % kNanosecondsPerSecond);
    if (milliseconds != 0)
        nanosleep(&time, nullptr);
}

// Also of negative values: -9 / 8 is -1.
qint64 dividedUp(qint64 value, qint64 unit)
{
    return value > 0 ? (value + unit - 1) / unit : value / unit;
}

qint64 low16(qint64 value)
{
    return value & 0xffff;
}

bool isBits(int type)
{
    return type == kBits || type == kBitBlock;
}

int bytesPerItem(int type)
{
    return type == kDoubleWords ? 4 : type == kWords ? 2 : 1;
}

} // namespace

Model::Model() : port(nullptr), isFailed(false), reference(0) {}

bool Model::begin(AbstractDeviceInterface *currentPort, const CommunicatorCommand &command)
{
    port = currentPort;
    pause(port->delay());
    isFailed = false;
    reason = QLatin1String("");
    return command.dataType >= kBits && command.dataType <= kBitBlock && command.dataType != kQuadWords;
}

QByteArray Model::read(AbstractDeviceInterface *currentPort, const CommunicatorCommand &command)
{
    for (int attempt = 0;; ++attempt) {
        if (!begin(currentPort, command))
            return QByteArray();
        const QByteArray data = readOnce(command);
        if (!isFailed || attempt >= port->retry())
            return data;
    }
}

int Model::write(AbstractDeviceInterface *currentPort, const CommunicatorCommand &command,
                 const QByteArray &data)
{
    for (int attempt = 0;; ++attempt) {
        if (!begin(currentPort, command))
            return 0;
        const bool isWritten = writeOnce(command, data);
        if (!isFailed || attempt >= port->retry())
            return isWritten ? 1 : 0;
    }
}

// Memory is asked for in the elements of the area, rounded up, of a count taken in 16 bits first.
Model::ReadRules Model::memoryRules(const CommunicatorCommand &command, const ModelAddress &address) const
{
    const int size = bytesPerItem(command.dataType);
    const qint64 count = dividedUp(low16(command.count) * size, address.width);
    const bool isBytes = size == 1;
    const ReadRules rules = {modelTransportSize(address),
                             count,
                             qMax<qint64>(0, qint64(command.count) * size),
                             size == 4 ? "invalid response1" : kInvalid,
                             size == 4 ? "invalid response2" : kInvalid,
                             isBytes,
                             size != 2};
    return rules;
}

Model::ReadRules Model::objectRules(const CommunicatorCommand &command, const ModelAddress &address) const
{
    const int size = bytesPerItem(command.dataType);
    const int objectSize = address.isHighSpeedCounter() ? 4 : 2;
    const qint64 count = dividedUp(qint64(command.count) * size, objectSize);
    const bool isFitted = size == 1 || (size == 2 && address.isHighSpeedCounter());
    const qint64 resultSize = isFitted ? qMax<qint64>(0, qint64(command.count) * size) : -1;
    const ReadRules rules = {modelTransportSize(address), count, resultSize, kInvalid, kInvalid, true, true};
    return rules;
}

QByteArray Model::readOnce(const CommunicatorCommand &command)
{
    const ModelAddress address(command.address);
    if (isBits(command.dataType))
        return readBits(command, address);
    if (address.isHighSpeedCounter())
        return readFastCounters(objectRules(command, address), address);
    if (address.isObject())
        return readRecords(objectRules(command, address), address);
    return readMemory(memoryRules(command, address), address);
}

QByteArray Model::readBits(const CommunicatorCommand &command, const ModelAddress &address)
{
    return address.isTimerOrCounter() ? readStatuses(command, address) : readMemoryBits(command, address);
}

// High-speed counters are asked for as bytes here.
QByteArray Model::readMemoryBits(const CommunicatorCommand &command, const ModelAddress &address)
{
    const qint64 bytes = low16(dividedUp(qint64(address.bit) + command.count, 8));
    const int transportSize = address.width == 4 ? 6 : address.width == 2 ? 4 : 2;
    const ModelRequestHead head = {station(), nextReference()};
    const QByteArray request =
        modelReadFrame(head, address, transportSize, dividedUp(bytes, address.width), address.byte);
    QByteArray buffer;
    QByteArray bits;
    if (exchange(request, kInvalid, buffer) && !ModelAnswer(buffer).bits(address.bit, command.count, bits))
        fail(kInvalid);
    return isFailed ? QByteArray() : bits;
}

QByteArray Model::readStatuses(const CommunicatorCommand &command, const ModelAddress &address)
{
    const ReadRules rules = {address.area, command.count, -1, kInvalid, kInvalid, true, true};
    QByteArray buffer;
    if (!askRecords(rules, address, buffer))
        return QByteArray();
    if (address.prefix == "C")
        log(QString());
    const ModelAnswer answer(buffer);
    const QByteArray statuses = answer.statuses(address);
    return isRecordListWhole(answer, statuses) ? statuses : QByteArray();
}

QByteArray Model::readMemory(const ReadRules &rules, const ModelAddress &address)
{
    const ModelRequestHead head = {station(), nextReference()};
    QByteArray buffer;
    if (!exchange(modelReadFrame(head, address, rules.transportSize, rules.count, address.number),
                  rules.headerText, buffer))
        return QByteArray();
    const ModelAnswer answer(buffer);
    if (answer.isLongerThanFrame(4, address.width))
        fail(kInvalid);
    else if (answer.returnCode() != 0xff)
        rules.isCodeLogged ? fail(modelTextOfCode(answer.returnCode()))
                           : failSilently(modelTextOfCode(answer.returnCode()));
    else if (answer.memory(address.width).isEmpty())
        rules.isEmptyLogged ? fail(rules.emptyText) : failSilently(rules.emptyText);
    return isFailed ? QByteArray() : fitted(answer.memory(address.width), rules.resultSize);
}

bool Model::askRecords(const ReadRules &rules, const ModelAddress &address, QByteArray &buffer)
{
    const ModelRequestHead head = {station(), nextReference()};
    return exchange(modelReadFrame(head, address, rules.transportSize, rules.count, address.number),
                    rules.headerText, buffer);
}

QByteArray Model::readFastCounters(const ReadRules &rules, const ModelAddress &address)
{
    QByteArray buffer;
    if (!askRecords(rules, address, buffer))
        return QByteArray();
    const ModelAnswer answer(buffer);
    if (answer.isLongerThanFrame(9))
        fail(kInvalid);
    else if (answer.returnCode() != 0xff)
        fail(modelTextOfCode(answer.returnCode()));
    else if (answer.values(address).isEmpty())
        fail(kInvalid);
    return isFailed ? QByteArray() : fitted(answer.values(address), rules.resultSize);
}

QByteArray Model::readRecords(const ReadRules &rules, const ModelAddress &address)
{
    QByteArray buffer;
    if (!askRecords(rules, address, buffer))
        return QByteArray();
    const ModelAnswer answer(buffer);
    const QByteArray values = answer.values(address);
    return isRecordListWhole(answer, values) ? fitted(values, rules.resultSize) : QByteArray();
}

// Judges the records of timers and counters.
bool Model::isRecordListWhole(const ModelAnswer &answer, const QByteArray &records)
{
    if (!answer.isGoodRead(9))
        return failSilently(QLatin1String("invalid PLC response"));
    return !records.isEmpty() || fail(kInvalid);
}

// Bytes that nobody defined are zero.
QByteArray Model::fitted(const QByteArray &data, qint64 size) const
{
    if (size < 0)
        return data;
    const int wanted = int(size);
    return data.left(wanted) + QByteArray(qMax(0, wanted - int(data.size())), '\0');
}

bool Model::writeOnce(const CommunicatorCommand &command, const QByteArray &data)
{
    if (isBits(command.dataType))
        return writeBits(command, data);
    const ModelAddress address(command.address);
    if (address.isHighSpeedCounter() || address.prefix == "AIW")
        return refuse(command);
    const int size = bytesPerItem(command.dataType);
    QByteArray values = size == 1 ? data : fitted(data, qMax<qint64>(0, qint64(command.count) * size));
    if (address.isObject() && values.size() % 2 != 0)
        values += '\0';
    const ModelRequestHead head = {station(), nextReference()};
    return writeItem(address.isObject() ? modelObjectWriteFrame(head, address, values)
                                        : modelMemoryWriteFrame(head, address, values));
}

bool Model::writeItem(const QByteArray &frame)
{
    QByteArray buffer;
    if (!exchange(frame, "invalid response1", buffer))
        return false;
    const ModelAnswer answer(buffer);
    return answer.isGoodWrite() || fail(modelTextOfCode(answer.returnCode()));
}

bool Model::writeBits(const CommunicatorCommand &command, const QByteArray &data)
{
    const ModelAddress address(command.address);
    if (address.isTimerOrCounter())
        return refuse(command);
    if (data.isEmpty())
        return fail(kInvalid);
    const ModelRequestHead head = {station(), nextReference()};
    QByteArray buffer;
    if (!exchange(modelBitWriteFrame(head, address, data), "invalid response1", buffer))
        return false;
    const QByteArray codes = ModelAnswer(buffer).returnCodes();
    if (codes.isEmpty())
        return fail(kInvalid);
    return codes.count('\xff') == codes.size() || fail(modelTextOfCodes(codes));
}

bool Model::refuse(const CommunicatorCommand &command)
{
    return failSilently(QLatin1String("can not write data to ") + command.address);
}

bool Model::exchange(const QByteArray &request, const char *headerText, QByteArray &buffer)
{
    if (!isRequestTaken(request) || !isAnswered(buffer))
        return false;
    const ModelAnswer answer(buffer);
    if (!answer.answers(reference))
        return fail(headerText);
    return !answer.refusesRequest() || fail(QLatin1String("invalid request to PLC"));
}

bool Model::isRequestTaken(const QByteArray &request)
{
    sendFrame(request);
    QByteArray buffer(kBufferSize, '\0');
    const qint64 received = receive(buffer, 0, 1);
    if (buffer.at(0) == '\x10')
        return fail(modelReasonOfRefusal(buffer, receive(buffer, 1, 5) + 1, station()));
    const char *fault = modelFaultOfAcknowledgement(static_cast<unsigned char>(buffer.at(0)), received);
    return !fault || fail(fault);
}

bool Model::isAnswered(QByteArray &buffer)
{
    sendFrame(modelPoll(station()));
    buffer = QByteArray(kBufferSize, '\0');
    const qint64 head = receive(buffer, 0, kHeadSize);
    if (const char *fault = ModelAnswer(buffer).faultOfHead(head, station()))
        return fail(fault);
    const qint64 rest = receive(buffer, kHeadSize, ModelAnswer(buffer).owedBehindHead());
    const char *fault = ModelAnswer(buffer).faultOfRest(rest);
    return !fault || fail(fault);
}

void Model::sendFrame(const QByteArray &frame)
{
    port->setOption(kClearInput, QVariant(0));
    pause(kPauseBeforeFrame);
    port->send(reinterpret_cast<const unsigned char *>(frame.constData()), int(frame.size()));
}

// A result below 0 counts as nothing, one above what was asked for as all of it.
qint64 Model::receive(QByteArray &buffer, int place, int size)
{
    const int received = port->receive(reinterpret_cast<unsigned char *>(buffer.data()) + place, size);
    return qMax(0, received);
}

int Model::nextReference()
{
    reference = (reference + 1) % 0x10000;
    return reference;
}

bool Model::fail(const QString &text)
{
    failSilently(text);
    log(text);
    return false;
}

bool Model::failSilently(const QString &text)
{
    isFailed = true;
    reason = text;
    return false;
}

void Model::log(const QString &text) const
{
    qDebug("../../../runtime/drivers/simatic_s7_200_ppi/s7_200_ppi.cpp:1:%s", text.toLatin1().constData());
}
