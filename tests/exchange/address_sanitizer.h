// Copyright (c) 2026 The s7ppi authors
// SPDX-License-Identifier: MIT
//
// Defines UNDER_ADDRESS_SANITIZER in a build with AddressSanitizer, whose allocator is not the system's.

#ifndef TESTS_ADDRESS_SANITIZER_H
#define TESTS_ADDRESS_SANITIZER_H

#if defined(__SANITIZE_ADDRESS__)
#define UNDER_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UNDER_ADDRESS_SANITIZER
#endif
#endif

#endif
