// Which formula depends on which, the order of calculation, cycles, and the part that runs at every recalculation.
#include <algorithm>

#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

int Recalculation::useArea(const Area& area) {
    const std::array<int, 5> key{area.sheet, area.firstRow, area.firstColumn, area.lastRow, area.lastColumn};
    const auto [found, added] = areaNumbers_.emplace(key, static_cast<int>(areas_.size()));
    if (added) {
        areas_.push_back({area, {}});
    }
    return found->second;
}

void Recalculation::collectUses(Formula& formula, const Node& node) {
    switch (node.kind) {
        case Node::Kind::Reference:
            for (const Area& area : node.value.areas()) {
                formula.uses.push_back(useArea(area));
            }
            break;
        case Node::Kind::TableCall:
            formula.volatileItself = formula.volatileItself || node.row->volatility == Volatility::Volatile;
            break;
        case Node::Kind::ModelCall:
            formula.callsModel = true;
            break;
        case Node::Kind::Unsupported:
            formula.unread = formula.unread || node.unread;
            break;
        case Node::Kind::LazyCall:
            formula.volatileItself = formula.volatileItself || node.lazy == LazyFunction::Offset ||
                                     node.lazy == LazyFunction::Indirect || node.lazy == LazyFunction::Cell;
            formula.dynamic =
                formula.dynamic || node.lazy == LazyFunction::Offset || node.lazy == LazyFunction::Indirect;
            // Only where these stand matters, not what the cell holds.
            if ((node.lazy == LazyFunction::Row || node.lazy == LazyFunction::Column ||
                 node.lazy == LazyFunction::Rows || node.lazy == LazyFunction::Columns) &&
                !node.children.empty() && node.children[0].kind == Node::Kind::Reference) {
                return;
            }
            break;
        case Node::Kind::Binary:
            formula.dynamic = formula.dynamic || node.op == Operator::Range;
            break;
        default:
            break;
    }
    for (const Node& child : node.children) {
        collectUses(formula, child);
    }
}

void Recalculation::connect() {
    areas_.clear();
    areaNumbers_.clear();
    spillers_.clear();
    anyDynamic_ = false;
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        Formula& formula = formulas[i];
        formula.uses.clear();
        formula.circular = false;
        formula.volatileItself = formula.callsModel = formula.dynamic = formula.unread = false;
        if (formula.removed) {
            continue;
        }
        collectUses(formula, formula.tree);
        std::sort(formula.uses.begin(), formula.uses.end());
        formula.uses.erase(std::unique(formula.uses.begin(), formula.uses.end()), formula.uses.end());
        anyDynamic_ = anyDynamic_ || formula.dynamic;
        if (!formula.spill.single()) {
            spillers_.push_back(static_cast<int>(i));
        }
    }
    for (UsedArea& used : areas_) {
        if (used.area.sheet >= raw->ownSheets) {
            continue;
        }
        cells.forEachSlot(used.area, [&](int, int, Slot slot) {
            const int formula = formulaAt(slot);
            if (formula >= 0) {
                used.formulas.push_back(formula);
            }
        });
        for (const int spiller : spillers_) {
            const Area& spill = formulas[static_cast<std::size_t>(spiller)].spill;
            if (spill.sheet == used.area.sheet && spill.firstRow <= used.area.lastRow &&
                spill.lastRow >= used.area.firstRow && spill.firstColumn <= used.area.lastColumn &&
                spill.lastColumn >= used.area.firstColumn) {
                used.formulas.push_back(spiller);
            }
        }
    }
    sortFormulas();
    markLive();
    connected_ = true;
    prepared_ = false;
}

/// Depth first along the dependencies, starting from the formulas in sheet, row and column order. Vertices are the
/// formulas and, behind them, the areas.
void Recalculation::sortFormulas() {
    enum : char { Fresh, Open, Closed };
    const std::size_t count = formulas.size();
    std::vector<char> state(count + areas_.size(), Fresh);
    order.clear();
    order.reserve(count);
    struct Step {
        int vertex;
        std::size_t next;
    };
    std::vector<Step> path;
    const auto edges = [&](int vertex) -> const std::vector<int>& {
        const auto at = static_cast<std::size_t>(vertex);
        return at < count ? formulas[at].uses : areas_[at - count].formulas;
    };
    for (std::size_t start = 0; start < count; ++start) {
        if (state[start] != Fresh || formulas[start].removed) {
            continue;
        }
        path.push_back({static_cast<int>(start), 0});
        state[start] = Open;
        while (!path.empty()) {
            Step& step = path.back();
            const auto& targets = edges(step.vertex);
            if (step.next == targets.size()) {
                state[static_cast<std::size_t>(step.vertex)] = Closed;
                if (static_cast<std::size_t>(step.vertex) < count) {
                    order.push_back(step.vertex);
                }
                path.pop_back();
                continue;
            }
            const bool fromFormula = static_cast<std::size_t>(step.vertex) < count;
            const int target = targets[step.next++] + (fromFormula ? static_cast<int>(count) : 0);
            if (state[static_cast<std::size_t>(target)] == Fresh) {
                state[static_cast<std::size_t>(target)] = Open;
                path.push_back({target, 0});
            } else if (state[static_cast<std::size_t>(target)] == Open) {
                std::vector<int> vertices;
                for (const Step& on : path) {
                    vertices.push_back(on.vertex);
                }
                describeCircle(vertices, target);
            }
        }
    }
}

/// Marks the formulas of a cycle that closes at the vertex `from`, and says so in words.
void Recalculation::describeCircle(const std::vector<int>& path, int from) {
    const int count = static_cast<int>(formulas.size());
    std::vector<int> circle;
    for (auto at = std::find(path.begin(), path.end(), from); at != path.end(); ++at) {
        if (*at < count) {
            circle.push_back(*at);
        }
    }
    std::string words;
    for (std::size_t i = 0; i < circle.size() && i < 12; ++i) {
        words += formulaName(circle[i]) + " -> ";
    }
    words += circle.size() > 12 ? "..." : formulaName(circle.front());
    for (const int index : circle) {
        Formula& formula = formulas[static_cast<std::size_t>(index)];
        formula.circular = true;
        formula.why = words;
    }
}

void Recalculation::markLive() {
    std::vector<bool> liveArea(areas_.size());
    std::vector<std::vector<int>> containing(formulas.size());
    for (std::size_t i = 0; i < areas_.size(); ++i) {
        for (const int formula : areas_[i].formulas) {
            containing[static_cast<std::size_t>(formula)].push_back(static_cast<int>(i));
        }
    }
    // What cannot be read may refer to anything: where something changes, its saved value cannot be relied on.
    const bool changing = std::any_of(formulas.begin(), formulas.end(), [](const Formula& formula) {
        return formula.volatileItself || formula.callsModel ||
               (formula.unread && !formula.removed && toUpper(*formula.text).find("QUORVA_") != std::string::npos);
    });
    for (const int index : order) {
        Formula& formula = formulas[static_cast<std::size_t>(index)];
        formula.live = formula.volatileItself || formula.callsModel || (formula.unread && changing) ||
                       std::any_of(formula.uses.begin(), formula.uses.end(),
                                   [&](int use) { return liveArea[static_cast<std::size_t>(use)]; });
        if (formula.live) {
            for (const int area : containing[static_cast<std::size_t>(index)]) {
                liveArea[static_cast<std::size_t>(area)] = true;
            }
        }
    }
}

}  // namespace quorva::workbook
