// Which formula depends on which, the order of calculation, cycles, and the part that runs at every recalculation.
#include <algorithm>
#include <optional>

#include "workbook/recalculation/recalculation.h"

namespace quorva::workbook {

int Recalculation::useArea(const Area& area) {
    const std::array<int, 5> key{area.sheet, area.firstRow, area.firstColumn, area.lastRow, area.lastColumn};
    const auto [found, added] = areaNumbers_.emplace(key, static_cast<int>(areas_.size()));
    if (added) {
        areas_.push_back({area, -1, {}});
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
    std::vector<int> spillers;
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
        if (!formula.spill.single() || !formula.reach.front().single()) {
            spillers.push_back(static_cast<int>(i));
        }
    }
    for (UsedArea& used : areas_) {
        if (used.area.single()) {
            const Slot slot = cells.find(used.area.sheet, used.area.firstRow, used.area.firstColumn);
            used.only = slot == noSlot ? -1 : formulaAt(slot);
        }
        for (const int spiller : spillers) {
            const Formula& formula = formulas[static_cast<std::size_t>(spiller)];
            if (used.area.overlaps(formula.spill) ||
                std::any_of(formula.reach.begin(), formula.reach.end(),
                            [&](const Area& block) { return used.area.overlaps(block); })) {
                used.spillers.push_back(spiller);
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
        std::size_t next = 0;
        std::optional<CellCursor> cursor{};  ///< of an area
    };
    std::vector<Step> path;
    /// The next vertex that the step's depends on, -1 at the end.
    const auto nextTarget = [&](Step& step) {
        const auto at = static_cast<std::size_t>(step.vertex);
        if (at < count) {
            const std::vector<int>& uses = formulas[at].uses;
            return step.next < uses.size() ? uses[step.next++] + static_cast<int>(count) : -1;
        }
        const UsedArea& used = areas_[at - count];
        if (step.next == 0) {
            if (!used.area.single()) {
                if (!step.cursor) {
                    step.cursor.emplace(cells, used.area);
                }
                while (step.cursor->next()) {
                    const int formula = formulaAt(step.cursor->slot());
                    if (formula >= 0) {
                        return formula;
                    }
                }
            }
            ++step.next;
            if (used.only >= 0) {
                return used.only;
            }
        }
        return step.next <= used.spillers.size() ? used.spillers[step.next++ - 1] : -1;
    };
    for (std::size_t start = 0; start < count; ++start) {
        if (state[start] != Fresh || formulas[start].removed) {
            continue;
        }
        path.push_back({static_cast<int>(start)});
        state[start] = Open;
        while (!path.empty()) {
            Step& step = path.back();
            const int target = nextTarget(step);
            if (target < 0) {
                state[static_cast<std::size_t>(step.vertex)] = Closed;
                if (static_cast<std::size_t>(step.vertex) < count) {
                    order.push_back(step.vertex);
                }
                path.pop_back();
            } else if (state[static_cast<std::size_t>(target)] == Fresh) {
                state[static_cast<std::size_t>(target)] = Open;
                path.push_back({target});
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

/// Whether a marked formula has its cell or its spill in the area.
bool Recalculation::holdsMarked(const Area& area, const std::vector<bool>& marked) const {
    for (CellCursor cursor(cells, area); cursor.next();) {
        const int formula = filledBy(cursor.slot());
        if (formula >= 0 && marked[static_cast<std::size_t>(formula)]) {
            return true;
        }
    }
    return false;
}

/// In the order of calculation: marks the formulas in `begins`, and those that use an area for which `changed` holds or
/// in which a marked formula has its cell or its spill.
std::vector<bool> Recalculation::downstream(const std::vector<bool>& begins,
                                            const std::function<bool(const UsedArea&)>& changed) const {
    std::vector<bool> marked(formulas.size());
    enum : char { Unknown, No, Yes };
    std::vector<char> known(areas_.size(), Unknown);
    const auto isMarked = [&](int formula) { return formula >= 0 && marked[static_cast<std::size_t>(formula)]; };
    const auto touched = [&](const UsedArea& used) {
        return changed(used) || isMarked(used.only) ||
               std::any_of(used.spillers.begin(), used.spillers.end(), isMarked) ||
               (!used.area.single() && holdsMarked(used.area, marked));
    };
    for (const int index : order) {
        const Formula& formula = formulas[static_cast<std::size_t>(index)];
        // What lies in an area comes before what uses it, so that one look at the area tells.
        marked[static_cast<std::size_t>(index)] = begins[static_cast<std::size_t>(index)] ||
                                                  std::any_of(formula.uses.begin(), formula.uses.end(), [&](int use) {
                                                      const auto at = static_cast<std::size_t>(use);
                                                      if (known[at] == Unknown) {
                                                          known[at] = touched(areas_[at]) ? Yes : No;
                                                      }
                                                      return known[at] == Yes;
                                                  });
    }
    return marked;
}

void Recalculation::markLive() {
    // What cannot be read may refer to anything: where something changes, its saved value cannot be relied on.
    const bool changing = std::any_of(formulas.begin(), formulas.end(), [](const Formula& formula) {
        return formula.volatileItself || formula.callsModel ||
               (formula.unread && !formula.removed && toUpper(*formula.text).find("QUORVA_") != std::string::npos);
    });
    std::vector<bool> begins(formulas.size());
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        begins[i] = formulas[i].volatileItself || formulas[i].callsModel || (formulas[i].unread && changing);
    }
    const std::vector<bool> live = downstream(begins, [](const UsedArea&) { return false; });
    for (const int index : order) {
        formulas[static_cast<std::size_t>(index)].live = live[static_cast<std::size_t>(index)];
    }
}

}  // namespace quorva::workbook
