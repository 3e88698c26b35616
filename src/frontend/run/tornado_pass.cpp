#include "frontend/run/tornado_pass.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frontend/run/host_arrays.h"
#include "frontend/run/missing_numbers.h"
#include "quorva/front_end.h"

namespace quorva::frontend {

namespace {
bool isInput(const Field& field) {
    return field.kind == FieldKind::Distribution || field.kind == FieldKind::ScenarioVariable;
}

/// The interval table as the module takes it.
class IntervalTable {
public:
    IntervalTable(const std::vector<double>& values, std::size_t fields) : values_(values), fields_(fields) {}
    double& at(std::size_t field, int column) { return values_[tableElement(field + 1, column, fields_)]; }
    double* data() { return values_.data(); }
    void exclude(std::size_t field) { at(field, intervalcolumn::upper) = MissingValue; }
    bool excluded(std::size_t field) { return at(field, intervalcolumn::upper) == MissingValue; }

private:
    std::vector<double> values_;
    std::size_t fields_;
};

/// One pass of the module over the inputs that have points.
class Pass {
public:
    Pass(const TornadoPlan& plan, TornadoSpread spread, int points) : plan_(plan), spread_(spread), points_(points) {
        for (std::size_t i = 0; i < plan.fields.size(); ++i) {
            if (plan.fields[i].kind == FieldKind::Result) {
                results_.push_back(i);
            }
        }
    }

    /// False when interrupted. Errors are noted per case: the module keeps a zero where a result was not evaluated.
    bool run(IntervalTable table, const Host& host, const Observer& observer) {
        const int n = static_cast<int>(plan_.fields.size());
        HostStrings labels(points_);
        Cpp_PrepareTor(static_cast<int>(plan_.settings.base), static_cast<int>(spread_),
                       spread_ == TornadoSpread::Interval ? plan_.tail : plan_.settings.width, points_, n, &cases_,
                       table.data(), labels.data());
        for (int j = 0; j < points_; ++j) {
            labels_.push_back(labels.utf8(j));
        }
        wrong_.assign(plan_.fields.size() * points_ * results_.size(), false);
        // The module starts at the first field whether or not it has points.
        for (std::size_t i = 0; i < plan_.fields.size(); ++i) {
            for (int j = 0; (i == 0 || !table.excluded(i)) && j < points_; ++j) {
                if (observer.interrupted()) {
                    return false;
                }
                host.recalculate();
                for (std::size_t r = 0; r < results_.size(); ++r) {
                    if (host.showsError(results_[r])) {
                        wrong_[(i * points_ + j) * results_.size() + r] = true;
                    }
                }
            }
        }
        collect(n);
        return true;
    }

    /// Values of a result at the points of an input; NaN where it had none.
    std::vector<double> values(std::size_t result, std::size_t input) {
        std::vector<double> values(points_, noNumber);
        const int order = order_[results_[result]];
        const auto column = std::find(inputs_.begin(), inputs_.end(), plan_.fields[input].number) - inputs_.begin();
        if (order < 1 || column == static_cast<std::ptrdiff_t>(inputs_.size())) {
            return values;
        }
        for (int j = 0; j < points_; ++j) {
            const double value = spider_[result][column * points_ + j];
            const bool wrong = wrong_[(input * points_ + j) * results_.size() + result];
            values[j] = wrong ? noNumber : numberOrNone(value);
        }
        return values;
    }

    const std::vector<std::size_t>& results() const { return results_; }
    const std::vector<std::string>& labels() const { return labels_; }

private:
    /// The tables are asked for with as many columns as there are fields: only then do the module's marks of clamped
    /// points stand where it looks for them. Columns beyond the inputs keep field number 0.
    void collect(int n) {
        std::vector<double> table(static_cast<std::size_t>(cases_) * n);
        inputs_.assign(n, 0);
        order_.assign(n, 0);
        HostStrings names(n);
        Cpp_GetTornado(cases_, n, table.data(), inputs_.data(), order_.data(), names.data());
        std::vector<double> tornado(static_cast<std::size_t>(n) * tornadocolumn::columns);
        for (const std::size_t result : results_) {
            auto& spider = spider_.emplace_back(static_cast<std::size_t>(points_) * n);
            Cpp_GetTornadoItem(cases_, n, static_cast<int>(result) + 1, table.data(), inputs_.data(), tornado.data(),
                               spider.data());
        }
    }

    const TornadoPlan& plan_;
    TornadoSpread spread_;
    int points_;
    int cases_ = 0;
    std::vector<std::size_t> results_;
    std::vector<std::string> labels_;
    std::vector<int> inputs_, order_;
    std::vector<std::vector<double>> spider_;
    std::vector<bool> wrong_;
};

/// A band point outside the simulated range is not reported, nor is a step of a scenario variable beyond its bounds.
bool outsideRange(const TornadoPlan& plan, IntervalTable& simulated, std::size_t input, int j) {
    const Field& field = plan.fields[input];
    if (field.kind == FieldKind::ScenarioVariable) {
        const ScenarioRange range = field.scenarioRange();
        const double point = range.lower + j * range.step;
        return range.inSteps && (point < range.lower || point > range.upper);
    }
    if (plan.settings.spread != TornadoSpread::Band) {
        return false;
    }
    const double width = plan.settings.width, last = plan.settings.points - 1;
    double point;
    if (plan.settings.base == TornadoBase::Default) {
        point = (j * (2 * width / last) + (1 - width)) * field.defaultValue;
    } else {
        const double median = simulated.at(input, intervalcolumn::median);
        point = j * (2 * median * width / last) + (1 - width) * median;
    }
    return point < simulated.at(input, intervalcolumn::minimum) || point > simulated.at(input, intervalcolumn::maximum);
}

TornadoInput moved(const TornadoPlan& plan, IntervalTable& simulated, std::size_t input, std::vector<double> values) {
    TornadoInput moved{plan.fields[input].name, noNumber, noNumber, noNumber, std::move(values)};
    for (int j = 0; j < plan.settings.points; ++j) {
        double& value = moved.values[j];
        if (outsideRange(plan, simulated, input, j)) {
            value = noNumber;
        }
        if (!std::isnan(value)) {
            moved.low = std::isnan(moved.low) ? value : std::min(moved.low, value);
            moved.high = std::isnan(moved.high) ? value : std::max(moved.high, value);
        }
    }
    moved.swing = moved.high - moved.low;
    return moved;
}

/// The results with every input at its base: one distribution is given nothing but its base value as points.
std::vector<double> baseValues(const TornadoPlan& plan, const Host& host, const Observer& observer) {
    const auto pivot = std::find_if(plan.fields.begin(), plan.fields.end(),
                                    [](const Field& f) { return f.kind == FieldKind::Distribution; });
    const std::size_t input = pivot - plan.fields.begin();
    IntervalTable table(plan.intervals, plan.fields.size());
    for (std::size_t i = 0; i < plan.fields.size(); ++i) {
        table.exclude(i);
    }
    const double base =
        plan.settings.base == TornadoBase::Default ? pivot->defaultValue : table.at(input, intervalcolumn::median);
    table.at(input, intervalcolumn::lower) = table.at(input, intervalcolumn::upper) = base;
    Pass pass(plan, TornadoSpread::Interval, 2);
    std::vector<double> values;
    if (pass.run(table, host, observer)) {
        for (std::size_t r = 0; r < pass.results().size(); ++r) {
            values.push_back(pass.values(r, input)[0]);
        }
    }
    return values;
}
}  // namespace

std::vector<Tornado> tornadoPass(const TornadoPlan& plan, const Host& host, const Observer& observer) {
    const std::vector<double> base = baseValues(plan, host, observer);
    IntervalTable simulated(plan.intervals, plan.fields.size());
    IntervalTable table = simulated;
    for (std::size_t i = 0; i < plan.fields.size(); ++i) {
        // Without limits the module clamps nothing; which points lie outside is decided here, for any number of points.
        table.at(i, intervalcolumn::minimum) = -std::numeric_limits<double>::infinity();
        table.at(i, intervalcolumn::maximum) = std::numeric_limits<double>::infinity();
        if (!isInput(plan.fields[i]) || std::isnan(simulated.at(i, intervalcolumn::median))) {
            table.exclude(i);
        }
    }
    Pass pass(plan, plan.settings.spread, plan.settings.points);
    if (base.empty() || !pass.run(table, host, observer)) {
        return {};
    }
    std::vector<Tornado> analyses;
    for (std::size_t r = 0; r < pass.results().size(); ++r) {
        Tornado& tornado =
            analyses.emplace_back(Tornado{plan.fields[pass.results()[r]].name, base[r], pass.labels(), {}});
        for (std::size_t i = 0; i < plan.fields.size(); ++i) {
            if (isInput(plan.fields[i])) {
                tornado.inputs.push_back(moved(plan, simulated, i, pass.values(r, i)));
            }
        }
        std::stable_sort(tornado.inputs.begin(), tornado.inputs.end(), [](const auto& a, const auto& b) {
            return !std::isnan(a.swing) && (std::isnan(b.swing) || a.swing > b.swing);
        });
    }
    return analyses;
}

}  // namespace quorva::frontend
