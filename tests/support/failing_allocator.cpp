#include "failing_allocator.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *block, std::size_t size);
char *__real_strdup(const char *text);
void __real_free(void *block);
}

namespace {

bool armed = false;
long fail_at = 0;
long count = 0;
bool injected = false;
std::size_t injected_size = 0;

// The live set lives on the C++ heap, which the wrapping does not reach:
// operator new allocates inside libstdc++, linked dynamically. It is never
// destroyed: blocks are still freed while the process exits.
std::unordered_set<void *> &live() {
    static auto *blocks = new std::unordered_set<void *>;
    return *blocks;
}

// Counts an allocation; false when this one is to fail.
bool may_allocate(std::size_t size) {
    if (!armed) return true;
    ++count;
    if (count == fail_at) {
        injected = true;
        injected_size = size;
        errno = ENOMEM;
        return false;
    }
    return true;
}

void *remember(void *block) {
    if (armed && block != nullptr) live().insert(block);
    return block;
}

void forget(void *block) {
    if (block != nullptr) live().erase(block);
}

} // namespace

extern "C" {

void *__wrap_malloc(std::size_t size) {
    return may_allocate(size) ? remember(__real_malloc(size)) : nullptr;
}

void *__wrap_calloc(std::size_t n, std::size_t size) {
    return may_allocate(n * size) ? remember(__real_calloc(n, size)) : nullptr;
}

void *__wrap_realloc(void *block, std::size_t size) {
    if (!may_allocate(size)) return nullptr;
    void *moved = __real_realloc(block, size);
    if (moved != nullptr) {
        forget(block);
        remember(moved);
    }
    return moved;
}

char *__wrap_strdup(const char *text) {
    return may_allocate(std::strlen(text) + 1) ? static_cast<char *>(remember(__real_strdup(text)))
                                               : nullptr;
}

void __wrap_free(void *block) {
    forget(block);
    __real_free(block);
}

} // extern "C"

namespace qx25test {

void failing_allocator::arm(long n) {
    fail_at = n;
    count = 0;
    injected = false;
    injected_size = 0;
    armed = true;
}

void failing_allocator::disarm() {
    armed = false;
}

long failing_allocator::counted() {
    return count;
}

bool failing_allocator::failed() {
    return injected;
}

std::size_t failing_allocator::failed_size() {
    return injected_size;
}

std::size_t failing_allocator::live_blocks() {
    return live().size();
}

void failing_allocator::forget_live_blocks() {
    live().clear();
}

long for_each_allocation_failure(const std::function<void()> &operation,
                                 const std::function<void(long n, bool failed)> &check) {
    for (long n = 1;; ++n) {
        failing_allocator::arm(n);
        operation();
        failing_allocator::disarm();
        bool failed = failing_allocator::failed();
        if (check) check(n, failed);
        if (!failed) return failing_allocator::counted();
        if (n > 100000) {
            ADD_FAILURE() << "the operation never completes";
            return -1;
        }
    }
}

} // namespace qx25test
