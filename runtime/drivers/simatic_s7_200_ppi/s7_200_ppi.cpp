// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "s7_200_ppi.h"

#include "abstract_device_interface.h"
#include "ppi_address.h"
#include "ppi_block.h"
#include "ppi_layer2.h"
#include "ppi_request.h"
#include "ppi_response.h"
#include "tools/address_text.h"
#include "tools/array_size.h"
#include "tools/pack.h"
#include "tools/sizes.h"
#include "tools/timing.h"

#include <QtDebug>

#include <climits>
#include <cstring>
#include <new>
#include <vector>

// Writes the error that the driver has recorded, with the line at which it was found; always, whatever the
// debug mode.
#define LOG_FAILURE(driver) logFailure(driver, __FILE__, __LINE__)

// Records the reason of a failure in the driver and writes it.
#define FAIL(driver, reason)                                                                                 \
    do {                                                                                                     \
        (driver).setCommError(reason);                                                                       \
        LOG_FAILURE(driver);                                                                                 \
    } while (false)

namespace {

// A line for which there is no memory is lost; the failure that it tells is not.
void logFailure(DriverS7_200_PPI &driver, const char *file, int line)
{
    try {
        qDebug("%s:%d:%s", file, line, driver.getLastError().toUtf8().constData());
    } catch (const std::bad_alloc &) {
    }
}

const unsigned long kPauseBeforeFrame = 12; // milliseconds

// Bytes of one write: far more than a controller takes, and far from where the size of a frame made of them
// would overflow. More counts as more than memory holds.
const int kMostWrittenBytes = INT_MAX / 32;

// What differs between the reads by byte, word and double word.
struct ReadKind
{
    int unit;                // bytes of one counted item
    const char *headerFault; // memory areas; objects always report "invalid response"
    const char *noData;      // the same
    bool logsRefusedItem;    // memory areas; objects always log
    bool logsNoData;         // the same
    bool fitsRecords;        // timers and counters are fitted to count
    bool fitsHighSpeedCounters;
};

// clang-format off
//                             unit  header refused       no data              refused, no data logged  T C, HC fitted
const ReadKind kByteRead  = {  1,    "invalid response",  "invalid response",  true,    true,           true,  true  };
const ReadKind kWordRead  = {  2,    "invalid response",  "invalid response",  false,   false,          false, true  };
const ReadKind kDWordRead = {  4,    "invalid response1", "invalid response2", false,   true,           false, false };
// clang-format on

// What differs between the writes by byte, word and double word.
struct WriteKind
{
    bool fitsData; // to what the command counts
    bool fillsOdd; // data of timers and counters, to whole values
};

// clang-format off
//                               data fitted  odd filled
const WriteKind kByteWrite  = {  false,       true  };
const WriteKind kWordWrite  = {  true,        false };
const WriteKind kDWordWrite = {  false,       false };
// clang-format on

// The answer of one exchange, and where its parameters stand once the header was accepted.
struct Answer
{
    unsigned char frame[kReceiveBufferSize];
    const unsigned char *parameters;

    void clear(size_t size) { memset(frame, 0, size); }

    // How many bytes of parameters, and how many of a read item's data, the frame holds: check sum and
    // end byte stand behind them. Below 0 when not even the header is complete.
    int held() const { return static_cast<int>(frame + 4 + frame[1] - parameters); }
    int heldData() const { return held() - kReadItemHeadSize; }
};

// The builders count requests in 16 bits, the driver object keeps an int: converted here only. The
// object has the new value at the end of the statement that builds the frame.
class ReferenceCounter
{
public:
    explicit ReferenceCounter(int &counter) : target(counter), value(static_cast<unsigned short>(counter)) {}
    ~ReferenceCounter() { target = value; }
    operator unsigned short &() { return value; }

private:
    Q_DISABLE_COPY(ReferenceCounter)

    int &target;
    unsigned short value;
};

// Records the fault that a check found, if any.
inline bool accepted(DriverS7_200_PPI &driver, const char *fault)
{
    if (!fault)
        return true;
    driver.setCommError(QLatin1String(fault));
    return false;
}

// How many objects hold that many bytes of values: 4 in a high-speed counter, 2 in a timer or counter.
unsigned short objectsFor(const QByteArray &prefix, qint64 byteCount)
{
    const unsigned int bytes = static_cast<unsigned int>(byteCount);
    return static_cast<unsigned short>(prefix == "HC" ? NumOfBytesToNumOfDWords(bytes)
                                                      : NumOfBytesToNumOfWords(bytes));
}

// Cuts the data to size bytes, or extends them to it with zero bytes.
void fit(QByteArray &data, qint64 size)
{
    if (size != data.size() && !resizeWithZeros(data, size))
        throw std::bad_alloc();
}

const QByteArray &withinLimit(const QByteArray &data)
{
    if (data.size() > kMostWrittenBytes)
        throw std::bad_alloc();
    return data;
}

QByteArray valuesOf(const std::vector<S7_200_PPI_Timer> &records)
{
    QByteArray values(static_cast<int>(records.size()) * 2, '\0');
    unsigned char *next = reinterpret_cast<unsigned char *>(values.data());
    for (size_t i = 0; i < records.size(); ++i)
        next += DataPack(next, "v", records[i].value);
    return values;
}

// One attempt at one command: a request, its exchange with the controller, and what comes of the answer.
// Failures are recorded in the driver and logged here.
class Attempt
{
public:
    Attempt(DriverS7_200_PPI &driver_, int &pduReference_, AbstractDeviceInterface *dev_)
        : driver(driver_), pduReference(pduReference_), dev(dev_)
    {
    }

    QByteArray readItems(const CommunicatorCommand &cmd, const ReadKind &kind);
    QByteArray readBits(const CommunicatorCommand &cmd);
    bool writeItems(const CommunicatorCommand &cmd, const QByteArray &data, const WriteKind &kind);
    bool writeMemory(const QByteArray &prefix, unsigned int byteAddress, const QByteArray &data);
    bool writeBits(const CommunicatorCommand &cmd, const QByteArray &data);

private:
    unsigned char station() { return static_cast<unsigned char>(dev->stationId()); }
    unsigned char source() { return static_cast<unsigned char>(driver.getSourceAddr(dev)); }

    int receive(unsigned char *buffer, int maxLength);
    void send(const QByteArray &frame);
    bool exchange(const QByteArray &frame, const char *headerFault, Answer &answer);
    bool request(const QByteArray &frame, Answer &answer);
    bool poll(Answer &answer);
    bool unpackHeader(const char *headerFault, Answer &answer);
    bool itemFits(const Answer &answer, PpiLayer7 transportSize, int elementSize = 1);

    QByteArray readMemory(const CommunicatorCommand &cmd, const QByteArray &prefix, const ReadKind &kind);
    QByteArray readObjects(const CommunicatorCommand &cmd, const QByteArray &prefix, const ReadKind &kind);
    QByteArray readMemoryBits(const CommunicatorCommand &cmd, const QByteArray &prefix);
    QByteArray readObjectBits(const CommunicatorCommand &cmd, const QByteArray &prefix);
    bool exchangeForObjects(const CommunicatorCommand &cmd, const QByteArray &prefix, unsigned short count,
                            Answer &answer);
    QByteArray highSpeedCounters(const Answer &answer);
    bool unpackRecords(const Answer &answer, const QByteArray &prefix,
                       std::vector<S7_200_PPI_Timer> &records);

    bool writeItem(const QByteArray &frame);
    bool refuseWrite(const CommunicatorCommand &cmd);

    DriverS7_200_PPI &driver;
    int &pduReference;
    AbstractDeviceInterface *dev;
};

// What the port says it received: an error of the port is nothing; of more than it was asked for, one more
// tells as much as any.
int Attempt::receive(unsigned char *buffer, int maxLength)
{
    return qBound(0, dev->receive(buffer, maxLength), maxLength + 1);
}

void Attempt::send(const QByteArray &frame)
{
    static const QVariant noArgument(0);
    dev->setOption(kClearInput, noArgument);
    driver.delayBeforeReq();
    dev->send(reinterpret_cast<const unsigned char *>(frame.constData()), static_cast<int>(frame.size()));
}

// The exchange that every read and write is: request, acknowledgement, poll, answer. True when the
// answer belongs to the request and the controller took it; the answer's parameters are the caller's
// to decode. Otherwise the reason is recorded and logged.
bool Attempt::exchange(const QByteArray &frame, const char *headerFault, Answer &answer)
{
    return request(frame, answer) && poll(answer) && unpackHeader(headerFault, answer);
}

bool Attempt::request(const QByteArray &frame, Answer &answer)
{
    send(frame);
    answer.clear(kRefusalSize);
    const int received = receive(answer.frame, 1);
    if (received > 0 && answer.frame[0] == kRefusalStart) {
        const int rest = receive(answer.frame + 1, kRefusalSize - 1);
        driver.processSD1NAK(answer.frame, rest + 1, source(), station());
        LOG_FAILURE(driver);
        return false;
    }
    if (!driver.checkSC(answer.frame, received)) {
        LOG_FAILURE(driver);
        return false;
    }
    return true;
}

// The controller is polled once: one that is not ready yet fails the attempt.
bool Attempt::poll(Answer &answer)
{
    send(S7_200_PPIPackLayer2SD1Poll(station(), source()));
    answer.clear(sizeof answer.frame);
    const int received = receive(answer.frame, kAnswerHeadSize);
    if (!driver.checkMinSD2Rsp(answer.frame, received, source(), station())) {
        LOG_FAILURE(driver);
        return false;
    }
    const int owed = answer.frame[1] - 1;
    const int rest = receive(answer.frame + kAnswerHeadSize, owed);
    if (!driver.checkSD2ReadWriteRsp(answer.frame, rest, owed)) {
        LOG_FAILURE(driver);
        return false;
    }
    return true;
}

bool Attempt::unpackHeader(const char *headerFault, Answer &answer)
{
    unsigned short parameterLength = 0;
    unsigned short dataLength = 0;
    unsigned char errorClass = 0;
    unsigned char errorCode = 0;
    const unsigned char *header = answer.frame + kAnswerHeadSize;
    const int headerSize =
        S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(header, static_cast<unsigned short>(pduReference),
                                                    parameterLength, dataLength, errorClass, errorCode);
    if (headerSize < 1) {
        FAIL(driver, QLatin1String(headerFault));
        return false;
    }
    if (errorClass != 0 || errorCode != 0) {
        FAIL(driver, QLatin1String("invalid request to PLC"));
        return false;
    }
    answer.parameters = header + headerSize;
    return true;
}

// Whether the frame holds all that the decoder takes of the data that a read's item says it has, counted in
// elements of elementSize bytes; the decoders rely on it.
bool Attempt::itemFits(const Answer &answer, PpiLayer7 transportSize, int elementSize)
{
    if (S7_200_PPIRspItemFits(answer.parameters, transportSize, elementSize, answer.heldData()))
        return true;
    FAIL(driver, QLatin1String("invalid response"));
    return false;
}

QByteArray Attempt::readBits(const CommunicatorCommand &cmd)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (prefix == "C" || prefix == "T")
        return readObjectBits(cmd, prefix);
    return readMemoryBits(cmd, prefix);
}

QByteArray Attempt::readItems(const CommunicatorCommand &cmd, const ReadKind &kind)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (S7_200_PPIIsObj(prefix))
        return readObjects(cmd, prefix, kind);
    return readMemory(cmd, prefix, kind);
}

QByteArray Attempt::readMemory(const CommunicatorCommand &cmd, const QByteArray &prefix, const ReadKind &kind)
{
    const unsigned int byteCount =
        static_cast<unsigned int>(kind.unit) * static_cast<unsigned short>(cmd.count);
    const QByteArray frame =
        S7_200_PPIPackReadMemoryReq(ReferenceCounter(pduReference), station(), source(), prefix,
                                    S7_200_PPIExtractByteAddress(cmd.address), byteCount);
    Answer answer;
    if (!exchange(frame, kind.headerFault, answer) ||
        !itemFits(answer, kLengthInBits, S7_200_PPIElementSize(prefix)))
        return QByteArray();
    unsigned char code = 0;
    QByteArray data = S7_200_PPIGetRspBytes(answer.parameters, prefix, code);
    if (code != kSuccess) {
        driver.setCommError(S7_200_PPIReadRspErrorCodeToStr(code));
        if (kind.logsRefusedItem)
            LOG_FAILURE(driver);
        return QByteArray();
    }
    if (data.isEmpty()) {
        driver.setCommError(QLatin1String(kind.noData));
        if (kind.logsNoData)
            LOG_FAILURE(driver);
        return QByteArray();
    }
    fit(data, qint64(kind.unit) * cmd.count);
    return data;
}

QByteArray Attempt::readObjects(const CommunicatorCommand &cmd, const QByteArray &prefix,
                                const ReadKind &kind)
{
    const qint64 byteCount = qint64(kind.unit) * cmd.count;
    Answer answer;
    if (!exchangeForObjects(cmd, prefix, objectsFor(prefix, byteCount), answer))
        return QByteArray();
    if (prefix == "HC") {
        QByteArray values = highSpeedCounters(answer);
        if (kind.fitsHighSpeedCounters && !values.isEmpty())
            fit(values, byteCount);
        return values;
    }
    std::vector<S7_200_PPI_Timer> records;
    if (!unpackRecords(answer, prefix, records))
        return QByteArray();
    QByteArray values = valuesOf(records);
    if (kind.fitsRecords)
        fit(values, byteCount);
    return values;
}

QByteArray Attempt::readMemoryBits(const CommunicatorCommand &cmd, const QByteArray &prefix)
{
    unsigned int byteAddress = 0;
    unsigned int firstBit = 0;
    S7_200_PPIExtractAddress(cmd.address, byteAddress, firstBit);
    const unsigned int byteCount = NumOfBitsToNumOfBytes(firstBit, static_cast<unsigned int>(cmd.count));
    const QByteArray frame =
        S7_200_PPIPackReadBytesReq(ReferenceCounter(pduReference), station(), source(), prefix, byteAddress,
                                   static_cast<unsigned short>(byteCount));
    Answer answer;
    if (!exchange(frame, "invalid response", answer) || !itemFits(answer, kLengthInBits))
        return QByteArray();
    QByteArray bits;
    if (!S7_200_PPIGetRspBits(answer.parameters, firstBit, cmd.count, bits)) {
        FAIL(driver, QLatin1String("invalid response"));
        return QByteArray();
    }
    return bits;
}

// A timer's or counter's bit is its status.
QByteArray Attempt::readObjectBits(const CommunicatorCommand &cmd, const QByteArray &prefix)
{
    Answer answer;
    if (!exchangeForObjects(cmd, prefix, static_cast<unsigned short>(cmd.count), answer))
        return QByteArray();
    if (prefix == "C")
        qDebug("%s:%d:", __FILE__, __LINE__);
    std::vector<S7_200_PPI_Timer> records;
    if (!unpackRecords(answer, prefix, records))
        return QByteArray();
    QByteArray bits;
    bits.reserve(static_cast<int>(records.size()));
    for (size_t i = 0; i < records.size(); ++i)
        bits.append(static_cast<char>(records[i].status));
    return bits;
}

bool Attempt::exchangeForObjects(const CommunicatorCommand &cmd, const QByteArray &prefix,
                                 unsigned short count, Answer &answer)
{
    const QByteArray frame =
        S7_200_PPIPackReadObjectsReq(ReferenceCounter(pduReference), station(), source(), prefix,
                                     S7_200_PPIExtractByteAddress(cmd.address), count);
    return exchange(frame, "invalid response", answer);
}

QByteArray Attempt::highSpeedCounters(const Answer &answer)
{
    if (!itemFits(answer, kLengthInBytes))
        return QByteArray();
    unsigned char code = 0;
    QByteArray values = S7_200_PPIGetRspHSC(answer.parameters, code);
    if (code != kSuccess) {
        FAIL(driver, S7_200_PPIReadRspErrorCodeToStr(code));
        return QByteArray();
    }
    if (values.isEmpty()) {
        FAIL(driver, QLatin1String("invalid response"));
    }
    return values;
}

// The timers or counters of the answer; at least one, or the reason is recorded.
bool Attempt::unpackRecords(const Answer &answer, const QByteArray &prefix,
                            std::vector<S7_200_PPI_Timer> &records)
{
    if (!itemFits(answer, kLengthInBytes))
        return false;
    unsigned char code = 0;
    const bool decoded = prefix == "C" ? S7_200_PPIGetRspCounters(answer.parameters, records, code)
                                       : S7_200_PPIGetRspTimers(answer.parameters, records, code);
    if (!decoded) {
        driver.setCommError(QLatin1String("invalid PLC response")); // recorded, but not logged
        return false;
    }
    if (records.empty()) {
        FAIL(driver, QLatin1String("invalid response"));
        return false;
    }
    return true;
}

bool Attempt::writeItems(const CommunicatorCommand &cmd, const QByteArray &data, const WriteKind &kind)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (prefix == "HC" || prefix == "AIW")
        return refuseWrite(cmd);
    const unsigned int number = S7_200_PPIExtractByteAddress(cmd.address);
    QByteArray values = withinLimit(kind.fitsData ? DriverS7_200_PPIGetSafeData(cmd, data) : data);
    if (!S7_200_PPIIsObj(prefix))
        return writeMemory(prefix, number, values);
    if (kind.fillsOdd)
        values = wholeArray(To16bitsData(values), (qint64(values.size()) + 1) / 2 * 2);
    const QByteArray frame = prefix == "T"
                                 ? S7_200_PPIPackWriteTimersReq(ReferenceCounter(pduReference), station(),
                                                                source(), number, values)
                                 : S7_200_PPIPackWriteCountersReq(ReferenceCounter(pduReference), station(),
                                                                  source(), number, values);
    return writeItem(frame);
}

bool Attempt::writeMemory(const QByteArray &prefix, unsigned int byteAddress, const QByteArray &data)
{
    const QByteArray frame = S7_200_PPIPackWriteMemoryReq(ReferenceCounter(pduReference), station(), source(),
                                                          prefix, byteAddress, withinLimit(data));
    return writeItem(frame);
}

bool Attempt::writeItem(const QByteArray &frame)
{
    Answer answer;
    if (!exchange(frame, "invalid response1", answer))
        return false;
    unsigned char code = 0;
    if (!S7_200_PPICheckWriteRspParamData(answer.parameters, code)) {
        FAIL(driver, S7_200_PPIReadRspErrorCodeToStr(code));
        return false;
    }
    return true;
}

// Timers and counters are refused here, but high-speed counters and analogue inputs go out: the
// controller refuses those itself. The writes of whole values do it the other way round.
bool Attempt::writeBits(const CommunicatorCommand &cmd, const QByteArray &data)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (prefix == "T" || prefix == "C")
        return refuseWrite(cmd);
    if (data.isEmpty()) {
        FAIL(driver, QLatin1String("invalid response"));
        return false;
    }
    unsigned int byteAddress = 0;
    unsigned int bitNumber = 0;
    S7_200_PPIExtractAddress(cmd.address, byteAddress, bitNumber);
    const QByteArray frame = S7_200_PPIPackWriteBitsReq(ReferenceCounter(pduReference), station(), source(),
                                                        prefix, byteAddress, bitNumber, withinLimit(data));
    Answer answer;
    if (!exchange(frame, "invalid response1", answer))
        return false;
    const QByteArray codes = S7_200_PPIGetWriteRspCodes(answer.parameters, answer.held());
    if (!codes.isEmpty() && codes.count(static_cast<char>(kSuccess)) == codes.size())
        return true;
    FAIL(driver,
         codes.isEmpty() ? QString(QLatin1String("invalid response")) : S7_200_PPIWriteRspCodesToStr(codes));
    return false;
}

// Recorded, but not logged.
bool Attempt::refuseWrite(const CommunicatorCommand &cmd)
{
    driver.setCommError(QLatin1String("can not write data to ") + cmd.address);
    return false;
}

} // namespace

DriverS7_200_PPI::DriverS7_200_PPI() : errorFlag(false), debugMode(false), pduReference(0) {}

bool DriverS7_200_PPI::initialize(AbstractDeviceInterface *dev)
{
    if (dev)
        dev->setOption(kClearInput, QVariant(0));
    return true;
}

void DriverS7_200_PPI::setDebugMode(bool on)
{
    debugMode = on;
}

QString DriverS7_200_PPI::getLastError()
{
    return lastError;
}

bool DriverS7_200_PPI::hasError()
{
    return errorFlag;
}

void DriverS7_200_PPI::clearError()
{
    errorFlag = false;
    if (lastError.isNull() || !lastError.isEmpty()) // mostly it is as it must be already
        lastError = QString::fromLatin1("");
}

void DriverS7_200_PPI::setCommError(const QString &text)
{
    errorFlag = true;
    lastError = text;
}

void DriverS7_200_PPI::delayBeforeReq()
{
    HRSleep(kPauseBeforeFrame);
}

int DriverS7_200_PPI::getSourceAddr(AbstractDeviceInterface * /*dev*/)
{
    return 0;
}

bool DriverS7_200_PPI::checkSC(const unsigned char *buf, int len)
{
    return accepted(*this, S7_200_PPIFaultInAcknowledgement(buf, len));
}

void DriverS7_200_PPI::processSD1NAK(const unsigned char *buf, int len, unsigned char expectedDA,
                                     unsigned char expectedSA)
{
    accepted(*this, S7_200_PPIReasonOfRefusal(buf, len, expectedDA, expectedSA));
}

bool DriverS7_200_PPI::checkMinSD2Rsp(const unsigned char *buf, int len, unsigned char expectedDA,
                                      unsigned char expectedSA)
{
    return accepted(*this, S7_200_PPIFaultInAnswerHead(buf, len, expectedDA, expectedSA));
}

bool DriverS7_200_PPI::checkSD2ReadWriteRsp(const unsigned char *buf, int len, int expectedLen)
{
    return accepted(*this, S7_200_PPIFaultInAnswerRest(buf, len, expectedLen));
}

namespace {

// Nothing leaves the library when there is no memory for the reason either: the failure has no text then.
void failForWantOfMemory(DriverS7_200_PPI &driver)
{
    try {
        FAIL(driver, QLatin1String("invalid request to PLC"));
    } catch (const std::bad_alloc &) {
        driver.setCommError(QString());
    }
}

// One attempt of a command that may count more than memory holds.
template <typename Result, typename Function> Result guarded(DriverS7_200_PPI &driver, Function attempt)
{
    try {
        return attempt();
    } catch (const std::bad_alloc &) {
        failForWantOfMemory(driver);
        return Result();
    }
}

// Makes attempts until one leaves no error or the port's repetitions are used up. The error state is
// that of the last one.
template <typename Result, typename Function>
Result repeated(DriverS7_200_PPI &driver, AbstractDeviceInterface *dev, Function attempt)
{
    for (int repetition = 0;; ++repetition) {
        HRSleep(static_cast<unsigned long>(dev->delay()));
        driver.clearError();
        Result result = guarded<Result>(driver, attempt);
        if (!driver.hasError() || repetition >= dev->retry())
            return result;
    }
}

} // namespace

QByteArray DriverS7_200_PPI::read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return repeated<QByteArray>(*this, dev, [&]() -> QByteArray {
        switch (cmd.dataType) {
        case kBits:
        case kBitBlock:
            return readBits(dev, cmd);
        case kBytes:
        case kBlock:
            return readBytes(dev, cmd);
        case kWords:
            return readWords(dev, cmd);
        case kDoubleWords:
            return readDWords(dev, cmd);
        default: // not served: no frame and no error
            return QByteArray();
        }
    });
}

int DriverS7_200_PPI::write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                            const QByteArray &data)
{
    return repeated<bool>(*this, dev, [&]() -> bool {
        switch (cmd.dataType) {
        case kBits:
        case kBitBlock:
            return writeBits(dev, cmd, data);
        case kBytes:
        case kBlock:
            return writeBytes(dev, cmd, data);
        case kWords:
        case kDoubleWords:
            return writeWords(dev, cmd, data);
        default: // not served: no frame and no error
            return false;
        }
    });
}

QByteArray DriverS7_200_PPI::readBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return Attempt(*this, pduReference, dev).readBits(cmd);
}

QByteArray DriverS7_200_PPI::readBytes(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return Attempt(*this, pduReference, dev).readItems(cmd, kByteRead);
}

QByteArray DriverS7_200_PPI::readWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return Attempt(*this, pduReference, dev).readItems(cmd, kWordRead);
}

QByteArray DriverS7_200_PPI::readDWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return Attempt(*this, pduReference, dev).readItems(cmd, kDWordRead);
}

bool DriverS7_200_PPI::writeBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                 const QByteArray &data)
{
    return Attempt(*this, pduReference, dev).writeBits(cmd, data);
}

bool DriverS7_200_PPI::writeBytes(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                  const QByteArray &data)
{
    return Attempt(*this, pduReference, dev).writeItems(cmd, data, kByteWrite);
}

bool DriverS7_200_PPI::writeWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                  const QByteArray &data)
{
    return Attempt(*this, pduReference, dev).writeItems(cmd, data, kWordWrite);
}

bool DriverS7_200_PPI::writeDWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                   const QByteArray &data)
{
    return Attempt(*this, pduReference, dev).writeItems(cmd, data, kDWordWrite);
}

bool DriverS7_200_PPI::defaultWriteBytes(AbstractDeviceInterface *dev, const QByteArray &prefix,
                                         unsigned int byteAddress, const QByteArray &data)
{
    return Attempt(*this, pduReference, dev).writeMemory(prefix, byteAddress, data);
}
