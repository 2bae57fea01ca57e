// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "simulator/line/port_link.h"

#include "simulator/line/line.h"

#include <QString>

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace sim {

namespace {

// Whether a killed program has left the link. It leads nowhere then, or by chance to the new terminal, as the
// kernel gives names again.
bool isStale(const std::string &path, const std::string &target)
{
    std::error_code error;
    return fs::is_symlink(path, error) &&
           (!fs::exists(path, error) || fs::read_symlink(path, error) == target);
}

const char *hintFor(const std::string &path)
{
    std::error_code error;
    return fs::is_symlink(path, error) ? "end the other simulator, or remove the link"
                                       : "choose a name that is free, in a folder that may be written to";
}

} // namespace

PortLink::PortLink(const std::string &path_, const std::string &target_) : path(path_), target(target_)
{
    std::error_code error;
    if (isStale(path, target))
        fs::remove(path, error);
    fs::create_symlink(target, path, error);
    if (error)
        throw LineError(QString::fromLatin1("cannot make the link %1: %2")
                            .arg(QString::fromStdString(path), QString::fromStdString(error.message())),
                        QString::fromLatin1(hintFor(path)));
}

PortLink::~PortLink()
{
    std::error_code error;
    if (fs::read_symlink(path, error) == target) // else another program has taken the name over
        fs::remove(path, error);
}

} // namespace sim
