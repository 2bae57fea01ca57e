// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What the driver's error texts mean to the user.

#ifndef HOST_DRIVER_DRIVER_FAULT_H
#define HOST_DRIVER_DRIVER_FAULT_H

#include "host/base/failure.h"

#include <QString>

namespace host {

// The failure behind a driver's error text. Texts that are not known count as a broken answer.
Failure driverFailure(const QString &errorText);

// The failure behind the error text of any other driver, whose words mean nothing here. Whether anything came
// is all that is known of the answer.
Failure otherDriverFailure(const QString &errorText, bool hasHeard);

// The failure of a request that the driver refused before it sent anything: the line has no part in it.
Failure unsentFailure(const QString &errorText);

// Whether a failure tells how the controller is for the moment. The same request may be answered later.
bool isPassing(const Failure &failure);

} // namespace host

#endif
