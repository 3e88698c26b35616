// Independent work on the fields of a run, on all processors. What one index computes must not depend on another, so
// that the results are the same on any machine.
#pragma once

#include <algorithm>
#include <cstddef>
#include <execution>
#include <numeric>
#include <vector>

namespace quorva::frontend {

/// Calls body(i) for every i below `count`, in any order.
template <class Body>
void forEachIndex(std::size_t count, Body&& body) {
    std::vector<std::size_t> indices(count);
    std::iota(indices.begin(), indices.end(), std::size_t{0});
    std::for_each(std::execution::par, indices.begin(), indices.end(), body);
}

}  // namespace quorva::frontend
