/* Put in front of yajl's tree source only. The tree grows an array by one pointer per element with
   realloc, which copies a page's 100,000 paths over and over. Blocks of the next power of two make
   that linear: while a growth by one pointer stays within it, the block is large enough already. */
#pragma once

#include <stddef.h>
#include <stdlib.h>

static size_t ov_next_power_of_two(size_t size) {
  size_t power = sizeof(void*);
  while (power < size) power *= 2;
  return power;
}

static void* ov_grow_by_one_pointer(void* block, size_t size) {
  const size_t capacity = ov_next_power_of_two(size);
  if (block && ov_next_power_of_two(size - sizeof(void*)) == capacity) return block;
  return realloc(block, capacity);
}

#define realloc ov_grow_by_one_pointer
