// Random permutations: the order of uniforms.
#pragma once

#include <cstdint>
#include <vector>

namespace quorva {

/// Orders uniforms in linear time and keeps its memory from one permutation to the next.
class RandomPermutation {
public:
    /// Replaces n numbers of the open interval (0, 1) by their places, from 1, in ascending order of the numbers;
    /// equal ones keep their order. This is what SortQMatrixCol makes of a second column 1, 2, ..., n.
    void order(double* uniforms, int n);

private:
    void makeRoom(int n);
    void distribute(const double* uniforms);
    void sortBuckets(const double* uniforms);

    int rowBits_ = 0;                    ///< bits of a row number from 0, and of a bucket's number
    std::uint64_t rowMask_ = 0;          ///< the lowest rowBits_ bits
    std::vector<std::uint32_t> places_;  ///< by bucket: where its next item goes
    std::vector<std::uint64_t> items_;   ///< leading bits of a uniform, then its row number
};

}  // namespace quorva
