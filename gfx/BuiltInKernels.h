// SPDX-License-Identifier: MIT
// Private to gfx/ and its benchmark: the built-in kernels of
// Filter_StandardFilter, types 0-8, which the benchmark gives its peer too.
#pragma once

#include <array>

#include "common/Numeric.h"

namespace kelvarin::gfx_detail {

struct BuiltInKernel {
    Long size;
    std::array<Long, 25> values;  // rows one after the other, offset -size div 2 first
    Long weight;
};

// All but type 6 are symmetric; type 6 takes -1 from the lower right
// neighbour (rows are stored bottom-up) and +1 from the upper left.
inline constexpr BuiltInKernel kBuiltInKernels[9] = {
    {3, {1, 1, 1, 1, 1, 1, 1, 1, 1}, 9},
    {5, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 25},
    {3, {1, 1, 1, 1, 4, 1, 1, 1, 1}, 12},
    {5, {1, 1, 1, 1, 1, 1, 2, 2, 2, 1, 1, 2, 12, 2, 1, 1, 2, 2, 2, 1, 1, 1, 1, 1, 1}, 44},
    {3, {-1, -1, -1, -1, 15, -1, -1, -1, -1}, 7},
    {3, {0, -1, 0, -1, 5, -1, 0, -1, 0}, 1},
    {3, {0, 0, -1, 0, 0, 0, 1, 0, 0}, 1},
    {3, {1, 2, 1, 2, 4, 2, 1, 2, 1}, 16},
    {3, {1, 1, 1, 1, -9, 1, 1, 1, 1}, 1},
};

}  // namespace kelvarin::gfx_detail
