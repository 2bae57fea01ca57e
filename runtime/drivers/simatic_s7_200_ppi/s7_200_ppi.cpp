// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "s7_200_ppi.h"

#include "abstract_device_interface.h"
#include "device_setting.h"
#include "driver_setting.h"
#include "ppi_address.h"
#include "ppi_layer2.h"
#include "ppi_request.h"
#include "ppi_response.h"
#include "ppi_static.h"
#include "tools/address_text.h"
#include "tools/sizes.h"
#include "tools/timing.h"

#include <QtDebug>

#include <climits>
#include <cstring>
#include <new>

// Writes the recorded error with the line at which it was found; always, whatever the debug mode.
#define LOG_FAILURE() qDebug("%s:%d:%s", __FILE__, __LINE__, messageText(lastError).constData())

// The answer of one exchange, and where its parameters stand once the header was accepted.
struct PpiAnswer
{
    unsigned char frame[kReceiveBufferSize];
    const unsigned char *parameters;

    void clear() { memset(frame, 0, sizeof frame); }

    // How many bytes of an item's data the frame holds: check sum and end byte stand behind them.
    int held() const
    {
        const unsigned char *checkSum = frame + 4 + frame[1];
        return static_cast<int>(checkSum - parameters) - kReadItemHeadSize;
    }
};

// What differs between the reads by byte, word and double word.
struct PpiReadKind
{
    int unit;                // bytes of one counted item
    const char *headerFault; // memory areas; objects always report "invalid response"
    const char *noData;      // the same
    bool logsRefusedItem;    // memory areas; objects always log
    bool logsNoData;         // the same
    bool fitsRecords;        // timers and counters are fitted to count
    bool fitsHighSpeedCounters;
};

namespace {

//                             unit  header fault         no data              logs refused, no data   fits T C, HC
const PpiReadKind kByteRead = { 1, "invalid response", "invalid response", true, true, true, true };
const PpiReadKind kWordRead = { 2, "invalid response", "invalid response", false, false, false, true };
const PpiReadKind kDWordRead = { 4, "invalid response1", "invalid response2", false, true, false, false };

const int kPurgeOption = 12; // the port throws away what it has received and nobody has read
const unsigned long kPauseBeforeFrame = 12; // milliseconds

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

// What a port says it received, held to what it was asked for.
int receive(AbstractDeviceInterface *dev, unsigned char *buffer, int maxLength)
{
    return qBound(0, dev->receive(buffer, maxLength), maxLength);
}

// How many objects hold that many bytes of values: 4 in a high-speed counter, 2 in a timer or counter.
unsigned int objectsFor(const QByteArray &prefix, unsigned int byteCount)
{
    return prefix == "HC" ? NumOfBytesToNumOfDWords(byteCount) : NumOfBytesToNumOfWords(byteCount);
}

QByteArray valuesOf(const std::vector<S7_200_PPI_Timer> &records)
{
    QByteArray values;
    values.reserve(static_cast<int>(records.size()) * 2);
    for (size_t i = 0; i < records.size(); ++i) {
        values.append(static_cast<char>(records[i].value & 0xFF));
        values.append(static_cast<char>(records[i].value >> 8));
    }
    return values;
}

} // namespace

DriverS7_200_PPI::DriverS7_200_PPI()
    : errorFlag(false), debugMode(false), pduReference(0)
{
}

int DriverS7_200_PPI::totalSize()
{
    return 12250;
}

bool DriverS7_200_PPI::initialize(AbstractDeviceInterface *dev)
{
    if (dev)
        dev->setOption(kPurgeOption, QVariant(0));
    return true;
}

bool DriverS7_200_PPI::validation(const QString & /*text*/)
{
    return false;
}

QString DriverS7_200_PPI::name()
{
    return QLatin1String("Simatic S7-200 PPI");
}

QString DriverS7_200_PPI::vender()
{
    return QLatin1String("Siemens");
}

QString DriverS7_200_PPI::getVersionNumber()
{
    return VERSION_STRING;
}

int DriverS7_200_PPI::supportedCommunicationFlags()
{
    return 16 | 32 | kRs485Port;
}

DeviceSetting *DriverS7_200_PPI::getDefaultSerialDeviceSetting()
{
    return new DeviceSetting(kRs485Port, QLatin1String("COM2"), 9600, 8, 0, 2);
}

DriverSetting *DriverS7_200_PPI::getDefaultDriverSetting()
{
    return new DriverSetting(500, 3, 2, 0);
}

QString DriverS7_200_PPI::getStringBasedDefaultDriverSetting()
{
    return QLatin1String("RS485,9600,EVEN,8,1");
}

void DriverS7_200_PPI::setDebugMode(bool on)
{
    debugMode = on;
}

int DriverS7_200_PPI::getBlockAccessSize()
{
    return 32;
}

int DriverS7_200_PPI::getBitBlockAccessSize()
{
    return 32;
}

QString DriverS7_200_PPI::getLastError()
{
    return lastError;
}

bool DriverS7_200_PPI::hasError()
{
    return errorFlag;
}

QObject *DriverS7_200_PPI::getThisObject()
{
    return this;
}

void DriverS7_200_PPI::clearError()
{
    errorFlag = false;
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

unsigned char DriverS7_200_PPI::station(AbstractDeviceInterface *dev)
{
    return static_cast<unsigned char>(dev->stationId());
}

unsigned char DriverS7_200_PPI::source(AbstractDeviceInterface *dev)
{
    return static_cast<unsigned char>(getSourceAddr(dev));
}

// Records the fault that a check found, if any.
bool DriverS7_200_PPI::accept(const char *fault)
{
    if (fault)
        setCommError(QLatin1String(fault));
    return !fault;
}

bool DriverS7_200_PPI::checkSC(const unsigned char *buf, int len)
{
    return accept(S7_200_PPIFaultInAcknowledgement(buf, len));
}

void DriverS7_200_PPI::processSD1NAK(const unsigned char *buf, int len, unsigned char expectedDA,
                                     unsigned char expectedSA)
{
    accept(S7_200_PPIReasonOfRefusal(buf, len, expectedDA, expectedSA));
}

bool DriverS7_200_PPI::checkMinSD2Rsp(const unsigned char *buf, int len, unsigned char expectedDA,
                                      unsigned char expectedSA)
{
    return accept(S7_200_PPIFaultInAnswerHead(buf, len, expectedDA, expectedSA));
}

bool DriverS7_200_PPI::checkSD2ReadWriteRsp(const unsigned char *buf, int len, int expectedLen)
{
    return accept(S7_200_PPIFaultInAnswerRest(buf, len, expectedLen));
}

// Makes attempts until one leaves no error or the port's repetitions are used up. The error state
// is that of the last one.
template <typename Result, typename Attempt>
Result DriverS7_200_PPI::repeated(AbstractDeviceInterface *dev, Attempt attempt)
{
    for (int repetition = 0;; ++repetition) {
        HRSleep(static_cast<unsigned long>(dev->delay()));
        clearError();
        const Result result = attempt();
        if (!errorFlag || repetition >= dev->retry())
            return result;
    }
}

QByteArray DriverS7_200_PPI::read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return repeated<QByteArray>(dev, [&]() { return readOnce(dev, cmd); });
}

int DriverS7_200_PPI::write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray & /*data*/)
{
    return repeated<int>(dev, [&]() {
        setCommError(QLatin1String("can not write data to ") + cmd.address);
        return 0;
    });
}

QByteArray DriverS7_200_PPI::readOnce(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    switch (cmd.dataType) {
    case 0:
    case 6:
        return readBits(dev, cmd);
    case 1:
    case 5:
        return readBytes(dev, cmd);
    case 2:
        return readWords(dev, cmd);
    case 3:
        return readDWords(dev, cmd);
    default: // not served: no frame and no error
        return QByteArray();
    }
}

void DriverS7_200_PPI::sendFrame(AbstractDeviceInterface *dev, const PpiBytes &frame)
{
    dev->setOption(kPurgeOption, QVariant(0));
    delayBeforeReq();
    dev->send(frame.data(), frame.size());
}

// The exchange that every read and write is: request, acknowledgement, poll, answer. True when the
// answer belongs to the request and the controller took it; the answer's parameters are the caller's
// to decode. Otherwise the reason is recorded and logged.
bool DriverS7_200_PPI::exchange(AbstractDeviceInterface *dev, const PpiBytes &frame, const char *headerFault,
                                PpiAnswer &answer)
{
    return request(dev, frame, answer) && poll(dev, answer) && unpackHeader(headerFault, answer);
}

bool DriverS7_200_PPI::request(AbstractDeviceInterface *dev, const PpiBytes &frame, PpiAnswer &answer)
{
    sendFrame(dev, frame);
    answer.clear();
    const int received = receive(dev, answer.frame, 1);
    if (answer.frame[0] == kRefusalStart) {
        const int rest = receive(dev, answer.frame + 1, kRefusalSize - 1);
        processSD1NAK(answer.frame, rest + 1, source(dev), station(dev));
        LOG_FAILURE();
        return false;
    }
    if (!checkSC(answer.frame, received)) {
        LOG_FAILURE();
        return false;
    }
    return true;
}

// The controller is polled once: one that is not ready yet fails the attempt.
bool DriverS7_200_PPI::poll(AbstractDeviceInterface *dev, PpiAnswer &answer)
{
    sendFrame(dev, S7_200_PPIPackLayer2SD1Poll(station(dev), source(dev)));
    answer.clear();
    const int received = receive(dev, answer.frame, kAnswerHeadSize);
    if (!checkMinSD2Rsp(answer.frame, received, source(dev), station(dev))) {
        LOG_FAILURE();
        return false;
    }
    const int owed = answer.frame[1] - 1;
    const int rest = receive(dev, answer.frame + kAnswerHeadSize, owed);
    if (!checkSD2ReadWriteRsp(answer.frame, rest, owed)) {
        LOG_FAILURE();
        return false;
    }
    return true;
}

bool DriverS7_200_PPI::unpackHeader(const char *headerFault, PpiAnswer &answer)
{
    unsigned short parameterLength = 0;
    unsigned short dataLength = 0;
    unsigned char errorClass = 0;
    unsigned char errorCode = 0;
    const unsigned char *header = answer.frame + kAnswerHeadSize;
    const int headerSize = S7_200_PPILayer2UnpackSD2ReadWriteRspHeader(
            header, static_cast<unsigned short>(pduReference), parameterLength, dataLength, errorClass, errorCode);
    if (headerSize < 1) {
        setCommError(QLatin1String(headerFault));
        LOG_FAILURE();
        return false;
    }
    if (errorClass != 0 || errorCode != 0) {
        setCommError(QLatin1String("invalid request to PLC"));
        LOG_FAILURE();
        return false;
    }
    answer.parameters = header + headerSize;
    return true;
}

QByteArray DriverS7_200_PPI::readBytes(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return readItems(dev, cmd, kByteRead);
}

QByteArray DriverS7_200_PPI::readWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return readItems(dev, cmd, kWordRead);
}

QByteArray DriverS7_200_PPI::readDWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    return readItems(dev, cmd, kDWordRead);
}

QByteArray DriverS7_200_PPI::readBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (prefix == "C" || prefix == "T")
        return readObjectBits(dev, cmd, prefix);
    return readMemoryBits(dev, cmd, prefix);
}

QByteArray DriverS7_200_PPI::readItems(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                       const PpiReadKind &kind)
{
    const QByteArray prefix = ExtractPrefixSymbol(cmd.address);
    if (S7_200_PPIIsObj(prefix))
        return readObjects(dev, cmd, prefix, kind);
    return readMemory(dev, cmd, prefix, kind);
}

QByteArray DriverS7_200_PPI::readMemory(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                        const QByteArray &prefix, const PpiReadKind &kind)
{
    const unsigned int byteCount = static_cast<unsigned int>(kind.unit) * static_cast<unsigned short>(cmd.count);
    const PpiBytes frame =
            S7_200_PPIPackReadBytesReq(ReferenceCounter(pduReference), station(dev), source(dev), prefix,
                                       S7_200_PPIExtractByteAddress(cmd.address), byteCount);
    PpiAnswer answer;
    if (!exchange(dev, frame, kind.headerFault, answer))
        return QByteArray();
    if (!S7_200_PPIRspItemFits(answer.parameters, kLengthInBits, answer.held())) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return QByteArray();
    }
    unsigned char code = 0;
    const QByteArray data = S7_200_PPIGetRspBytes(answer.parameters, prefix, code);
    if (code != kSuccess) {
        setCommError(S7_200_PPIReadRspErrorCodeToStr(code));
        if (kind.logsRefusedItem)
            LOG_FAILURE();
        return QByteArray();
    }
    if (data.isEmpty()) {
        setCommError(QLatin1String(kind.noData));
        if (kind.logsNoData)
            LOG_FAILURE();
        return QByteArray();
    }
    return fitted(data, qint64(kind.unit) * cmd.count);
}

QByteArray DriverS7_200_PPI::readObjects(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                         const QByteArray &prefix, const PpiReadKind &kind)
{
    const qint64 byteCount = qint64(kind.unit) * cmd.count;
    PpiAnswer answer;
    if (!exchangeForObjects(dev, cmd, prefix, objectsFor(prefix, static_cast<unsigned int>(byteCount)), answer))
        return QByteArray();
    if (prefix == "HC") {
        const QByteArray values = decodeHighSpeedCounters(answer);
        return kind.fitsHighSpeedCounters && !errorFlag ? fitted(values, byteCount) : values;
    }
    std::vector<S7_200_PPI_Timer> records;
    if (!decodeRecords(answer, prefix, records))
        return QByteArray();
    return kind.fitsRecords ? fitted(valuesOf(records), byteCount) : valuesOf(records);
}

QByteArray DriverS7_200_PPI::readMemoryBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                            const QByteArray &prefix)
{
    unsigned int byteAddress = 0;
    unsigned int firstBit = 0;
    S7_200_PPIExtractAddress(cmd.address, byteAddress, firstBit);
    const unsigned int byteCount = NumOfBitsToNumOfBytes(firstBit, static_cast<unsigned int>(cmd.count));
    const PpiBytes frame =
            S7_200_PPIPackReadBytesReq(ReferenceCounter(pduReference), station(dev), source(dev), prefix,
                                       byteAddress, static_cast<unsigned short>(byteCount));
    PpiAnswer answer;
    if (!exchange(dev, frame, "invalid response", answer))
        return QByteArray();
    QByteArray bits;
    if (!S7_200_PPIRspItemFits(answer.parameters, kLengthInBits, answer.held())
        || !S7_200_PPIGetRspBits(answer.parameters, firstBit, cmd.count, bits)) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return QByteArray();
    }
    return bits;
}

// A timer's or counter's bit is its status.
QByteArray DriverS7_200_PPI::readObjectBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                            const QByteArray &prefix)
{
    PpiAnswer answer;
    if (!exchangeForObjects(dev, cmd, prefix, static_cast<unsigned int>(cmd.count), answer))
        return QByteArray();
    if (prefix == "C")
        qDebug("%s:%d:", __FILE__, __LINE__);
    std::vector<S7_200_PPI_Timer> records;
    if (!decodeRecords(answer, prefix, records))
        return QByteArray();
    QByteArray bits;
    bits.reserve(static_cast<int>(records.size()));
    for (size_t i = 0; i < records.size(); ++i)
        bits.append(static_cast<char>(records[i].status));
    return bits;
}

bool DriverS7_200_PPI::exchangeForObjects(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd,
                                          const QByteArray &prefix, unsigned int count, PpiAnswer &answer)
{
    const PpiBytes frame =
            S7_200_PPIPackReadObjectsReq(ReferenceCounter(pduReference), station(dev), source(dev), prefix,
                                         S7_200_PPIExtractByteAddress(cmd.address), static_cast<unsigned short>(count));
    return exchange(dev, frame, "invalid response", answer);
}

QByteArray DriverS7_200_PPI::decodeHighSpeedCounters(const PpiAnswer &answer)
{
    if (!S7_200_PPIRspItemFits(answer.parameters, kLengthInBytes, answer.held())) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return QByteArray();
    }
    unsigned char code = 0;
    const QByteArray values = S7_200_PPIGetRspHSC(answer.parameters, code);
    if (code != kSuccess) {
        setCommError(S7_200_PPIReadRspErrorCodeToStr(code));
        LOG_FAILURE();
        return QByteArray();
    }
    if (values.isEmpty()) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
    }
    return values;
}

// The timers or counters of the answer; at least one, or the reason is recorded.
bool DriverS7_200_PPI::decodeRecords(const PpiAnswer &answer, const QByteArray &prefix,
                                     std::vector<S7_200_PPI_Timer> &records)
{
    if (!S7_200_PPIRspItemFits(answer.parameters, kLengthInBytes, answer.held())) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return false;
    }
    unsigned char code = 0;
    const bool decoded = prefix == "C" ? S7_200_PPIGetRspCounters(answer.parameters, records, code)
                                       : S7_200_PPIGetRspTimers(answer.parameters, records, code);
    if (!decoded) {
        setCommError(QLatin1String("invalid PLC response")); // recorded, but not logged
        return false;
    }
    if (records.empty()) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return false;
    }
    return true;
}

// The data cut to size bytes, or extended to it with zero bytes. A size that no array can have
// counts as a broken answer.
QByteArray DriverS7_200_PPI::fitted(const QByteArray &data, qint64 size)
{
    if (size <= data.size())
        return data.left(static_cast<int>(qMax(size, qint64(0))));
    try {
        if (size > INT_MAX)
            throw std::bad_alloc();
        QByteArray extended(static_cast<int>(size), '\0');
        memcpy(extended.data(), data.constData(), static_cast<size_t>(data.size()));
        return extended;
    } catch (const std::bad_alloc &) {
        setCommError(QLatin1String("invalid response"));
        LOG_FAILURE();
        return QByteArray();
    }
}
