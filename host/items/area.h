// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The areas of the controller's memory: one table, which says everything that depends on the letters of an
// address.
//
//   letters       the bits    bytes, words, double words    one by one
//   I Q V M SM S  V10.3       VB10 VW10 VD10
//   AIW AQW                                                 AIW2, always words
//   T C HC                                                  T37, by their number

#ifndef HOST_ITEMS_AREA_H
#define HOST_ITEMS_AREA_H

#include <QList>
#include <QString>

#include <optional>

namespace host {

// Raw is an address of another driver: a text that means nothing here, and belongs to no area.
enum class AddressKind { Bit, Memory, Analog, Timer, Counter, HighSpeedCounter, Raw };

// Objects are addressed by a number of their own, everything else by the place of its first byte.
bool isObject(AddressKind kind);

struct Area
{
    QString letters;  // what they name alone is of the kind and width below
    QString name;     // for people
    AddressKind kind; // areas of bits can be named by bytes, words and double words, too
    int elementWidth; // bytes; bits have 1, the byte that carries one to the host

    bool hasBits() const { return kind == AddressKind::Bit; }

    // The letters of an address of whole bytes; only for areas that have bits.
    QString byteLetters() const { return letters + 'B'; }
};

// All areas, in the order in which a hint lists them.
const QList<Area> &areas();

// What the letters before the number of an address name.
struct AreaElement
{
    const Area &area;
    AddressKind kind;
    int width; // bytes
};

// Returns what the letters name, and nothing for letters that begin no address.
std::optional<AreaElement> elementNamed(const QString &letters);

// Returns the area that the letters of an address belong to. The letters must be those of a valid address.
const Area &areaOf(const QString &letters);

} // namespace host

#endif
