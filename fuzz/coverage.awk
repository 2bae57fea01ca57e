# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# Reads coverage as lcov writes it, for scripts/fuzz: which lines of a fuzzer's code its corpus has run.
#
#   fuzzer   its name
#   code     its rows of fuzz/code.txt, a semicolon behind each: "FILE [FUNCTION...]; FILE;"
#   least    percent of the lines that it must have run

BEGIN {
    rows = split(code, row, ";")
    for (i = 1; i <= rows; ++i) {
        words = split(row[i], word, " ")
        if (words == 0)
            continue
        wanted[word[1]] = 1
        for (j = 2; j <= words; ++j)
            functions[word[1]] = functions[word[1]] " " length(word[j]) word[j]
    }
}

# Paths are relative to the build.
/^SF:/ {
    file = ""
    for (name in wanted)
        if (substr($0, length($0) - length(name)) == "/" name)
            file = name
    delete starts
    next
}
file == "" { next }

# FN:LINE,NAME; names are mangled, with their length in front.
/^FN:/ {
    comma = index($0, ",")
    starts[substr($0, 4, comma - 4) + 0] = starts[substr($0, 4, comma - 4) + 0] substr($0, comma)
}

# Lines of a function follow the line that it begins with, up to the next one's.
function is_wanted(line, begin, start, names, i, count, name) {
    if (functions[file] == "")
        return 1
    begin = -1
    for (start in starts)
        if (start + 0 <= line && start + 0 > begin)
            begin = start + 0
    count = split(functions[file], names, " ")
    for (i = 1; i <= count; ++i)
        if (begin >= 0 && index(starts[begin], names[i]) > 0)
            return 1
    return 0
}

/^DA:/ {
    split(substr($0, 4), part, ",")
    if (!is_wanted(part[1] + 0))
        next
    seen[file] = 1
    ++lines
    if (part[2] + 0 > 0)
        ++reached
    else
        missed[file] = missed[file] " " part[1]
}

END {
    for (name in wanted)
        if (!(name in seen)) {
            printf "%s: has no lines of %s, which fuzz/code.txt names\n", fuzzer, name
            failed = 1
        }
    if (lines == 0) {
        printf "%s: fuzz/code.txt names no code for it\n", fuzzer
        exit 1
    }
    printf "%s: %.1f %% of %d lines\n", fuzzer, 100 * reached / lines, lines
    for (name in missed)
        printf "    not reached: %s:%s\n", name, missed[name]
    exit failed || 100 * reached < least * lines
}
