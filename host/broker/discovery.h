// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// The records by which Home Assistant finds items by itself, one for each, retained under
//
//   PREFIX/COMPONENT/LINE/NAME/config
//
// The component is sensor, or binary_sensor for a bit; where commands are allowed number, switch or text.
// LINE and NAME are the topic of the line and the name of the item in the letters that are allowed there.

#ifndef HOST_BROKER_DISCOVERY_H
#define HOST_BROKER_DISCOVERY_H

#include "host/broker/item_messages.h"

#include <QString>

#include <chrono>
#include <vector>

namespace host {

constexpr char kUsualDiscoveryPrefix[] = "homeassistant";

std::vector<Message> discoveryMessages(const std::vector<Tag> &tags,
                                       const std::vector<std::chrono::milliseconds> &intervals,
                                       const Topics &topics, PayloadForm form, const QString &prefix);

} // namespace host

#endif
