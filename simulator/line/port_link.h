// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A symbolic link that gives a pseudo-terminal a lasting name, as the kernel gives it another one in every
// run. The link goes when this object goes, unless it leads elsewhere by then.

#ifndef SIMULATOR_LINE_PORT_LINK_H
#define SIMULATOR_LINE_PORT_LINK_H

#include <string>

namespace sim {

class PortLink
{
public:
    // Replaces a link that leads nowhere, left behind by a program that was killed, but nothing else. Throws
    // LineError.
    PortLink(const std::string &path, const std::string &target);
    ~PortLink();

    PortLink(const PortLink &) = delete;
    PortLink &operator=(const PortLink &) = delete;

private:
    const std::string path;
    const std::string target;
};

} // namespace sim

#endif
