// Cells with formulas, recalculated the way a host does it.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "../host/fake_host.h"
#include "quorva/worksheet.h"

namespace quorva::testing {

class Cells {
public:
    using Formula = std::function<double()>;

protected:
    /// Adds a cell; returns its index. Cells are evaluated in the order added.
    std::size_t cell(const Address& address, Formula formula) {
        cells.push_back({address, std::move(formula), 0.0});
        return cells.size() - 1;
    }
    std::size_t normal(const Address& address, const char* name, double mu = 0.0, double sigma = 1.0) {
        return cell(address, [=] { return QUORVA_SimNormal(name, mu, sigma, 0, 0, 0, 0, 0, 1); });
    }
    std::size_t uniform(const Address& address, const char* name, int mode = 0, double lower = 0, double upper = 0) {
        return cell(address, [=] { return QUORVA_SimUniform(name, 0, 1, mode, lower, upper, 0, 0, 1); });
    }
    std::size_t result(const Address& address, const char* name, Formula formula) {
        return cell(address, [=] { return QUORVA_SimRes(name, formula(), 0, 0, 1); });
    }
    double evaluate(std::size_t index) {
        fakeHost.caller = cells[index].address;
        return cells[index].value = cells[index].formula();
    }
    static double evaluate(const Address& address, const Formula& formula) {
        fakeHost.caller = address;
        return formula();
    }
    void recalculate() {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            evaluate(i);
        }
    }
    double value(std::size_t index) const { return cells[index].value; }

    struct Cell {
        Address address;
        Formula formula;
        double value;
    };
    std::vector<Cell> cells;
};

}  // namespace quorva::testing
