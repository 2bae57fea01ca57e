// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What somebody who mistyped a word may have meant.

#ifndef HOST_TEXT_NEAREST_WORD_H
#define HOST_TEXT_NEAREST_WORD_H

#include <string>
#include <vector>

namespace host {

// The word that differs in case and hyphens in front only, or the only one that begins like the text, or the
// first one of the nearest by letters that are missing, too many, other or exchanged. Empty when none is like
// the text.
std::string nearestWord(const std::string &text, const std::vector<std::string> &words);

} // namespace host

#endif
