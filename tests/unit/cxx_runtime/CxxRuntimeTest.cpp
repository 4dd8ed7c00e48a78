// The DLL's own parts of the C++ library, where no input leads: its ends of the process, memory for
// exceptions that has run out, and two threads that throw for the first time at once. They stand
// here under other names, since a test program has the library's own.
#include <windows.h>

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "tests/unit/cxx_runtime/ProcessEnd.h"

namespace {

DWORD RivalsFlsAlloc(PFLS_CALLBACK_FUNCTION onThreadEnd);

}  // namespace

#define abort EndProcess
#define calloc ClearedMemory
#define FlsAlloc RivalsFlsAlloc
#define __cxa_get_globals tested_get_globals
#define __cxa_get_globals_fast tested_get_globals_fast
#define __cxa_allocate_exception tested_allocate_exception
#define __cxa_free_exception tested_free_exception
#define __verbose_terminate_handler tested_verbose_terminate_handler
#define __throw_length_error tested_throw_length_error
#define __throw_bad_alloc tested_throw_bad_alloc
#define __throw_bad_array_new_length tested_throw_bad_array_new_length
#define __throw_logic_error tested_throw_logic_error
#define __throw_out_of_range tested_throw_out_of_range
#define __throw_out_of_range_fmt tested_throw_out_of_range_fmt
#pragma GCC diagnostic push
// What ends the process returns to nobody.
#pragma GCC diagnostic ignored "-Wreturn-type"
#include "driver/CxxExceptions.cpp"  // NOLINT(bugprone-suspicious-include)
#include "driver/CxxRuntime.cpp"     // NOLINT(bugprone-suspicious-include)
#pragma GCC diagnostic pop
#undef abort
#undef calloc
#undef FlsAlloc

namespace {

bool rivalComesFirst = false;
DWORD rivalsSlot = FLS_OUT_OF_INDEXES;

DWORD RivalsFlsAlloc(PFLS_CALLBACK_FUNCTION onThreadEnd) {
  if (rivalComesFirst) threadSlot = rivalsSlot = FlsAlloc(onThreadEnd);
  return FlsAlloc(onThreadEnd);
}

TEST(CxxRuntime, MistakesOfTheCodeEndTheProcess) {
  EXPECT_THROW(std::tested_throw_logic_error("mistake"), Ended);
  EXPECT_THROW(std::tested_throw_out_of_range("mistake"), Ended);
  EXPECT_THROW(std::tested_throw_out_of_range_fmt("mistake"), Ended);
  EXPECT_THROW(__gnu_cxx::tested_verbose_terminate_handler(), Ended);
}

TEST(CxxRuntime, WhatOutgrowsItsLimitsHasNoMemory) {
  EXPECT_THROW(std::tested_throw_length_error("too long"), std::bad_alloc);
  EXPECT_THROW(std::tested_throw_bad_alloc(), std::bad_alloc);
  EXPECT_THROW(std::tested_throw_bad_array_new_length(), std::bad_array_new_length);
}

TEST(CxxExceptions, AnExceptionThatIsTooLargeEndsTheProcess) {
  processEnd.count = 0;
  processEnd.throws = false;
  __cxxabiv1::tested_free_exception(__cxxabiv1::tested_allocate_exception(kLargest));
  EXPECT_EQ(processEnd.count, 0);
  __cxxabiv1::tested_free_exception(__cxxabiv1::tested_allocate_exception(kLargest + 1));
  EXPECT_EQ(processEnd.count, 1);
  processEnd.throws = true;
}

TEST(CxxExceptions, AnExceptionWithoutAnyMemoryEndsTheProcess) {
  Pool<Globals, 1> pool;
  Globals* const only = pool.Take();
  processEnd.memoryIsOut = true;
  EXPECT_THROW(pool.Take(), Ended);
  processEnd.memoryIsOut = false;
  pool.Give(only);
  EXPECT_TRUE(pool.Take() == only);
}

TEST(CxxExceptions, ABlockOfTheHeapIsGivenBackWhereverItLies) {
  // Blocks of the heap lie before the module and behind a pool that was made before them.
  const auto pool = std::make_unique<Pool<Globals, 1>>();
  Globals* const only = pool->Take();
  std::vector<Globals*> blocks;
  while (blocks.size() < 1000 && (blocks.empty() || blocks.back() < only)) {
    blocks.push_back(pool->Take());
  }
  EXPECT_TRUE(blocks.back() > only);
  for (Globals* const block : blocks) pool->Give(block);
  pool->Give(only);
  EXPECT_TRUE(pool->Take() == only);
}

TEST(CxxExceptions, OfTwoThreadsThatThrowForTheFirstTimeTheFirstOnesSlotStays) {
  OnLoaderCall(nullptr, DLL_PROCESS_DETACH, nullptr);
  rivalComesFirst = true;
  const DWORD slot = ThreadSlot();
  rivalComesFirst = false;
  EXPECT_EQ(slot, rivalsSlot);
  EXPECT_EQ(ThreadSlot(), rivalsSlot);
}

TEST(CxxExceptions, MoreThreadsWithoutAValueThanThereArePlacesEndTheProcess) {
  for (std::size_t i = 0; i < kThreads; ++i) EXPECT_NE(NewStray(), nullptr);
  EXPECT_THROW(NewStray(), Ended);
  for (Stray& stray : strays) stray.thread = 0;
  hasStrays = false;
}

}  // namespace
