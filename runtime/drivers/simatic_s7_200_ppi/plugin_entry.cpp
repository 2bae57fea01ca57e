// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What a host finds in the library besides the contract and the toolkit:
//
//   CreateDriver                         a new driver on every call
//   qt_plugin_instance                   the one driver of Qt's plug-in loader: written by moc for Qt 5
//                                        and 6, in plugin_instance_qt4.cpp for Qt 4
//   qt_plugin_query_verification_data    what Qt 4's loader compares first

#include "s7_200_ppi.h"
#include "verification_text.h"

namespace {

// Qt 4's loader and the tools of a panel's maker look for the text in a section of its own.
__attribute__((section(".qtplugin"), used)) const char kVerificationText[] = VERIFICATION_TEXT;

} // namespace

DriverInterface *CreateDriver()
{
    return new DriverS7_200_PPI;
}

extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data();

const char *qt_plugin_query_verification_data()
{
    return kVerificationText;
}
