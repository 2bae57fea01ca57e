// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// A test class that shares its program with others, for s7ppi_add_tests(). At the end of its file, in place
// of QTEST_APPLESS_MAIN:
//
//    TEST_CLASS(TestBits)
//    #include "test_bits.moc"
//
// The program's first argument names the class to run, the others are Qt Test's:
//
//    toolkit_tests TestBits shiftsToTheLeft -v2

#ifndef TESTS_SUPPORT_TEST_CLASS_H
#define TESTS_SUPPORT_TEST_CLASS_H

#include <QtTest>

class TestClass
{
public:
    using Run = int (*)(int argc, char **argv);

    TestClass(const char *name, Run run);

    // Null when the program has none of that name.
    static const TestClass *find(const char *name);
    static void printNames();

    const Run run;

private:
    const char *const name;
    const TestClass *const next;
};

#define TEST_CLASS(Class)                                                                                    \
    static int run##Class(int argc, char **argv)                                                             \
    {                                                                                                        \
        Class test;                                                                                          \
        return QTest::qExec(&test, argc, argv);                                                              \
    }                                                                                                        \
    static const TestClass registered##Class(#Class, run##Class);

#endif
