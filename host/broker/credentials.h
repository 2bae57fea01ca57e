// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// User and password for a broker. They come from the environment, from a file or from what systemd keeps for
// a service, never from the command line, which every user of the machine can see.
//
//   user = press3        the lines of a file; # begins a comment
//   password = secret

#ifndef HOST_BROKER_CREDENTIALS_H
#define HOST_BROKER_CREDENTIALS_H

#include <QString>

#include <optional>

namespace host {

struct Credentials
{
    QString user;
    QString password; // may be empty
    QString origin;   // where both come from, as a sentence goes on after "check"
};

// Where to look when a broker refuses them: the origin, or what can be set where none are.
QString credentialsHint(const std::optional<Credentials> &credentials);

// Returns what the file says when one is named, otherwise what S7PPI_MQTT_USER and S7PPI_MQTT_PASSWORD say,
// or the service's file mqtt in CREDENTIALS_DIRECTORY, and nothing when none of them does. Fails on a file
// that says something else.
std::optional<Credentials> findCredentials(const std::optional<QString> &fileName);

// The same of a file's text.
Credentials parseCredentials(const QString &fileName, const QString &text);

} // namespace host

#endif
