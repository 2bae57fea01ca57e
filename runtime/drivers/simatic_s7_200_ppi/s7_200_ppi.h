// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The driver object: reads and writes the memory of a Simatic S7-200 over PPI.

#ifndef S7_200_PPI_H
#define S7_200_PPI_H

#include "driver_interface.h"
#include "qt_compat.h"

#include <QObject>

// The panel is PPI master station 0; the controller's station comes from the port. One object serves
// one host thread at a time; it keeps no port and starts no thread.
class DriverS7_200_PPI : public QObject, public DriverInterface
{
    Q_OBJECT
    Q_INTERFACES(DriverInterface)
    Q_PLUGIN_METADATA(IID DRIVER_INTERFACE_ID)

public:
    DriverS7_200_PPI();

    int totalSize() override;
    int write(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data) override;
    QByteArray read(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd) override;
    bool initialize(AbstractDeviceInterface *dev) override;
    bool validation(const QString &text) override;
    QString name() override;
    QString vender() override;
    QString getVersionNumber() override;
    int supportedCommunicationFlags() override;
    DeviceSetting *getDefaultSerialDeviceSetting() override;
    DriverSetting *getDefaultDriverSetting() override;
    QString getStringBasedDefaultDriverSetting() override;
    void setDebugMode(bool on) override;
    int getBlockAccessSize() override;
    int getBitBlockAccessSize() override;
    QString getLastError() override;
    bool hasError() override;
    QObject *getThisObject() override;

    // One attempt of a read, by type of data: the data in host byte order, empty on failure, the
    // reason recorded. readBits returns one byte per bit; it and the others are called by read().
    QByteArray readBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd);
    QByteArray readBytes(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd);
    QByteArray readWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd);
    QByteArray readDWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd);

    // One attempt of a write, by type of data; true when the controller took it, otherwise the reason is
    // recorded. writeBits takes one byte per bit. write() calls them all but writeDWords: double words
    // go through writeWords, and the address decides the width on the line.
    bool writeBits(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data);
    bool writeBytes(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data);
    bool writeWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data);
    bool writeDWords(AbstractDeviceInterface *dev, const CommunicatorCommand &cmd, const QByteArray &data);

    // One attempt of a write to memory, in the elements of the prefix.
    bool defaultWriteBytes(AbstractDeviceInterface *dev, const QByteArray &prefix, unsigned int byteAddress,
                           const QByteArray &data);

    // Error state of the attempt under way.
    void clearError();
    void setCommError(const QString &text);

    // The 12 ms of silence before every frame.
    void delayBeforeReq();

    // The panel's own station address: 0, whatever the port.
    int getSourceAddr(AbstractDeviceInterface *dev);

    // Layer-2 checks of what the controller sent. True when it is as it must be; otherwise false with
    // the reason recorded. processSD1NAK has nothing to accept and always records one. No check reads
    // more than 262 bytes of buf.
    bool checkSC(const unsigned char *buf, int len);
    void processSD1NAK(const unsigned char *buf, int len, unsigned char expectedDA, unsigned char expectedSA);
    bool checkMinSD2Rsp(const unsigned char *buf, int len, unsigned char expectedDA,
                        unsigned char expectedSA);
    bool checkSD2ReadWriteRsp(const unsigned char *buf, int len, int expectedLen);

private:
    bool errorFlag;
    bool debugMode; // kept for the host; failures are logged whether or not it is set
    QString lastError;
    int pduReference; // the low 16 bits count the requests
};

#endif
