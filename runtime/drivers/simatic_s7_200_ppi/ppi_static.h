// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What exists from the moment the library is loaded. Written then, only read afterwards.

#ifndef PPI_STATIC_H
#define PPI_STATIC_H

#include <QByteArray>
#include <QHash>
#include <QString>

extern const QString VERSION_STRING;

// Area prefix of an address text to the area code on the wire. Keys are case-sensitive.
extern QHash<QByteArray, unsigned char> g_s7_200_ppi_area_table;

// An entry of the table as it was filled by the letters of its prefix, null when there is none. It is
// found by a number instead of a text, and a prefix copied from its key shares it and allocates nothing.
// The letters stand in the number behind kNoLetters as they do in the text, the last one lowest.
const QHash<QByteArray, unsigned char>::const_iterator *S7_200_PPIAreaTableEntry(quint32 letters);

// Whether nobody has changed the table since.
bool S7_200_PPIAreaTableIsAsFilled();

enum PpiLetters {
    kNoLetters = 1,
    kLongestPrefix = 3 // of the table
};

inline quint32 ppiAppendLetter(quint32 letters, unsigned int letter)
{
    return letters << 8 | letter;
}

// Fills the area table when it is constructed.
class S7_200_PPI_AreaTableInitializer
{
public:
    S7_200_PPI_AreaTableInitializer();
};

extern S7_200_PPI_AreaTableInitializer g_s7_200_ppi_area_table_initializer;

#endif
