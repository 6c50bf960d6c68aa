#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

/// Ends a test for want of a tool or a part of it. Where everything is installed that the tests use, which the variable
/// CI says, that is a failure: a test that nobody sees skipped checks nothing.
#define OSTREL_SKIP_FOR_WANT_OF(tool)                                                                                  \
    do {                                                                                                               \
        if (std::getenv("CI"))                                                                                         \
            FAIL() << (tool) << " is missing, and this is CI";                                                         \
        else                                                                                                           \
            GTEST_SKIP() << (tool) << " is missing";                                                                   \
    } while (false)
