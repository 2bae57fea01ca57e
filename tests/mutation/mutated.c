/* Copyright (c) 2026 The s7ppi authors
 * SPDX-License-Identifier: MIT
 *
 * Linked into every program that has mutants in it: MUTANT=number in the environment chooses one, and each place that
 * is come to leaves a 1 in the file MUTANTS_REACHED, a byte for each number. The file is mapped, so that a program that
 * is killed has told all. */

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

static unsigned chosen;
static unsigned size;
static unsigned char *reached;

__attribute__((visibility("hidden"))) int s7ppi_mutated(unsigned number)
{
    if (number < size)
        reached[number] = 1;
    return number == chosen;
}

/* Before the constructors of the programs' own objects. */
__attribute__((constructor(101))) static void look_at_environment(void)
{
    const char *number = getenv("MUTANT");
    const char *file = getenv("MUTANTS_REACHED");
    if (number)
        chosen = (unsigned)strtoul(number, NULL, 10);
    const int descriptor = file ? open(file, O_RDWR | O_CLOEXEC) : -1;
    if (descriptor < 0)
        return;
    struct stat status;
    if (fstat(descriptor, &status) == 0 && status.st_size > 0) {
        void *mapped = mmap(NULL, (size_t)status.st_size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (mapped != MAP_FAILED) {
            reached = mapped;
            size = (unsigned)status.st_size;
        }
    }
    close(descriptor);
}
