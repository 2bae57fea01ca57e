// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "exchanges.h"

#include "abstract_device_interface.h"

#include <string>

namespace bench {

namespace {

// Keeps the first frame that is sent and answers nothing.
class RecordingPort : public AbstractDeviceInterface
{
public:
    int receive(unsigned char *, int) override { return 0; }
    int send(const unsigned char *data, int length) override
    {
        frame = QByteArray(reinterpret_cast<const char *>(data), length);
        return length;
    }
    bool setOption(int, const QVariant &) override { return true; }
    int retry() override { return 0; }
    int stationId() override { return 2; }
    int delay() override { return 0; }

    QByteArray frame;
};

QByteArray answerFrame(const char *itemHex)
{
    const QByteArray item = QByteArray::fromHex(itemHex);
    const QByteArray head = QByteArray::fromHex("0002083203000000000002");
    const QByteArray tail = QByteArray::fromHex("0000");
    QByteArray covered = head;
    covered.append('\0').append(static_cast<char>(item.size() - 2)).append(tail).append(item);
    const char length = static_cast<char>(covered.size());
    QByteArray frame;
    frame.append('\x68').append(length).append(length).append('\x68').append(covered);
    return frame.append('\0').append('\x16'); // the port fills the check sum in
}

Exchange exchange(const char *name, int dataType, int count, const char *address, const char *itemHex,
                  const char *dataHex = "")
{
    Exchange made;
    made.name = name;
    made.command.dataType = dataType;
    made.command.count = count;
    made.command.address = QLatin1String(address);
    made.data = QByteArray::fromHex(dataHex);
    made.answer = answerFrame(itemHex);
    return made;
}

// A good read item of size bytes.
std::string memoryItem(int size)
{
    const QByteArray bits = QByteArray::number(size * 8, 16).rightJustified(4, '0');
    return "0401ff04" + bits.toStdString() + std::string(size_t(size) * 2, '5');
}

} // namespace

// The recording port never answers: that the driver logs it is no news.
static void ignoreMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

std::vector<Exchange> allExchanges(DriverInterface &driver)
{
    std::vector<Exchange> all = {
        exchange("read 4 bytes", kBytes, 4, "VB100", "0401ff04002011223344"),
        exchange("read 64 bytes", kBytes, 64, "VB100", memoryItem(64).c_str()),
        exchange("read 200 bytes", kBytes, 200, "VB100", memoryItem(200).c_str()),
        exchange("read 2 words", kWords, 2, "VW100", "0401ff04002011223344"),
        exchange("read 1 double word", kDoubleWords, 1, "VD100", "0401ff04002011223344"),
        exchange("read 8 bits", kBits, 8, "V100.0", "0401ff0400085a"),
        exchange("read 1 timer", kWords, 1, "T37", "0401ff090005020000012c"),
        exchange("read 1 counter", kWords, 1, "C5", "0401ff090003100005"),
        exchange("read 1 high-speed counter", kDoubleWords, 1, "HC0", "0401ff09000500000186a0"),
        exchange("write 4 bytes", kBytes, 4, "VB100", "0501ff", "11223344"),
        exchange("write 2 words", kWords, 2, "VW100", "0501ff", "11223344"),
        exchange("write 1 bit", kBits, 1, "V100.3", "0501ff", "01"),
        exchange("write 1 timer", kWords, 1, "T37", "0501ff", "2c01"),
    };
    const QtMessageHandler usual = qInstallMessageHandler(ignoreMessage);
    for (Exchange &one : all) {
        RecordingPort port;
        runDriver(driver, port, one);
        one.request = port.frame;
    }
    qInstallMessageHandler(usual);
    return all;
}

bool runDriver(DriverInterface &driver, AbstractDeviceInterface &port, const Exchange &exchange)
{
    if (exchange.isWrite())
        return driver.write(&port, exchange.command, exchange.data) != 0;
    return !driver.read(&port, exchange.command).isEmpty();
}

void runFloor(AbstractDeviceInterface &port, const Exchange &exchange)
{
    static const unsigned char poll[] = {0x10, 0x02, 0x00, 0x5C, 0x5E, 0x16};
    unsigned char buffer[262];
    port.setOption(kClearInput, QVariant(0));
    port.send(reinterpret_cast<const unsigned char *>(exchange.request.constData()),
              static_cast<int>(exchange.request.size()));
    port.receive(buffer, 1);
    port.setOption(kClearInput, QVariant(0));
    port.send(poll, static_cast<int>(sizeof poll));
    port.receive(buffer, 7);
    port.receive(buffer + 7, buffer[1] - 1);
}

} // namespace bench
