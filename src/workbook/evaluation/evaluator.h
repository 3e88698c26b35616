// Walks a formula's tree. It defines what a formula means. The compiled program has instructions of its own for the
// formulas that models are made of; it must give the same numbers to the last bit, or leave the formula to this one.
#pragma once

#include <array>
#include <functional>
#include <memory>

#include "workbook/evaluation/references.h"
#include "workbook/formula/parser.h"

namespace quorva::workbook {

using RandomState = std::array<std::uint64_t, 4>;

/// What the evaluator asks the book for.
struct EvaluationContext {
    CellStore* cells = nullptr;
    Symbols* symbols = nullptr;
    const RawBook* raw = nullptr;
    /// Brings the formula cells of an area up to date that were found only while evaluating (OFFSET, INDIRECT).
    std::function<void(const Area&)> bringUpToDate;
    /// Calls the model function of the node; the arguments are evaluated by it.
    std::function<Value(struct Evaluator&, const Node&)> callModel;
    /// The formula of a cell as it is typed, with its equals sign; nothing when it has none.
    std::function<std::optional<std::string>(int sheet, int row, int column)> formulaText;
    /// What the formula of a cell would give if it were copied so many rows down; nothing when the cell has none.
    std::function<std::optional<Value>(int sheet, int row, int column, int rowsDown)> copiedDown;
    /// The cells that the array formula of a cell fills; false when there is none.
    std::function<bool(int sheet, int row, int column, Area& area)> spillOf;
    RandomState random{0x9E3779B97F4A7C15, 0xBF58476D1CE4E5B9, 0x94D049BB133111EB, 0x2545F4914F6CDD1D};
    double now = 0;
    std::int64_t stepLimit = Allowance::usual;  ///< steps that one formula may take

    double nextRandom();
    void seedRandom(std::uint64_t seed);
};

/// Variables of LET and LAMBDA, innermost first.
struct Scope {
    Scope(int number, bool left, Value content, std::shared_ptr<Scope> around)
        : variable(number), omitted(left), value(std::move(content)), outer(std::move(around)) {}
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    int variable;
    bool omitted;
    Value value;
    std::shared_ptr<Scope> outer;
};

/// A lambda: where it is defined, and the variables that it saw there.
Value lambdaValue(const Node& definition, std::shared_ptr<Scope> scope);
struct LambdaBody : Body {
    LambdaBody(const Node& definition, std::shared_ptr<Scope> captured, void (*destroyer)(Body*))
        : Body(destroyer), node(&definition), scope(std::move(captured)) {}
    const Node* node;
    std::shared_ptr<Scope> scope;
};

/// Sums and differences as they are, or those that nearly cancel as 0 (closingSum).
enum class Sums : bool { Exact, Closing };

struct Evaluator {
    /// How ranges in a scalar's place are taken: intersected; mapped because a function wants an array; mapped because
    /// the whole formula is an array formula.
    enum class Mode : std::uint8_t { Scalar, ArrayArgument, ArrayFormula };

    Evaluator(EvaluationContext& context, int sheet, int row, int column, bool arrayFormula);

    Value evaluate(const Node& node);
    /// A value or an array, no reference.
    Value operand(Value value);
    Value evaluateOperand(const Node& node) { return operand(evaluate(node)); }
    /// The value or array of a whole formula, in which a sum or difference as the last operation may vanish.
    Value evaluateFormula(const Node& tree);
    /// One value: the first of an array.
    Value evaluateScalar(const Node& node);
    Value invoke(const Value& lambda, std::span<const Value> arguments);

    EvaluationContext& context;
    Call call;
    Mode mode;
    std::shared_ptr<Scope> scope;

private:
    Value unary(const Node& node);
    Value binary(const Node& node, Sums sums = Sums::Exact);
    Value referenceOperator(const Node& node);
    Value tableCall(const Node& node);
    Value variable(const Node& node);
    Value invokeRow(const FunctionRow& row, std::span<const Value> given);

    // lazy_functions.cpp
    Value lazyCall(const Node& node);
    Value ifFunction(const Node& node);
    Value ifErrorFunction(const Node& node, bool onlyNA);
    Value ifsFunction(const Node& node);
    Value switchFunction(const Node& node);
    Value chooseFunction(const Node& node);
    Value letFunction(const Node& node);

    // reference_functions.cpp
    Value indexFunction(const Node& node);
    Value indexOne(const Value& base, const Value& row, const Value& column, const Value& area, int given);
    Value offsetFunction(const Node& node);
    Value offsetOne(const Area& from, std::span<const Value> numbers);
    Value forEachReference(std::span<const Value> values, const std::function<Value(std::span<const Value>)>& refer);
    Value indirectFunction(const Node& node);
    Value referenceFromText(const std::string& text);
    bool areaFromNumbers(std::string_view text, Area& area);
    Value rowFunction(const Node& node, bool column);
    Value countFunction(const Node& node, bool columns);
    Value cellFunction(const Node& node);
    Value sheetFunction(const Node& node, bool count);
    Value anchorFunction(const Node& node);
    Value formulaFunction(const Node& node, bool text);

    // lambda_functions.cpp
    Value mapFunction(const Node& node);
    Value reduceFunction(const Node& node, bool scan);
    Value byFunction(const Node& node, bool rows);
    Value makeArrayFunction(const Node& node);
};

/// One arithmetic, comparison or text operation on scalars.
Value operate(Operator op, const Value& left, const Value& right, bool date1904, Sums sums = Sums::Exact);
/// Calls fn(element of left, element of right) for arrays combined as worksheets do: single rows and columns are
/// repeated, what has no partner is #N/A.
Value combine(const Call& call, const Value& left, const Value& right,
              const std::function<Value(const Value&, const Value&)>& fn);

}  // namespace quorva::workbook
