// Slot numbers of virtual functions. Found at run time, as they are not constant expressions.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace rig {

// The slot of a virtual member function, counted from 0. A virtual destructor takes two.
template <typename Function>
std::size_t slotOf(Function function) {
  // In GCC's C++ ABI a pointer to a virtual member function holds 1 + the byte offset in the table.
  std::size_t encoded = 0;
  std::memcpy(&encoded, &function, sizeof encoded);
  EXPECT_EQ(encoded % 2, 1u) << "not a virtual function";
  return (encoded - 1) / sizeof(void*);
}

}  // namespace rig
