// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// JSON, and what Qt's texts and the controller's numbers are in it.

#ifndef HOST_TEXT_JSON_H
#define HOST_TEXT_JSON_H

#include <nlohmann/json.hpp>

#include <QString>

namespace host {

// An object whose members keep their order.
using Json = nlohmann::ordered_json;

inline Json jsonText(const QString &text)
{
    return text.toStdString();
}

// The number with digits that tell it apart, of a float as few as do. JSON has no numbers for "inf", "-inf"
// and "nan", which are texts.
Json jsonNumber(float number);
Json jsonNumber(double number);

} // namespace host

#endif
