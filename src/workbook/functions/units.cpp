// CONVERT: units of measure and their prefixes.
#include <algorithm>
#include <cmath>

#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

enum class Measure : std::uint8_t {
    Mass,
    Distance,
    Time,
    Pressure,
    Force,
    Energy,
    Power,
    Magnetism,
    Temperature,
    Volume,
    Area,
    Information,
    Speed
};

enum class Prefixes : std::uint8_t { None, Decimal, Binary };

struct Unit {
    std::string_view name;
    Measure measure;
    double factor;                       ///< in the measure's base unit: g, m, s, Pa, N, J, W, T, K, m3, m2, bit, m/s
    Prefixes prefixes = Prefixes::None;  ///< Binary: those of the decimal system too
    int power = 1;                       ///< of the prefix: 2 and 3 for squares and cubes
};

constexpr auto decimal = Prefixes::Decimal;
constexpr double inch = 0.0254;
constexpr double foot = 0.3048;
constexpr double yard = 0.9144;
constexpr double mile = 1609.344;
constexpr double nauticalMile = 1852;
constexpr double lightYear = 9.4607304725808e15;
constexpr double parsec = 3.08567758128155e16;
constexpr double surveyFoot = 1200.0 / 3937;
constexpr double point = inch / 72;
constexpr double gallon = 231 * inch * inch * inch;
constexpr double imperialGallon = 4.54609e-3;
constexpr double pound = 453.59237;

// Factors: the definitions of the units (international foot and pound, U.S. and imperial measures, SI); the parsec and
// the atomic mass unit are the older values that worksheets keep.
constexpr Unit units[] = {
    {"g", Measure::Mass, 1, decimal},
    {"sg", Measure::Mass, pound * 9.80665 / foot},
    {"lbm", Measure::Mass, pound},
    {"u", Measure::Mass, 1.660538782e-24, decimal},
    {"ozm", Measure::Mass, pound / 16},
    {"grain", Measure::Mass, pound / 7000},
    {"cwt", Measure::Mass, pound * 100},
    {"shweight", Measure::Mass, pound * 100},
    {"uk_cwt", Measure::Mass, pound * 112},
    {"lcwt", Measure::Mass, pound * 112},
    {"hweight", Measure::Mass, pound * 112},
    {"stone", Measure::Mass, pound * 14},
    {"ton", Measure::Mass, pound * 2000},
    {"uk_ton", Measure::Mass, pound * 2240},
    {"LTON", Measure::Mass, pound * 2240},
    {"brton", Measure::Mass, pound * 2240},

    {"m", Measure::Distance, 1, decimal},
    {"mi", Measure::Distance, mile},
    {"Nmi", Measure::Distance, nauticalMile},
    {"in", Measure::Distance, inch},
    {"ft", Measure::Distance, foot},
    {"yd", Measure::Distance, yard},
    {"ang", Measure::Distance, 1e-10, decimal},
    {"ell", Measure::Distance, 45 * inch},
    {"ly", Measure::Distance, lightYear, decimal},
    {"parsec", Measure::Distance, parsec, decimal},
    {"pc", Measure::Distance, parsec, decimal},
    {"Picapt", Measure::Distance, point},
    {"Pica", Measure::Distance, point},
    {"pica", Measure::Distance, inch / 6},
    {"survey_mi", Measure::Distance, 5280 * surveyFoot},

    {"yr", Measure::Time, 31557600},
    {"day", Measure::Time, 86400},
    {"d", Measure::Time, 86400},
    {"hr", Measure::Time, 3600},
    {"mn", Measure::Time, 60},
    {"min", Measure::Time, 60},
    {"sec", Measure::Time, 1, decimal},
    {"s", Measure::Time, 1, decimal},

    {"Pa", Measure::Pressure, 1, decimal},
    {"p", Measure::Pressure, 1, decimal},
    {"atm", Measure::Pressure, 101325, decimal},
    {"at", Measure::Pressure, 101325, decimal},
    {"mmHg", Measure::Pressure, 133.322, decimal},
    {"psi", Measure::Pressure, pound / 1000 * 9.80665 / (inch * inch)},
    {"Torr", Measure::Pressure, 101325.0 / 760},

    {"N", Measure::Force, 1, decimal},
    {"dyn", Measure::Force, 1e-5, decimal},
    {"dy", Measure::Force, 1e-5, decimal},
    {"lbf", Measure::Force, 4.4482216152605},
    {"pond", Measure::Force, 9.80665e-3, decimal},

    {"J", Measure::Energy, 1, decimal},
    {"e", Measure::Energy, 1e-7, decimal},
    {"c", Measure::Energy, 4.184, decimal},
    {"cal", Measure::Energy, 4.1868, decimal},
    {"eV", Measure::Energy, 1.602176487e-19, decimal},
    {"ev", Measure::Energy, 1.602176487e-19, decimal},
    {"HPh", Measure::Energy, 3600 * 550 * 1.3558179483314004},
    {"hh", Measure::Energy, 3600 * 550 * 1.3558179483314004},
    {"Wh", Measure::Energy, 3600, decimal},
    {"wh", Measure::Energy, 3600, decimal},
    {"flb", Measure::Energy, 1.3558179483314004},
    {"BTU", Measure::Energy, 1055.05585262},
    {"btu", Measure::Energy, 1055.05585262},

    {"HP", Measure::Power, 550 * 1.3558179483314004},
    {"h", Measure::Power, 550 * 1.3558179483314004},
    {"PS", Measure::Power, 735.49875},
    {"W", Measure::Power, 1, decimal},
    {"w", Measure::Power, 1, decimal},

    {"T", Measure::Magnetism, 1, decimal},
    {"ga", Measure::Magnetism, 1e-4, decimal},

    {"C", Measure::Temperature, 1},
    {"cel", Measure::Temperature, 1},
    {"F", Measure::Temperature, 1},
    {"fah", Measure::Temperature, 1},
    {"K", Measure::Temperature, 1, decimal},
    {"kel", Measure::Temperature, 1, decimal},
    {"Rank", Measure::Temperature, 1},
    {"Reau", Measure::Temperature, 1},

    {"tsp", Measure::Volume, gallon / 768},
    {"tspm", Measure::Volume, 5e-6},
    {"tbs", Measure::Volume, gallon / 256},
    {"oz", Measure::Volume, gallon / 128},
    {"cup", Measure::Volume, gallon / 16},
    {"pt", Measure::Volume, gallon / 8},
    {"us_pt", Measure::Volume, gallon / 8},
    {"uk_pt", Measure::Volume, imperialGallon / 8, decimal},
    {"qt", Measure::Volume, gallon / 4},
    {"uk_qt", Measure::Volume, imperialGallon / 4},
    {"gal", Measure::Volume, gallon},
    {"uk_gal", Measure::Volume, imperialGallon},
    {"l", Measure::Volume, 1e-3, decimal},
    {"L", Measure::Volume, 1e-3, decimal},
    {"lt", Measure::Volume, 1e-3, decimal},
    {"ang3", Measure::Volume, 1e-30, decimal, 3},
    {"barrel", Measure::Volume, 42 * gallon},
    {"bushel", Measure::Volume, 2150.42 * inch* inch* inch},
    {"ft3", Measure::Volume, foot* foot* foot},
    {"in3", Measure::Volume, inch* inch* inch},
    {"ly3", Measure::Volume, lightYear* lightYear* lightYear},
    {"m3", Measure::Volume, 1, decimal, 3},
    {"mi3", Measure::Volume, mile* mile* mile},
    {"yd3", Measure::Volume, yard* yard* yard},
    {"Nmi3", Measure::Volume, nauticalMile* nauticalMile* nauticalMile},
    {"Picapt3", Measure::Volume, point* point* point},
    {"Pica3", Measure::Volume, point* point* point},
    {"GRT", Measure::Volume, 100 * foot* foot* foot},
    {"regton", Measure::Volume, 100 * foot* foot* foot},
    {"MTON", Measure::Volume, 40 * foot* foot* foot},

    {"uk_acre", Measure::Area, 4840 * yard* yard},
    {"us_acre", Measure::Area, 43560 * surveyFoot* surveyFoot},
    {"ang2", Measure::Area, 1e-20, decimal, 2},
    {"ar", Measure::Area, 100, decimal},
    {"ft2", Measure::Area, foot* foot},
    {"ha", Measure::Area, 10000},
    {"in2", Measure::Area, inch* inch},
    {"ly2", Measure::Area, lightYear* lightYear},
    {"m2", Measure::Area, 1, decimal, 2},
    {"Morgen", Measure::Area, 2500},
    {"mi2", Measure::Area, mile* mile},
    {"Nmi2", Measure::Area, nauticalMile* nauticalMile},
    {"Picapt2", Measure::Area, point* point},
    {"Pica2", Measure::Area, point* point},
    {"yd2", Measure::Area, yard* yard},

    {"bit", Measure::Information, 1, Prefixes::Binary},
    {"byte", Measure::Information, 8, Prefixes::Binary},

    {"admkn", Measure::Speed, 6080 * foot / 3600},
    {"kn", Measure::Speed, nauticalMile / 3600},
    {"m/h", Measure::Speed, 1.0 / 3600, decimal},
    {"m/hr", Measure::Speed, 1.0 / 3600, decimal},
    {"m/s", Measure::Speed, 1, decimal},
    {"m/sec", Measure::Speed, 1, decimal},
    {"mph", Measure::Speed, mile / 3600},
};

struct Prefix {
    std::string_view name;
    int exponent;
};
constexpr Prefix decimalPrefixes[] = {
    {"Y", 24}, {"Z", 21}, {"E", 18},  {"P", 15},  {"T", 12},  {"G", 9},   {"M", 6},
    {"k", 3},  {"h", 2},  {"da", 1},  {"e", 1},   {"d", -1},  {"c", -2},  {"m", -3},
    {"u", -6}, {"n", -9}, {"p", -12}, {"f", -15}, {"a", -18}, {"z", -21}, {"y", -24},
};
constexpr Prefix binaryPrefixes[] = {{"ki", 10}, {"Mi", 20}, {"Gi", 30}, {"Ti", 40},
                                     {"Pi", 50}, {"Ei", 60}, {"Zi", 70}, {"Yi", 80}};

/// A unit as written: with its prefix.
struct Scaled {
    const Unit* unit = nullptr;
    double scale = 1;
};

const Unit* findUnit(std::string_view name) {
    const auto found = std::find_if(std::begin(units), std::end(units), [&](const Unit& u) { return u.name == name; });
    return found == std::end(units) ? nullptr : &*found;
}

Scaled findScaled(std::string name) {
    if (name.size() > 2 && name[name.size() - 2] == '^') {  // m^2 is m2
        name.erase(name.size() - 2, 1);
    }
    if (const Unit* unit = findUnit(name)) {
        return {unit, 1};
    }
    for (const Prefix& prefix : binaryPrefixes) {
        if (name.rfind(prefix.name, 0) == 0) {
            const Unit* unit = findUnit(std::string_view(name).substr(prefix.name.size()));
            if (unit && unit->prefixes == Prefixes::Binary) {
                return {unit, std::ldexp(1.0, prefix.exponent)};
            }
        }
    }
    for (const Prefix& prefix : decimalPrefixes) {
        if (name.rfind(prefix.name, 0) == 0) {
            const Unit* unit = findUnit(std::string_view(name).substr(prefix.name.size()));
            if (unit && unit->prefixes != Prefixes::None) {
                return {unit, std::pow(10.0, prefix.exponent * unit->power)};
            }
        }
    }
    return {};
}

double toKelvin(double x, const Scaled& from) {
    switch (from.unit->name[0]) {
        case 'C':
        case 'c':
            return x + 273.15;
        case 'F':
        case 'f':
            return (x + 459.67) / 1.8;
        case 'R':
            return from.unit->name == "Rank" ? x / 1.8 : x * 1.25 + 273.15;
        default:
            return x * from.scale;
    }
}
double fromKelvin(double kelvin, const Scaled& to) {
    switch (to.unit->name[0]) {
        case 'C':
        case 'c':
            return kelvin - 273.15;
        case 'F':
        case 'f':
            return kelvin * 1.8 - 459.67;
        case 'R':
            return to.unit->name == "Rank" ? kelvin * 1.8 : (kelvin - 273.15) / 1.25;
        default:
            return kelvin / to.scale;
    }
}

/// Celsius and Fahrenheit directly, without the rounding of the way through Kelvin.
double convertTemperature(double x, const Scaled& from, const Scaled& to) {
    const auto isNamed = [](const Scaled& scaled, std::string_view a, std::string_view b) {
        return scaled.unit->name == a || scaled.unit->name == b;
    };
    if (isNamed(from, "C", "cel") && isNamed(to, "F", "fah")) {
        return x * 1.8 + 32;
    }
    if (isNamed(from, "F", "fah") && isNamed(to, "C", "cel")) {
        return (x - 32) / 1.8;
    }
    return fromKelvin(toKelvin(x, from), to);
}

Value convertUnits(Call&, Arguments arguments) {
    for (const Argument& unit : arguments.subspan(1)) {
        if (unit.text() == "kmph") {  // taken, but not documented: kilometres an hour or a thousand miles an hour?
            throw Unsupported{"the unit kmph"};
        }
    }
    const Scaled from = findScaled(arguments[1].text());
    const Scaled to = findScaled(arguments[2].text());
    if (!from.unit || !to.unit || from.unit->measure != to.unit->measure) {
        return ErrorCode::NA;
    }
    const double x = arguments[0].number();
    if (from.unit == to.unit && from.scale == to.scale) {
        return x;
    }
    if (from.unit->measure == Measure::Temperature) {
        return convertTemperature(x, from, to);
    }
    return x * from.scale * from.unit->factor / (to.scale * to.unit->factor);
}

constexpr FunctionRow table[] = {
    {.name = "CONVERT",
     .minArgs = 3,
     .maxArgs = 3,
     .kinds = "NTT",
     .category = Category::Engineering,
     .function = convertUnits,
     .refusesRanges = true},
};

}  // namespace

std::span<const FunctionRow> unitFunctions() { return table; }

}  // namespace quorva::workbook
