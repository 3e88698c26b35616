// A workbook read, compiled and ready to be recalculated: the embedded host.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbook/values/areas.h"
#include "workbook/values/failure.h"

namespace quorva::workbook {

/// Both ends included.
struct CellRange {
    int sheet = 0;
    int firstRow = 0;
    int firstColumn = 0;
    int lastRow = 0;
    int lastColumn = 0;
};

struct CellValue {
    enum class Type { Blank, Number, Text, Boolean, Error };
    Type type = Type::Blank;
    double number = 0;  ///< numbers; 1 and 0 for Booleans
    std::string text;   ///< texts in UTF-8; "#N/A" and so on for errors
};

/// A cell with a formula, or one into which an array formula spills.
struct FormulaCell {
    CellAddress cell;
    std::string formula;      ///< without the equals sign; of a spilled cell: its anchor's
    bool isVolatile = false;  ///< depends on a volatile function or on a model function
    std::optional<CellValue> saved;
    bool unsupported = false;
    std::string why;  ///< of an unsupported cell: what is not supported
    CellValue computed;
    bool spilled = false;
};

/// A worksheet function that can be computed, or a model function of the attached module.
struct FunctionInfo {
    std::string_view name;
    std::string_view category;
    int minArgs = 0;
    int maxArgs = 0;  ///< 255: any number
    bool isVolatile = false;
};
/// Every worksheet function that the host computes, sorted by name.
std::span<const FunctionInfo> functions();

class Book {
public:
    /// Reads and compiles; throws Failure.
    explicit Book(const std::filesystem::path& file);
    /// A book written as lines of text, for tests: "A1: 5", "A2: =A1*2", "Sheet2!A1: \"text\"".
    static Book fromText(std::string_view lines);
    ~Book();
    Book(Book&&) noexcept;
    Book& operator=(Book&&) noexcept;

    int sheetCount() const;
    const std::string& sheetName(int sheet) const;
    /// "Sheet!A1:D4", "'My sheet'!B2", "A1" (first sheet) or a defined name; nothing when it means no range.
    std::optional<CellRange> resolve(std::string_view text) const;
    CellValue value(const CellAddress& cell) const;
    /// Every cell that holds a constant.
    std::vector<CellAddress> constants() const;
    /// Every formula cell in sheet, row and column order, and the cells that arrays spill into.
    std::vector<FormulaCell> formulas() const;
    /// Sets a constant; what depends on it changes at the next recalculation.
    void set(const CellAddress& cell, const CellValue& value);

    /// How many steps (cells read, elements made, operators and functions evaluated) one formula may take; beyond them
    /// it counts as unsupported. Without it 10,000,000,000, which is some minutes.
    void setStepLimit(std::int64_t steps);
    /// Computes every formula, whatever the file saved. Unsupported cells keep their saved value.
    void recalculateAll();

    /// Makes this book the one that Excel4v answers for and runs xlAutoOpen of the linked module.
    void attach();
    /// One recalculation: every volatile and model cell and what depends on them, dependencies first. The first one
    /// prepares the program; throws Failure when the part that has to run has a cycle or something unsupported.
    void recalculate();
    /// Starts the numbers of RAND and its kind; without it they start the same in every process.
    void seed(std::uint64_t seed);
    /// Cells whose formula calls a model function, in calculation order.
    std::vector<CellAddress> modelCells() const;

private:
    struct Contents;
    explicit Book(std::unique_ptr<Contents> contents);
    std::unique_ptr<Contents> contents_;
};

}  // namespace quorva::workbook
