// The inside of a book: its cells, formulas, their dependencies and the order of calculation.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "workbook/evaluation/evaluator.h"
#include "workbook/formula/parser.h"
#include "workbook/recalculation/book.h"
#include "workbook/values/raw_book.h"

namespace quorva::workbook {

/// Cells that a formula asked for while it was computed, and when.
struct AreaFound {
    Area area;
    std::uint64_t when;
};

struct Formula {
    CellAddress cell;
    Slot slot = noSlot;
    FormulaKind kind = FormulaKind::Normal;
    Node tree;
    const std::string* text = nullptr;
    std::optional<Value> saved;
    Area spill;  ///< cells that the result fills; one cell for ordinary formulas
    /// Blocks that the result has filled since the last edit, none inside another: it may fill them again at every
    /// recalculation, so that what refers to them depends on this formula.
    std::vector<Area> reach;
    std::vector<int> uses;         ///< numbers of the areas that it refers to
    std::vector<AreaFound> found;  ///< while it was computed last
    bool volatileItself = false;
    bool callsModel = false;
    bool dynamic = false;  ///< refers to cells found only while evaluating
    bool unread = false;   ///< it, or a name in it, could not be parsed
    bool live = false;     ///< runs at every recalculation
    bool done = false;     ///< its cell holds a value that was computed or saved
    bool subtotal = false;
    bool removed = false;  ///< an edit replaced it
    bool waiting = false;  ///< it is computed, or will be when what it needs is
    unsigned pass = 0;
    std::uint64_t begun = 0;  ///< when the evaluator last began it
    std::string why;          ///< what is not supported, or the cycle it is part of
    bool circular = false;
};

/// A block of cells that formulas refer to. The formulas whose cells lie in it are found by walking it: lists of them
/// would take far more room than the formulas (running totals).
struct UsedArea {
    Area area;
    int only = -1;              ///< the formula of an area of one cell, -1 when there is none
    std::vector<int> spillers;  ///< formulas whose results reach into it
};

/// Cells that an array filled or left.
struct SpillChange {
    Area cells;
    std::uint64_t when;
    bool outgrown;  ///< what depends on them was not known to
};

struct Program;
struct ModuleLink;

class Recalculation {
public:
    explicit Recalculation(std::unique_ptr<RawBook> book);
    ~Recalculation();
    Recalculation(const Recalculation&) = delete;
    Recalculation& operator=(const Recalculation&) = delete;

    void computeAll();
    void recalculate();
    void set(const CellAddress& cell, const Value& value);
    void bringUpToDate(const Area& area);
    /// Computes one formula, and before it those that it turns out to need, and stores the results.
    void compute(int formula);
    /// As compute, for the part that runs at every recalculation: what is not supported ends it.
    /// `again`: also when it was computed in this pass.
    void computeLive(int formula, bool again);
    bool computed(int formula) const { return formulas[static_cast<std::size_t>(formula)].pass == pass_; }
    void markComputed(int formula) { formulas[static_cast<std::size_t>(formula)].pass = pass_; }
    bool anyDynamic() const { return anyDynamic_; }
    /// Whether an array fills cells that it did not fill before: compiled code does not know of them.
    bool outgrown() const { return outgrown_; }
    std::string formulaName(int formula) const;
    int formulaAt(Slot slot) const {
        return static_cast<std::size_t>(slot) < formulaOfSlot_.size() ? formulaOfSlot_[slot] : -1;
    }
    /// The formula that stands in the cell or has spilled into it, -1 when there is none.
    int filledBy(Slot slot) const {
        const int formula = formulaAt(slot);
        return formula < 0 && static_cast<std::size_t>(slot) < spillOwner.size() ? spillOwner[slot] : formula;
    }
    /// Finds out what depends on what, unless that is known: `order` and the marks of the formulas.
    void relate() {
        if (!connected_) {
            connect();
        }
    }
    /// Forgets what was compiled: the next recalculation prepares anew.
    void unprepare() { prepared_ = false; }

    std::unique_ptr<RawBook> raw;
    std::unique_ptr<Symbols> symbols;
    CellStore cells;
    std::vector<Formula> formulas;  ///< in sheet, row and column order
    std::vector<int> order;         ///< numbers of all formulas, dependencies first
    std::vector<int> liveOrder;
    std::vector<int> spillOwner;  ///< by slot: number of the formula whose result spilled there, else -1
    EvaluationContext context;
    std::unique_ptr<Program> program;
    std::unique_ptr<ModuleLink> module;

private:
    /// What a pass computes: every formula; what does not run at every recalculation and is due; what does.
    enum class Part { All, Fixed, Live };

    void layCells();
    std::optional<std::string> typedFormula(int sheet, int row, int column) const;
    void addFormulas();
    void connect();
    void sortFormulas();
    void markLive();
    std::vector<bool> downstream(const std::vector<bool>& begins,
                                 const std::function<bool(const UsedArea&)>& changed) const;
    bool holdsMarked(const Area& area, const std::vector<bool>& marked) const;
    void prepare();
    void listLive();
    void beginPass();
    void computeRest(Part part);
    void settle(Part part);
    std::vector<bool> outdated(const std::vector<SpillChange>& changes) const;
    void computeOne(int formula, bool early);
    void computeDue(const Area& area);
    void noteFound(Formula& formula, const Area& area);
    void giveUp(Formula& formula, std::string why);
    void refuseUnsupported(int formula) const;
    Value asDisplayed(Slot slot, Value value) const;
    void storeAt(Slot slot, Value value);
    void storeArray(int index, const Value& value);
    bool blocked(int index, const Area& target) const;
    void leaveSpill(int index, const Area& kept);
    void reachInto(Formula& formula, const Area& target);
    void forgetReach();
    int useArea(const Area& area);
    void collectUses(Formula& formula, const Node& node);
    void describeCircle(const std::vector<int>& path, int from);
    void applyEdits();

    std::vector<int> formulaOfSlot_;
    std::vector<int> styleOfSlot_;  ///< with precision as displayed, of the cells that the file has
    std::vector<UsedArea> areas_;
    std::map<std::array<int, 5>, int> areaNumbers_;
    std::vector<Area> edits_;
    std::vector<SpillChange> changes_;  ///< of this pass, not settled yet
    std::uint64_t clock_ = 0;           ///< counts computations and changes of spills
    unsigned pass_ = 0;
    int current_ = -1;  ///< the formula being computed
    bool outgrown_ = false;
    bool anyFound_ = false;  ///< a formula has found areas
    bool anyDynamic_ = false;
    bool connected_ = false;
    bool prepared_ = false;
    bool computing_ = false;
};

}  // namespace quorva::workbook
