#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What each fuzzer gives the driver.

/// Reads one input; ends the process when a law of the reader is broken.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Inputs to begin with, at least one.
std::vector<std::string> fuzzSeeds();

/// Ends the process with the place and the law that was broken.
#define REQUIRE_LAW(law)                                                                           \
    do {                                                                                           \
        if (!(law)) {                                                                              \
            std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #law);                 \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
