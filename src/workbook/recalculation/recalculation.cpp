#include "workbook/recalculation/recalculation.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

#include "common/cell_names.h"
#include "workbook/evaluation/stack_room.h"
#include "workbook/formula/shown_formula.h"
#include "workbook/functions/families.h"
#include "workbook/recalculation/module_link.h"
#include "workbook/recalculation/program.h"
#include "workbook/values/number_format.h"

namespace quorva::workbook {

namespace {

constexpr std::string_view unsettled = "spilled arrays that change each other without coming to rest";
/// Each computes anew what arrays of unexpected size have made out of date; a chain of such arrays takes one for each.
constexpr int mostRounds = 50;

/// Laying out a cell takes about as long as reading so many.
constexpr std::int64_t stepsPerSpilledCell = 16;

Area ownCell(const Formula& formula) {
    return {formula.cell.sheet, formula.cell.row, formula.cell.column, formula.cell.row, formula.cell.column};
}

/// Of two blocks that begin at one cell.
bool inside(const Area& inner, const Area& outer) {
    return inner.lastRow <= outer.lastRow && inner.lastColumn <= outer.lastColumn;
}

bool reaches(const Formula& formula, const Area& target) {
    return std::any_of(formula.reach.begin(), formula.reach.end(),
                       [&](const Area& block) { return inside(target, block); });
}

double currentSerial(bool date1904) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    const double day = *serialFromDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, date1904);
    const double fraction =
        std::chrono::duration<double>(now - std::chrono::system_clock::from_time_t(seconds)).count();
    return day + (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + fraction) / 86400;
}

}  // namespace

Recalculation::Recalculation(std::unique_ptr<RawBook> book) : raw(std::move(book)) {
    symbols = std::make_unique<Symbols>(*raw, worksheetFunctions());
    layCells();
    context.cells = &cells;
    context.symbols = symbols.get();
    context.raw = raw.get();
    context.now = currentSerial(raw->date1904);
    context.bringUpToDate = [this](const Area& area) { bringUpToDate(area); };
    context.callModel = [this](Evaluator& evaluator, const Node& node) -> Value {
        if (!module) {
            throw Unsupported{"the function " + symbols->modelFunctions()[static_cast<std::size_t>(node.index)] +
                              " without its module"};
        }
        return callModel(*module, evaluator, node);
    };
    context.formulaText = [this](int sheet, int row, int column) { return typedFormula(sheet, row, column); };
    context.copiedDown = [this](int sheet, int row, int column, int rowsDown) -> std::optional<Value> {
        const Slot slot = cells.find(sheet, row, column);
        if (slot == noSlot || formulaAt(slot) < 0) {
            return std::nullopt;
        }
        const auto position = static_cast<std::size_t>(slot - cells.sheet(sheet).firstSlot);
        const RawCell& source = raw->sheets[static_cast<std::size_t>(sheet)].cells[position];
        cells.allowance().spend(static_cast<std::int64_t>(source.formula.size()));
        try {
            const Node tree = parseFormula(
                source.formula, {sheet, row + rowsDown, column, source.shiftRows + rowsDown, source.shiftColumns},
                *symbols);
            return Evaluator(context, sheet, row + rowsDown, column, false).evaluateScalar(tree);
        } catch (const ParseError&) {
            throw Unsupported{"a formula that cannot be read as the condition of a database function"};
        }
    };
    context.spillOf = [this](int sheet, int row, int column, Area& area) {
        const Slot slot = cells.find(sheet, row, column);
        const int formula = slot == noSlot ? -1 : formulaAt(slot);
        if (formula < 0 || formulas[static_cast<std::size_t>(formula)].kind == FormulaKind::Normal) {
            return false;
        }
        area = formulas[static_cast<std::size_t>(formula)].spill;
        return true;
    };
    addFormulas();
}

Recalculation::~Recalculation() = default;

void Recalculation::layCells() {
    std::vector<std::vector<std::uint64_t>> keys;
    for (RawSheet& sheet : raw->sheets) {
        std::stable_sort(sheet.cells.begin(), sheet.cells.end(), [](const RawCell& a, const RawCell& b) {
            return cellKey(a.row, a.column) < cellKey(b.row, b.column);
        });
        // Of a cell that stands twice in the file, the last counts.
        std::vector<RawCell> distinct;
        distinct.reserve(sheet.cells.size());
        for (RawCell& cell : sheet.cells) {
            if (!distinct.empty() && distinct.back().row == cell.row && distinct.back().column == cell.column) {
                distinct.back() = std::move(cell);
            } else {
                distinct.push_back(std::move(cell));
            }
        }
        sheet.cells = std::move(distinct);
        auto& sheetKeys = keys.emplace_back();
        sheetKeys.reserve(sheet.cells.size());
        for (const RawCell& cell : sheet.cells) {
            sheetKeys.push_back(cellKey(cell.row, cell.column));
        }
    }
    cells.build(keys);
    for (std::size_t s = 0; s < raw->sheets.size(); ++s) {
        SheetIndex& index = cells.sheet(static_cast<int>(s));
        index.hiddenRows = raw->sheets[s].hiddenRows;
        index.filteredRows = raw->sheets[s].filteredRows;
        Slot slot = index.firstSlot;
        for (const RawCell& cell : raw->sheets[s].cells) {
            if (raw->precisionAsDisplayed) {
                styleOfSlot_.push_back(cell.style);
            }
            cells.set(slot++, cell.value);
        }
    }
}

/// Every cell of an array formula of the old kind shows it; of one that spills, only the first.
std::optional<std::string> Recalculation::typedFormula(int sheet, int row, int column) const {
    const Slot slot = cells.find(sheet, row, column);
    int index = slot == noSlot ? -1 : formulaAt(slot);
    if (index < 0 && slot != noSlot && static_cast<std::size_t>(slot) < spillOwner.size()) {
        const int owner = spillOwner[static_cast<std::size_t>(slot)];
        index = owner >= 0 && formulas[static_cast<std::size_t>(owner)].kind == FormulaKind::Array ? owner : -1;
    }
    if (index < 0) {
        return std::nullopt;
    }
    const Formula& formula = formulas[static_cast<std::size_t>(index)];
    const Slot first = cells.sheet(formula.cell.sheet).firstSlot;
    const RawCell& cell =
        raw->sheets[static_cast<std::size_t>(formula.cell.sheet)].cells[static_cast<std::size_t>(formula.slot - first)];
    const RawTable* table = symbols->tableAt(formula.cell.sheet, formula.cell.row, formula.cell.column);
    const std::string text =
        "=" + shownFormula(cell.formula, cell.shiftRows, cell.shiftColumns, table ? table->name : std::string());
    return formula.kind == FormulaKind::Array ? "{" + text + "}" : text;
}

void Recalculation::addFormulas() {
    formulaOfSlot_.assign(static_cast<std::size_t>(cells.slotCount()), -1);
    spillOwner.assign(static_cast<std::size_t>(cells.slotCount()), -1);
    for (int s = 0; s < raw->ownSheets; ++s) {
        Slot slot = cells.sheet(s).firstSlot;
        for (const RawCell& cell : raw->sheets[static_cast<std::size_t>(s)].cells) {
            const Slot own = slot++;
            if (cell.kind == FormulaKind::None) {
                continue;
            }
            Formula formula;
            formula.cell = {s, cell.row, cell.column};
            formula.slot = own;
            formula.kind = cell.kind;
            formula.text = &cell.formula;
            formula.spill =
                cell.kind == FormulaKind::Normal ? Area{s, cell.row, cell.column, cell.row, cell.column} : cell.spill;
            formula.spill.sheet = s;
            formula.reach = {ownCell(formula)};
            if (cell.hasValue) {
                formula.saved = cell.value;
            }
            formula.done = cell.hasValue;
            try {
                formula.tree =
                    parseFormula(cell.formula, {s, cell.row, cell.column, cell.shiftRows, cell.shiftColumns}, *symbols);
            } catch (const ParseError& error) {
                formula.tree.kind = Node::Kind::Unsupported;
                formula.tree.unread = true;
                formula.tree.text = "a formula that cannot be read at its character " +
                                    std::to_string(error.position + 1) + " (" + error.what() + ")";
            }
            const Node& tree = formula.tree;
            formula.subtotal =
                tree.kind == Node::Kind::TableCall && (tree.row->name == "SUBTOTAL" || tree.row->name == "AGGREGATE");
            if (formula.subtotal) {
                cells.markSubtotal(own);
            }
            formulaOfSlot_[static_cast<std::size_t>(own)] = static_cast<int>(formulas.size());
            formulas.push_back(std::move(formula));
        }
    }
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        Formula& formula = formulas[i];
        if (formula.spill.single()) {
            continue;
        }
        std::int64_t existing = 0;
        cells.forEachSlot(formula.spill, [&](int, int, Slot slot) {
            ++existing;
            if (formulaOfSlot_[static_cast<std::size_t>(slot)] < 0) {
                spillOwner[static_cast<std::size_t>(slot)] = static_cast<int>(i);
            }
        });
        if (existing == static_cast<std::int64_t>(formula.spill.rows()) * formula.spill.columns()) {
            formula.reach = {formula.spill};
        }
    }
}

/// With precision as displayed a number is rounded as its cell shows it.
Value Recalculation::asDisplayed(Slot slot, Value value) const {
    if (!raw->precisionAsDisplayed || !value.isNumber()) {
        return value;
    }
    const auto at = static_cast<std::size_t>(slot);
    const auto style = static_cast<std::size_t>(at < styleOfSlot_.size() ? styleOfSlot_[at] : 0);
    return style < raw->numberFormats.size() ? Value(roundAsShown(value.number(), raw->numberFormats[style])) : value;
}

/// Puts a formula's result, or an element of it, into a cell.
void Recalculation::storeAt(Slot slot, Value value) {
    if (value.isBlank()) {
        value = Value(0.0);
    } else if (value.isLambda()) {
        value = ErrorCode::Calc;
    }
    cells.set(slot, asDisplayed(slot, std::move(value)));
}

bool Recalculation::blocked(int index, const Area& target) const {
    bool taken = target.lastRow >= maxRows || target.lastColumn >= maxColumns;
    if (!taken) {
        cells.forEachSlot(target, [&](int, int, Slot slot) {
            const auto at = static_cast<std::size_t>(slot);
            const bool own = slot == formulas[static_cast<std::size_t>(index)].slot ||
                             (at < spillOwner.size() && spillOwner[at] == index);
            taken = taken || (!own && (formulaAt(slot) >= 0 || !cells.get(slot).isBlank()));
        });
    }
    return taken;
}

/// Empties the cells that the formula filled, except those in `kept`.
void Recalculation::leaveSpill(int index, const Area& kept) {
    Formula& formula = formulas[static_cast<std::size_t>(index)];
    cells.forEachSlot(formula.spill, [&](int row, int column, Slot slot) {
        if (slot != formula.slot && !kept.contains(row, column) &&
            spillOwner[static_cast<std::size_t>(slot)] == index) {
            cells.set(slot, Value());
            spillOwner[static_cast<std::size_t>(slot)] = -1;
        }
    });
    changes_.push_back({formula.spill, ++clock_, false});
    formula.spill = kept;
}

/// Remembers that the formula has filled a block.
void Recalculation::reachInto(Formula& formula, const Area& target) {
    const bool known = reaches(formula, target);
    changes_.push_back({target, ++clock_, !known});
    if (!known) {
        std::erase_if(formula.reach, [&](const Area& block) { return inside(block, target); });
        formula.reach.push_back(target);
        outgrown_ = true;
        connected_ = prepared_ = false;
    }
}

/// What arrays filled before an edit says nothing about what they fill after it.
void Recalculation::forgetReach() {
    for (Formula& formula : formulas) {
        if ((formula.reach.size() > 1 || !(formula.reach.front() == formula.spill)) &&
            reaches(formula, formula.spill)) {
            formula.reach = {formula.spill};
            connected_ = false;
        }
    }
}

/// Spreads an array over the cells of an array formula, or spills it.
void Recalculation::storeArray(int index, const Value& value) {
    Formula& formula = formulas[static_cast<std::size_t>(index)];
    Area target = formula.spill;
    bool changed = !reaches(formula, target);
    if (formula.kind == FormulaKind::Dynamic) {
        target = ownCell(formula);
        if (value.isArray()) {
            target.lastRow += value.arrayRows() - 1;
            target.lastColumn += value.arrayColumns() - 1;
        }
        const bool taken = blocked(index, target);
        const Area kept = taken ? ownCell(formula) : target;
        changed = changed || !(kept == formula.spill);
        if (!(kept == formula.spill)) {
            leaveSpill(index, kept);
        }
        if (taken) {
            storeAt(formula.slot, ErrorCode::Spill);
            noteFound(formula, target);  // it may become free
            return;
        }
    }
    cells.allowance().spend(stepsPerSpilledCell * target.rows() * target.columns());
    for (int row = target.firstRow; row <= target.lastRow; ++row) {
        for (int column = target.firstColumn; column <= target.lastColumn; ++column) {
            const Slot slot = cells.findOrAdd(target.sheet, row, column);
            spillOwner.resize(static_cast<std::size_t>(cells.slotCount()), -1);
            if (slot != formula.slot) {
                spillOwner[static_cast<std::size_t>(slot)] = index;
            }
            storeAt(slot, combinedElement(value, row - target.firstRow, column - target.firstColumn));
        }
    }
    if (changed) {
        reachInto(formula, target);
    }
}

namespace {

/// Thrown when a formula needs another one and the stack has no room to compute it there and then.
struct Postponed {
    int needed;
};

}  // namespace

void Recalculation::compute(int index) {
    if (computing_) {
        computeOne(index, true);
        return;
    }
    // Chains of references made while evaluating (INDIRECT, OFFSET) may be longer than the stack is deep: then the
    // formula that was found deep down comes first, and the others start again.
    std::vector<int> waiting{index};
    struct Computing {
        explicit Computing(Recalculation& of, const std::vector<int>& all) : recalculation(of), formulas(all) {
            recalculation.computing_ = true;
        }
        ~Computing() {
            recalculation.computing_ = false;
            for (const int formula : formulas) {
                recalculation.formulas[static_cast<std::size_t>(formula)].waiting = false;
            }
        }
        Recalculation& recalculation;
        const std::vector<int>& formulas;
    } const computing(*this, waiting);
    while (!waiting.empty()) {
        Formula& formula = formulas[static_cast<std::size_t>(waiting.back())];
        formula.waiting = true;
        try {
            computeOne(waiting.back(), waiting.size() > 1);
            formula.waiting = false;
            waiting.pop_back();
        } catch (const Postponed& postponed) {
            waiting.push_back(postponed.needed);
        }
    }
}

/// `early`: another formula found it before its turn, so that what it refers to may be due as well.
void Recalculation::computeOne(int index, bool early) {
    Formula& formula = formulas[static_cast<std::size_t>(index)];
    formula.pass = pass_;
    if (formula.removed) {
        return;
    }
    if (formula.circular) {
        return;
    }
    struct Current {
        Current(int& place, int now) : current(place), outer(std::exchange(place, now)) {}
        ~Current() { current = outer; }
        int& current;
        const int outer;
    } const current(current_, index);
    formula.why.clear();
    formula.found.clear();
    try {
        if (early) {
            const Allowance::Grant unlimited(cells.allowance(), Allowance::unlimited);
            for (const int use : formula.uses) {
                computeDue(areas_[static_cast<std::size_t>(use)].area);
            }
        }
        formula.begun = ++clock_;
        const Allowance::Grant grant(cells.allowance(), context.stepLimit);
        Evaluator evaluator(context, formula.cell.sheet, formula.cell.row, formula.cell.column,
                            formula.kind != FormulaKind::Normal);
        Value value = evaluator.evaluateFormula(formula.tree);
        if (formula.kind == FormulaKind::Normal) {
            if (value.isArray()) {
                value = value.arrayCells()[0];
            }
            storeAt(formula.slot, std::move(value));
        } else if (value.isArray() || !formula.spill.single()) {
            storeArray(index, value);
        } else {
            storeAt(formula.slot, std::move(value));
        }
        formula.done = true;
    } catch (const Unsupported& unsupported) {
        giveUp(formula, unsupported.what);
    } catch (const Postponed&) {
        formula.pass = pass_ - 1;
        throw;
    }
}

/// Leaves an unsupported formula with what the file saved.
void Recalculation::giveUp(Formula& formula, std::string why) {
    formula.why = std::move(why);
    cells.set(formula.slot, formula.saved ? *formula.saved : Value(ErrorCode::Name));
}

void Recalculation::computeLive(int index, bool again) {
    Formula& formula = formulas[static_cast<std::size_t>(index)];
    if (formula.pass == pass_ && !again) {
        return;
    }
    compute(index);
    if (!formula.why.empty()) {
        refuseUnsupported(index);
    }
}

void Recalculation::refuseUnsupported(int index) const {
    throw Failure(Failure::Kind::Unsupported, "Cell " + formulaName(index) + " uses " +
                                                  formulas[static_cast<std::size_t>(index)].why +
                                                  ", which is not supported.");
}

void Recalculation::bringUpToDate(const Area& area) {
    if (!anyDynamic_) {
        return;
    }
    computeDue(area);
    if (current_ >= 0) {
        noteFound(formulas[static_cast<std::size_t>(current_)], area);
    }
}

void Recalculation::noteFound(Formula& formula, const Area& area) {
    formula.found.push_back({area, clock_});
    anyFound_ = true;
}

void Recalculation::computeDue(const Area& area) {
    std::vector<int> late;
    cells.forEachSlot(area, [&](int, int, Slot slot) {
        const int formula = filledBy(slot);
        if (formula >= 0 && formulas[static_cast<std::size_t>(formula)].pass != pass_ &&
            (formulas[static_cast<std::size_t>(formula)].live || !formulas[static_cast<std::size_t>(formula)].done)) {
            late.push_back(formula);
        }
    });
    for (const int index : late) {
        const Formula& formula = formulas[static_cast<std::size_t>(index)];
        if (formula.pass == pass_ || formula.waiting) {
            continue;
        }
        if (!roomForFormulas()) {
            throw Postponed{index};
        }
        compute(index);
    }
}

std::string Recalculation::formulaName(int formula) const {
    const CellAddress& cell = formulas[static_cast<std::size_t>(formula)].cell;
    return raw->sheets[static_cast<std::size_t>(cell.sheet)].name + "!" + cellName(cell.row, cell.column);
}

void Recalculation::beginPass() {
    ++pass_;
    changes_.clear();
    outgrown_ = false;
}

/// Computes what the pass has not computed yet.
void Recalculation::computeRest(Part part) {
    for (const int index : order) {
        const Formula& formula = formulas[static_cast<std::size_t>(index)];
        const bool belongs = part == Part::All || (part == Part::Live ? formula.live : !formula.live && !formula.done);
        if (!belongs || formula.pass == pass_) {
            continue;
        }
        if (part == Part::Live) {
            computeLive(index, false);
        } else {
            compute(index);
        }
    }
}

/// Computes again what used cells before an array filled or left them in the same pass, until nothing does. What arrays
/// have filled stays known (`Formula::reach`), so that the next pass has the right order from the start.
void Recalculation::settle(Part part) {
    for (int round = 0; !changes_.empty(); ++round) {
        const std::vector<SpillChange> changes = std::exchange(changes_, {});
        if (!connected_) {
            connect();
            if (part == Part::Live) {
                listLive();
            }
        } else if (!anyFound_) {
            continue;  // all that use the cells came after the arrays
        }
        std::vector<int> again;
        const std::vector<bool> late = outdated(changes);
        for (const int index : order) {
            Formula& formula = formulas[static_cast<std::size_t>(index)];
            if (late[static_cast<std::size_t>(index)] && !(part == Part::Fixed && formula.live)) {
                again.push_back(index);
                formula.done = false;
                formula.pass = pass_ - 1;
            }
        }
        for (const int index : again) {
            if (round == mostRounds) {
                giveUp(formulas[static_cast<std::size_t>(index)], std::string(unsettled));
            }
            if (part == Part::Live && round == mostRounds) {
                refuseUnsupported(index);
            }
            if (round < mostRounds && formulas[static_cast<std::size_t>(index)].pass != pass_) {
                part == Part::Live ? computeLive(index, false) : compute(index);
            }
        }
    }
}

/// The formulas that used cells before one of the changes, and what depends on them.
std::vector<bool> Recalculation::outdated(const std::vector<SpillChange>& changes) const {
    std::vector<std::uint64_t> covered(areas_.size());
    for (const SpillChange& change : changes) {
        for (std::size_t i = 0; change.outgrown && i < areas_.size(); ++i) {
            if (areas_[i].area.overlaps(change.cells)) {
                covered[i] = std::max(covered[i], change.when);
            }
        }
    }
    const auto tooEarly = [&](const Formula& formula) {
        return std::any_of(formula.uses.begin(), formula.uses.end(),
                           [&](int use) { return covered[static_cast<std::size_t>(use)] > formula.begun; }) ||
               std::any_of(formula.found.begin(), formula.found.end(), [&](const AreaFound& found) {
                   return std::any_of(changes.begin(), changes.end(), [&](const SpillChange& change) {
                       return change.when > found.when && change.cells.overlaps(found.area);
                   });
               });
    };
    std::vector<bool> begins(formulas.size());
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        begins[i] = tooEarly(formulas[i]);
    }
    for (;;) {
        std::vector<bool> marked = downstream(begins, [](const UsedArea&) { return false; });
        // What formulas have found while they were computed is not among the dependencies.
        bool complete = true;
        for (std::size_t i = 0; i < formulas.size() && anyFound_; ++i) {
            if (!marked[i] && std::any_of(formulas[i].found.begin(), formulas[i].found.end(),
                                          [&](const AreaFound& found) { return holdsMarked(found.area, marked); })) {
                begins[i] = true;
                complete = false;
            }
        }
        if (complete) {
            return marked;
        }
    }
}

void Recalculation::computeAll() {
    forgetReach();
    relate();
    beginPass();
    anyFound_ = false;
    for (Formula& formula : formulas) {
        formula.done = false;
    }
    computeRest(Part::All);
    settle(Part::All);
    edits_.clear();
    prepared_ = false;
}

/// Lists what runs at every recalculation; throws Failure when something that it needs cannot be computed.
void Recalculation::listLive() {
    liveOrder.clear();
    for (const int index : order) {
        const Formula& formula = formulas[static_cast<std::size_t>(index)];
        if (formula.circular && (formula.live || !formula.saved)) {
            throw Failure(Failure::Kind::Model, "The workbook has a circular reference: " + formula.why + ".");
        }
        if (!formula.live && !formula.done && !formula.saved) {
            refuseUnsupported(index);
        }
        if (formula.live) {
            liveOrder.push_back(index);
        }
    }
}

void Recalculation::prepare() {
    relate();
    beginPass();
    computeRest(Part::Fixed);
    settle(Part::Fixed);
    listLive();
    if (program && program->scratchEnd == cells.slotCount()) {
        cells.truncate(program->scratch);
    }
    program = compileProgram(*this);
    prepared_ = true;
}

void Recalculation::recalculate() {
    if (!edits_.empty()) {
        applyEdits();
    }
    if (!prepared_) {
        prepare();
    }
    beginPass();
    context.now = program->usesClock ? currentSerial(raw->date1904) : context.now;
    runProgram(*this, *program);
    if (outgrown_) {
        computeRest(Part::Live);
    }
    settle(Part::Live);
}

void Recalculation::set(const CellAddress& cell, const Value& value) {
    const Slot slot = cells.findOrAdd(cell.sheet, cell.row, cell.column);
    spillOwner.resize(static_cast<std::size_t>(cells.slotCount()), -1);
    spillOwner[static_cast<std::size_t>(slot)] = -1;
    const int formula = formulaAt(slot);
    if (formula >= 0) {
        Formula& replaced = formulas[static_cast<std::size_t>(formula)];
        edits_.push_back(replaced.spill);
        leaveSpill(formula, ownCell(replaced));
        replaced.removed = true;
        formulaOfSlot_[static_cast<std::size_t>(slot)] = -1;
        connected_ = false;
    }
    cells.set(slot, value);
    edits_.push_back({cell.sheet, cell.row, cell.column, cell.row, cell.column});
}

/// Formulas downstream of the edited cells have to be computed again.
void Recalculation::applyEdits() {
    forgetReach();
    relate();
    const auto edited = [&](const Area& area) {
        return std::any_of(edits_.begin(), edits_.end(), [&](const Area& edit) { return edit.overlaps(area); });
    };
    std::vector<bool> begins(formulas.size());
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        const Formula& formula = formulas[i];
        // A #SPILL! may be free now, an array may be in the way of a new constant.
        begins[i] = formula.kind == FormulaKind::Dynamic &&
                    (cells.get(formula.slot).isError() || (!formula.spill.single() && edited(formula.spill)));
    }
    const std::vector<bool> touched = downstream(begins, [&](const UsedArea& used) { return edited(used.area); });
    for (const int index : order) {
        if (touched[static_cast<std::size_t>(index)]) {
            formulas[static_cast<std::size_t>(index)].done = false;
        }
    }
    edits_.clear();
    prepared_ = false;
}

}  // namespace quorva::workbook
