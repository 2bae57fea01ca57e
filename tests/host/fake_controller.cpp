// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A controller that does as it is told, for the faults that a good one never shows.
//
//   fake_controller REACTION...
//
// Opens a pseudo-terminal, prints its name, and meets each frame that arrives with the next reaction:
//
//   e5            these bytes, in hex
//   300:e5        the same after 300 ms
//   silence       nothing
//   hang-up       goes away
//
// After the last reaction it only tells of each frame on stdout, until it is ended.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace {

// Milliseconds without a byte that end a frame.
constexpr int kFrameGap = 5;
constexpr int kForever = -1;

bool waitForByte(int line, int milliseconds)
{
    pollfd readable = {line, POLLIN, 0};
    return poll(&readable, 1, milliseconds) > 0;
}

void receiveFrame(int line)
{
    int patience = kForever;
    while (waitForByte(line, patience)) {
        char byte = 0;
        if (read(line, &byte, 1) != 1)
            std::exit(0);
        patience = kFrameGap;
    }
}

void sendHex(int line, const std::string &digits)
{
    std::vector<char> bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(char(std::stoi(digits.substr(i, 2), nullptr, 16)));
    if (write(line, bytes.data(), bytes.size()) != ssize_t(bytes.size()))
        std::exit(1);
}

void react(int line, const std::string &reaction)
{
    if (reaction == "hang-up")
        std::exit(0);
    if (reaction == "silence")
        return;
    const size_t colon = reaction.find(':');
    if (colon != std::string::npos)
        std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(reaction)));
    sendHex(line, colon == std::string::npos ? reaction : reaction.substr(colon + 1));
}

} // namespace

int main(int argc, char *argv[])
{
    int line = -1;
    int portEnd = -1; // stays open, so that the line outlives a program that closes its port
    char name[128] = {};
    termios raw = {};
    cfmakeraw(&raw);
    if (openpty(&line, &portEnd, name, &raw, nullptr) != 0)
        return 1;
    std::printf("%s\n", name);
    std::fflush(stdout);
    for (int i = 1; i < argc; ++i) {
        receiveFrame(line);
        react(line, argv[i]);
    }
    while (true) {
        receiveFrame(line);
        std::puts("unanswered");
        std::fflush(stdout);
    }
}
