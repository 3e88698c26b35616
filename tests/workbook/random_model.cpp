#include "random_model.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <sstream>

#include "common/cell_names.h"

namespace quorva::workbook {
namespace {

constexpr int formulaColumns = 4;  // A to D; E holds the inputs, G to J, M and N arrays, K and L random numbers
constexpr int inputCount = 4;
constexpr int mostArguments = 255;

/// Writes formulas for the cells of a row; they refer to rows above, to inputs and to arrays, so that there are no
/// cycles.
struct FormulaWriter {
    const Choice& below;
    int row;

    std::string number() const {
        const char* const special[] = {"0",      "1", "-1",  "1E+300", "0.1",      "1E-300",
                                       "1E-160", "3", "100", "0.3",    "2.5E-308", "70584.250081233738"};
        return below(3) == 0 ? special[below(12)] : std::to_string(below(2000) - 1000) + ".25";
    }

    std::string reference() const {
        switch (below(8)) {
            case 0:
                return cellName(1 + below(8), 6 + below(4));
            case 1:
                return cellName(below(5), 4);
            case 2:
                return cellName(1 + below(4), 12 + below(2));
            case 3:
                return below(2) == 0 ? "Rate" : "Twice";
            default:
                return cellName(below(row), below(formulaColumns));
        }
    }

    std::string range() const {
        if (below(4) == 0) {
            const char* const arrays[] = {"G2:G9", "G1:J8", "I2:J5", "I2:I4", "M2:N5", "Block"};
            return arrays[below(6)];
        }
        const int a = below(row);
        const int b = below(row);
        return cellName(std::min(a, b), below(2)) + ":" + cellName(std::max(a, b), 2 + below(below(3) == 0 ? 8 : 2));
    }

    /// What stands in a number's place now and then.
    std::string oddity() const {
        const char* const written[] = {"TRUE", "FALSE", "\"3\"", "\"x\"", "\"1/5/2010\"", "\"\"", "-0", "#N/A"};
        return written[below(8)];
    }

    std::string wideCall() const {
        std::string call = std::string(below(2) == 0 ? "SUM" : below(2) == 0 ? "MAX" : "AND") + "(";
        const int count = 1 + below(below(4) == 0 ? mostArguments : 12);
        const std::string sign = below(3) == 0 ? "-" : "";
        for (int i = 0; i < count; ++i) {
            call += (i > 0 ? "," : "") + sign + (below(40) == 0 ? range() : below(4) == 0 ? number() : reference());
        }
        return call + ")";
    }

    std::string expression(int depth) const {
        const auto inner = [&] { return expression(depth - 1); };
        switch (depth == 0 ? below(3) : below(35)) {
            case 0:
            case 1:
                return reference();
            case 2:
                return below(8) == 0 ? oddity() : number();
            case 3:
                return "(" + inner() + "+" + inner() + ")";
            case 4:
                return inner() + "-" + reference();
            case 5:
                return "(" + inner() + ")*" + reference();
            case 6:
                return "(" + inner() + ")/" + reference();
            case 7:
                return "IF(" + inner() + ">" + inner() + "," + inner() + "," + inner() + ")";
            case 8:
                return "SUM(" + range() + "," + inner() + ")";
            case 9:
                return "MAX(" + inner() + "," + range() + ")";
            case 10:
                return "MIN(" + range() + "," + inner() + "*1E300,5)";
            case 11:
                return "ABS(" + inner() + ")";
            case 12:
                return "SQRT(" + inner() + ")";
            case 13:
                return "IF(AND(" + inner() + "<=" + inner() + ",OR(" + inner() + "<>0,TRUE))," + inner() + ",7)";
            case 14:
                return "COUNTIF(" + range() + ",\">0\")";
            case 15:
                return "AVERAGE(" + range() + ")^2%";
            case 16:
                return "SUM(IF(" + inner() + ">0," + reference() + "," + reference() + ")," + inner() + ")";
            case 17:
                return "MIN(IF(" + inner() + ">0," + reference() + "," + reference() + "),7)";
            case 18:
                return "SUMPRODUCT(" + range() + "," + range() + ")";
            case 19:
                return "NPV(" + inner() + "/100," + range() + ")";
            case 20:
                return "GESTEP(" + inner() + (below(2) == 0 ? ">0)" : ")");
            case 21:
                return "YEAR(" + inner() + ")";
            case 22:
                return "EDATE(" + reference() + "," + number() + ")";
            case 23:
                return "MOD(" + inner() + "," + reference() + ")";
            case 24:
                return "ROUND(" + inner() + "," + reference() + ")";
            case 25:
                return "LN(" + reference() + "-RAND()*0)";
            case 26:
                return "-" + inner() + "^" + reference();
            case 27:
                return "+" + reference() + "%";
            case 28:
                return "SUMPRODUCT(I2:I4,G2:G4)";
            case 29:
                return "INDIRECT(\"" + cellName(below(row), below(formulaColumns)) + "\")";
            case 30:
                return "SUM(G2#," + inner() + ")";
            case 31:
                return "(" + inner() + ")^" + std::to_string(below(9) - 4);
            case 32:
                return "(" + inner() + ")^0.3";
            case 33: {
                const std::string first = reference();
                const std::string second = reference();  // rounding noise is left of these
                return first + "+" + second + "-" + first + "-" + second;
            }
            default:
                return wideCall();
        }
    }
};

std::string constantText(const FormulaWriter& writer) {
    switch (writer.below(12)) {
        case 0:
            return "\"text\"";
        case 1:
            return "TRUE";
        case 2:
            return "#N/A";
        case 3:
            return "";
        default:
            return writer.number();
    }
}

std::string shown(const CellValue& value) {
    std::ostringstream out;
    out.precision(17);
    out << value.number << value.text << " (" << static_cast<int>(value.type) << ")";
    return out.str();
}

bool same(const CellValue& a, const CellValue& b) {
    return a.type == b.type && std::bit_cast<std::uint64_t>(a.number) == std::bit_cast<std::uint64_t>(b.number) &&
           a.text == b.text;
}

}  // namespace

RandomModel randomModel(const Choice& below) {
    RandomModel model;
    std::ostringstream lines;
    const int rows = 4 + below(10);
    FormulaWriter writer{below, 1};
    if (below(2) == 0) {
        lines << "date1904\n";
    }
    lines << "name Rate: Sheet1!$E$2\nname Block: Sheet1!$A$1:$D$1\nname Twice: Sheet1!$A$1*2\n";
    for (int i = 0; i < inputCount; ++i) {
        // RAND()*0 makes the first row live, whatever it holds otherwise. What is drawn is drawn there: the numbers are
        // the same then in whatever order the other formulas are computed.
        lines << cellName(0, i) << ": =E" << i + 1 << "+RAND()*0\n"
              << cellName(i, 4) << ": " << constantText(writer) << "\n";
        model.inputs.push_back({0, i, 4});
    }
    lines << "K1: =RAND()\nL1: =RAND()\n"
          << "G2: =SEQUENCE(1+INT(K1*" << 1 + below(8) << "))*" << (below(2) == 0 ? "E1" : "A1") << "\n"
          << "I2: =SEQUENCE(1+INT(L1*3),1+INT(K1*2))+" << (below(2) == 0 ? "E2" : "B1") << "\n"
          << "M2:N4: {=E1:E3*" << (below(2) == 0 ? "A1" : "C1:D1") << "}\n";
    if (below(4) == 0) {
        lines << cellName(2 + below(6), 6) << ": " << constantText(writer) << "\n";
    }
    for (int row = 1; row < rows; ++row) {
        writer.row = row;
        for (int column = 0; column < formulaColumns; ++column) {
            lines << cellName(row, column) << ": ";
            if (below(6) == 0) {
                lines << constantText(writer) << "\n";
            } else {
                lines << (below(4) == 0 ? "legacy =" : "=") << writer.expression(2) << "\n";
            }
        }
    }
    model.lines = lines.str();
    return model;
}

void editBoth(const RandomModel& model, const Choice& below, Book& live, Book& whole) {
    CellValue value;
    value.type = below(8) == 0 ? CellValue::Type::Text : CellValue::Type::Number;
    value.number = value.type == CellValue::Type::Number ? below(100) - 50 : 0;
    value.text = value.type == CellValue::Type::Text ? "x" : "";
    const CellAddress cell = model.inputs[static_cast<std::size_t>(below(static_cast<int>(model.inputs.size())))];
    live.set(cell, value);
    whole.set(cell, value);
}

std::string recalculateBoth(unsigned seed, Book& live, Book& whole) {
    live.seed(seed);
    whole.seed(seed);
    live.recalculate();
    whole.recalculateAll();
    for (const FormulaCell& cell : whole.formulas()) {
        const CellValue value = live.value(cell.cell);
        if (!same(value, cell.computed)) {
            return cellName(cell.cell.row, cell.cell.column) + " =" + cell.formula + " is " + shown(value) +
                   " in the live part, " + shown(cell.computed) + " in the whole";
        }
    }
    return {};
}

}  // namespace quorva::workbook
