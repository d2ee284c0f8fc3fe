// A test-only allocator interposer for programs linked with
// -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc,--wrap=strdup,--wrap=free
// (qx25_allocation_test in tests/CMakeLists.txt). While armed it counts the
// allocations made by the code linked into the program (the library's
// objects included) and makes the n-th one fail; it also keeps the blocks
// allocated while armed, so that a test can see that every one was freed.
// It composes with AddressSanitizer: the real functions are the sanitizer's.
#pragma once

#include <cstddef>
#include <functional>

namespace qx25test {

class failing_allocator {
  public:
    // From now on the n-th allocation (1 for the first) fails; n = 0 counts
    // without failing.
    static void arm(long n);
    static void disarm();
    // Allocations counted since arm(), the failed one included.
    static long counted();
    // Whether the n-th allocation was reached and made to fail, and the size
    // it asked for (count times size for calloc).
    static bool failed();
    static std::size_t failed_size();
    // Blocks allocated while armed that are not freed yet.
    static std::size_t live_blocks();
    // Forgets the blocks still live (for memory a test keeps on purpose).
    static void forget_live_blocks();
};

// Runs `operation` with allocation n failing for n = 1, 2, ... until a run
// completes without reaching its n-th allocation; `check`, when given, is
// called after every run, unarmed, with n and whether the injected failure
// happened. Returns the number of allocations of the complete run.
long for_each_allocation_failure(const std::function<void()> &operation,
                                 const std::function<void(long n, bool failed)> &check = {});

} // namespace qx25test
