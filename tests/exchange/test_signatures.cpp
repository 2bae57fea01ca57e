// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The types of the driver's free functions. Whoever links them, a test bench of another maker for one, takes
// their addresses in these types; a change shows here as an error of the compiler or of the linker.

#include "simatic_s7_200_ppi/ppi_address.h"
#include "simatic_s7_200_ppi/ppi_layer2.h"
#include "simatic_s7_200_ppi/ppi_request.h"
#include "simatic_s7_200_ppi/ppi_response.h"
#include "test_class.h"

#include <QtTest>

#include <vector>

namespace {

typedef unsigned char Byte;
typedef unsigned short Word;
typedef unsigned int DWord;
typedef std::vector<S7_200_PPI_Timer> Records;

// Whether the function is of that type, which the compiler sees, and linked.
template <typename Type> bool isThere(Type *function)
{
    return function != nullptr;
}

} // namespace

class TestSignatures : public QObject
{
    Q_OBJECT

private slots:
    void addressTexts();
    void frames();
    void readRequests();
    void writeRequests();
    void answers();
};

void TestSignatures::addressTexts()
{
    QVERIFY(isThere<unsigned int(const QString &)>(S7_200_PPIExtractByteAddress));
    QVERIFY(isThere<bool(const QString &, DWord &, DWord &)>(S7_200_PPIExtractAddress));
    QVERIFY(isThere<bool(const QByteArray &)>(S7_200_PPIIsObj));
}

void TestSignatures::frames()
{
    QVERIFY(isThere<QByteArray(Byte, Byte)>(S7_200_PPIPackLayer2SD1Poll));
    QVERIFY(isThere<QByteArray(Byte, Byte, const QByteArray &)>(S7_200_PPIPackLayer2SD2Request));
    QCOMPARE(S7_200_PPIPackLayer2SD1Poll(2, 0).toHex(), QByteArray("1002005c5e16"));
}

void TestSignatures::readRequests()
{
    QVERIFY(isThere<QByteArray(Word &, Word)>(S7_200_PPIPackLayer7ReadReqHeader));
    QVERIFY(
        isThere<QByteArray(Byte, Word, const QByteArray &, DWord)>(S7_200_PPIPackLayer7ReadReqParamBlock));
    QVERIFY(
        isThere<QByteArray(Word &, const QByteArray &, DWord, Word)>(S7_200_PPIPackLayer7ReadBytesReqPDU));
    QVERIFY(
        isThere<QByteArray(Word &, const QByteArray &, DWord, Word)>(S7_200_PPIPackLayer7ReadWordsReqPDU));
    QVERIFY(
        isThere<QByteArray(Word &, const QByteArray &, DWord, Word)>(S7_200_PPIPackLayer7ReadDWordsReqPDU));
    QVERIFY(
        isThere<QByteArray(Word &, const QByteArray &, DWord, Word)>(S7_200_PPIPackLayer7ReadObjectsReqPDU));
    QVERIFY(
        isThere<QByteArray(Word &, Byte, Byte, const QByteArray &, DWord, Word)>(S7_200_PPIPackReadBytesReq));
    QVERIFY(isThere<QByteArray(Word &, Byte, Byte, const QByteArray &, DWord, Word)>(
        S7_200_PPIPackReadObjectsReq));
}

void TestSignatures::writeRequests()
{
    QVERIFY(isThere<QByteArray(Word &, Word, Word)>(S7_200_PPIPackLayer7WriteReqHeader));
    QVERIFY(isThere<QByteArray(const QByteArray &, DWord, Byte, Word)>(
        S7_200_PPIPackLayer7WriteByteWordDWordReqParamBlock));
    QVERIFY(isThere<QByteArray(const QByteArray &)>(S7_200_PPIPackLayer7WriteByteWordDWordReqDataBlock));
    QVERIFY(isThere<QByteArray(Word &, Byte, Byte, DWord, const QByteArray &)>(S7_200_PPIPackWriteTimersReq));
    QVERIFY(isThere<QByteArray(Word &, DWord, const QByteArray &)>(S7_200_PPIPackLayer7WriteCountersReqPDU));
    QVERIFY(
        isThere<QByteArray(Word &, Byte, Byte, DWord, const QByteArray &)>(S7_200_PPIPackWriteCountersReq));
    QVERIFY(
        isThere<QByteArray(const CommunicatorCommand &, const QByteArray &)>(DriverS7_200_PPIGetSafeData));
}

void TestSignatures::answers()
{
    QVERIFY(isThere<int(const Byte *, Word, Word &, Word &, Byte &, Byte &)>(
        S7_200_PPILayer2UnpackSD2ReadWriteRspHeader));
    QVERIFY(isThere<QByteArray(const Byte *, const QByteArray &, Byte &)>(S7_200_PPIGetRspBytes));
    QVERIFY(isThere<QByteArray(const Byte *, Byte &)>(S7_200_PPIGetRspHSC));
    QVERIFY(isThere<bool(const Byte *, Records &, Byte &)>(S7_200_PPIGetRspTimers));
    QVERIFY(isThere<bool(const Byte *, Records &, Byte &)>(S7_200_PPIGetRspCounters));
    QVERIFY(isThere<bool(const Byte *, Byte &)>(S7_200_PPICheckWriteRspParamData));
    QVERIFY(isThere<QString(Byte)>(S7_200_PPIReadRspErrorCodeToStr));
}

TEST_CLASS(TestSignatures)
#include "test_signatures.moc"
