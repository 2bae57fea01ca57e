// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "abstract_device_interface.h"

AbstractDeviceInterface::~AbstractDeviceInterface() {}
