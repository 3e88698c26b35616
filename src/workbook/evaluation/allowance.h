// What a formula may cost before the host gives up on it.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

namespace quorva::workbook {

/// A formula needs something that this host cannot compute.
struct Unsupported {
    std::string what;
};

/// Counts the steps of the formula being computed: a cell read, an element of an array made, an operator or a function
/// evaluated. A few words are enough for a formula that would run for days (a million conditions over a million cells);
/// it ends as unsupported instead.
class Allowance {
public:
    /// Some minutes of one formula.
    static constexpr std::int64_t usual = 10'000'000'000;
    static constexpr std::int64_t unlimited = std::numeric_limits<std::int64_t>::max();

    /// Throws Unsupported when there is not enough left.
    void spend(std::int64_t steps) {
        left_ -= steps;
        if (left_ < 0) {
            exhausted();
        }
    }

    /// Grants a formula its steps for as long as the grant lives; formulas computed meanwhile have grants of their own.
    class Grant {
    public:
        Grant(Allowance& allowance, std::int64_t steps)
            : allowance_(allowance), outerGranted_(allowance.granted_), outerLeft_(allowance.left_) {
            allowance.left_ = allowance.granted_ = steps;
        }
        ~Grant() {
            allowance_.granted_ = outerGranted_;
            allowance_.left_ = outerLeft_;
        }
        Grant(const Grant&) = delete;
        Grant& operator=(const Grant&) = delete;

    private:
        Allowance& allowance_;
        const std::int64_t outerGranted_;
        const std::int64_t outerLeft_;
    };

private:
    [[noreturn]] void exhausted();

    std::int64_t granted_ = unlimited;
    std::int64_t left_ = unlimited;
};

}  // namespace quorva::workbook
