// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT

#include "test_class.h"

#include <cstdio>
#include <cstring>

namespace {

// Null before the first class of the program, whichever file that is in.
const TestClass *g_last = nullptr;

} // namespace

TestClass::TestClass(const char *name_, Run run_) : run(run_), name(name_), next(g_last)
{
    g_last = this;
}

const TestClass *TestClass::find(const char *name)
{
    const TestClass *found = g_last;
    while (found && std::strcmp(found->name, name) != 0)
        found = found->next;
    return found;
}

void TestClass::printNames()
{
    for (const TestClass *test = g_last; test; test = test->next)
        std::fprintf(stderr, "  %s\n", test->name);
}

int main(int argc, char **argv)
{
    const TestClass *const test = argc > 1 ? TestClass::find(argv[1]) : nullptr;
    if (!test) {
        std::fprintf(stderr, "The first argument names the class to run, one of\n");
        TestClass::printNames();
        return 2;
    }
    // Qt Test gets the arguments without the name.
    argv[1] = argv[0];
    return test->run(argc - 1, argv + 1);
}
