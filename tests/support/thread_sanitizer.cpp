// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Qt Test watches its programs from a thread of its own. Qt's libraries are not built with ThreadSanitizer,
// which therefore cannot see what keeps the end of that thread apart from the end of the program.

extern "C" __attribute__((visibility("default"))) const char *__tsan_default_suppressions();

const char *__tsan_default_suppressions()
{
    return "race:QWaitCondition::~QWaitCondition\n"
           "race:QTest::qRun\n";
}
