// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
/// @file
/// An outgoing frame, put together section by section.

#ifndef TOOLS_TX_PACKAGE_H
#define TOOLS_TX_PACKAGE_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

/// A frame and the sizes of its sections (a header, an address, data, a check value...), so that a driver can
/// read a section back, compute a check value or print the frame. Sections are counted from 0.
///
/// In the list of sizes, an entry of 0 or more is a section's size in bytes. An entry -k says that the first
/// byte of section k, a length field elsewhere in the frame, is the size.
///
/// Every append returns true. Only when memory does not reach it returns false, and the package is as before.
class Q_DECL_EXPORT TxPackage
{
public:
    /// An empty frame without sections.
    TxPackage();
    ~TxPackage();

    /// Appends the bytes as one section.
    bool appendSection(const QByteArray &section);

    /// Appends a section of 1 byte.
    bool appendByte(unsigned char value);

    /// Appends a section of 2 bytes, least significant first.
    bool appendWord(unsigned short value);

    /// Appends a section of 4 bytes, least significant first.
    bool appendDWord(unsigned int value);

    /// Appends the text in Latin-1 as one section, a byte for each character.
    bool appendString(const QString &text);

    /// Appends a section of 2 bytes: value as two upper-case hexadecimal digits in ASCII.
    bool appendByte2Ascii(unsigned char value);

    /// Appends the sum of all bytes so far, modulo 256, as a section of 1 byte.
    bool appendLRCByte();

    /// Appends the same sum as two upper-case hexadecimal digits in ASCII, a section of 2 bytes.
    bool appendLRCAscii();

    /// Appends the exclusive or of all bytes so far as two upper-case hexadecimal digits in ASCII, a section
    /// of 2 bytes. Kept: the number says nothing (fcsDoesNotDependOnItsArgument).
    bool appendFCSAscii(int);

    /// The exclusive or of the package's bytes but the last n; of all for an n below 1, 0 when nothing is
    /// left and for a null package.
    static unsigned char calculateFCS(TxPackage *package, int n);

    /// The number of entries in the list of sizes.
    int numberOfSections() const;

    /// The number of bytes in the frame.
    int totalSize() const;

    /// Whether there is a section i.
    bool validSectionNumber(int i) const;

    /// Where section i begins, in bytes from the frame's start; -1 when there is none. Kept: it is the sum of
    /// the entries in front as they are stored, so a size given elsewhere counts as the negative number that
    /// says where (referenceInFrontCountsAsStored). A sum that is no int is INT_MAX or INT_MIN.
    int sectionStartIndex(int i) const;

    /// The size of section i in bytes, not more than 255 where a byte of the frame gives it; 0 when there is
    /// no such section. A size is looked up through 256 sections at most; a longer way, like one that leads
    /// back to where it came from, gives 0.
    int sectionSize(int i) const;

    /// A copy of the bytes of section i, as far as the frame has them; empty when there is no such section.
    QByteArray dataAt(int i) const;

    /// The first byte as an unsigned value, 0 for an empty array.
    static int arrayToInt(const QByteArray &bytes);

    /// Replaces the list of sizes, and cuts the frame or fills it with zero bytes to the sum of the entries
    /// as they stand; a sum below 0 counts as 0. Nothing changes when no frame can be so long or memory does
    /// not reach.
    void setSectionSize(const QList<int> &sizes);

    /// Replaces the bytes of the frame and leaves the list of sizes alone. Always true.
    bool setData(const QByteArray &bytes);

    /// Replaces the bytes of the frame by length bytes at bytes, which may lie in the frame itself; none for
    /// a null pointer or a length below 1. Leaves the list of sizes alone. True but when memory does not
    /// reach, when the frame stays.
    bool setData(char *bytes, int length);

    /// The package's own bytes, for changing them in place: totalSize() of them, there until the next call
    /// that changes the package.
    char *data();

    /// A copy of the bytes.
    QByteArray byteArrayData() const;

    /// The text of dumpByteArray(): "(0Xa 0Xff ) : " and the bytes as Latin-1 up to the first zero byte.
    QString toString() const;

    /// Back to an empty frame without sections.
    void clearAll();

private:
    Q_DISABLE_COPY(TxPackage)

    // No part of the library's interface: free to change.
    Q_DECL_HIDDEN bool append(const char *section, int size);
    template <typename Value> Q_DECL_HIDDEN bool appendLittleEndian(Value value);
    Q_DECL_HIDDEN bool appendHexadecimal(unsigned char value);
    Q_DECL_HIDDEN int sizeThrough(int i, int lookups) const;
    Q_DECL_HIDDEN QByteArray bytesOf(int i, int size) const;
    Q_DECL_HIDDEN const unsigned char *unsignedBytes() const;

    QByteArray *frame;
    QList<int> sectionSizes;
    unsigned int appendedBytes; // since clearAll(); for people at a debugger, no operation reads it
};

#endif
