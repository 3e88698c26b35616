#include "workbook/evaluation/allowance.h"

namespace quorva::workbook {

void Allowance::exhausted() {
    left_ = 0;  // what is asked for may be close to the range's end; the next request must not leave it
    throw Unsupported{"more than " + std::to_string(granted_) + " steps of calculation in one formula"};
}

}  // namespace quorva::workbook
