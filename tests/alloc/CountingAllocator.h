// Counts the calls of every form of the global operator new made by a
// thread while it counts (AllocationCounting), in this test program only:
// the operators are replaced in CountingAllocator.cpp, which is linked into
// mixora_alloc_tests and nothing else.
#pragma once

#include <cstdint>

namespace alloctest {

// While alive, allocations made by the constructing thread are counted.
class AllocationCounting {
  public:
    AllocationCounting();
    ~AllocationCounting();
    AllocationCounting(const AllocationCounting&) = delete;
    AllocationCounting& operator=(const AllocationCounting&) = delete;
};

// Allocations counted so far, over all threads and scopes.
std::uint64_t CountedAllocations();

}  // namespace alloctest
