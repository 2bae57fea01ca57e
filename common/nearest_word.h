// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// What somebody who mistyped a word may have meant.

#ifndef COMMON_NEAREST_WORD_H
#define COMMON_NEAREST_WORD_H

#include <string>
#include <vector>

namespace common {

// The word that was probably meant: the one that only capitals and hyphens in front set apart, or the only
// one that begins like the text, or the one that takes the fewest changes, if that is at most one for every
// three letters; the first one of equals. A change is a letter that is missing, too many or another one, or
// two neighbours that are exchanged. Empty when none is like the text.
std::string likelyWord(const std::string &text, const std::vector<std::string> &words);

} // namespace common

#endif
