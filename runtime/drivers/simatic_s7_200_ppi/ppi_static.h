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

// Fills the area table when it is constructed.
class S7_200_PPI_AreaTableInitializer
{
public:
    S7_200_PPI_AreaTableInitializer();
};

extern S7_200_PPI_AreaTableInitializer g_s7_200_ppi_area_table_initializer;

#endif
