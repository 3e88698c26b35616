// Random permutations: the order of uniforms.
#pragma once

#include <cstdint>
#include <vector>

#include "common/matrix.h"

namespace quorva {

/// Orders uniforms in linear time and keeps its memory from one permutation to the next.
class RandomPermutation {
public:
    /// Room for n uniforms, n >= 1: an n x 1 matrix to be filled with numbers of the open interval (0, 1).
    matrix<double>& uniforms(int n);
    /// Writes the row numbers of the uniforms, from 1, in ascending order of the uniforms; rows of equal uniforms keep
    /// their order. This is what SortQMatrixCol makes of a second column 1, 2, ..., n.
    void order(double* numbers);

private:
    void distribute();
    bool precedes(std::uint64_t left, std::uint64_t right) const;

    matrix<double> uniforms_;
    int rowBits_ = 0;                    ///< bits of a row number from 0, and of a bucket's number
    std::uint64_t rowMask_ = 0;          ///< the lowest rowBits_ bits
    std::vector<std::uint32_t> places_;  ///< by bucket: where its next item goes
    std::vector<std::uint64_t> items_;   ///< leading bits of a uniform, then its row number
};

}  // namespace quorva
