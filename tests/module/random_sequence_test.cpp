// Any exported function, in any order, with any arguments of the right type: nothing crashes, hangs, or leaves the
// arrays that it was given.
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <set>

#include "module_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

class RandomSequence : public ModuleModel, public ::testing::WithParamInterface<unsigned> {
protected:
    static constexpr int room = 48;  ///< longest side of an array given to the module

    std::mt19937_64 engine{GetParam()};

    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }
    template <class T>
    T oneOf(std::initializer_list<T> values) {
        return values.begin()[below(static_cast<int>(values.size()))];
    }
    int wildInt() { return oneOf({INT_MIN, -77, -1, 0, 1, 2, 3, 5, 8, 26, 61, 100, 65'000, 1 << 20, INT_MAX}); }
    int smallInt() { return oneOf({-3, 0, 1, 1, 2, 3, 4, 5, 7, 12}); }
    /// A number of rows or columns for which the test has an array.
    int side() { return oneOf({-2, 0, 1, 2, 3, 5, 12, room}); }
    double wildDouble() {
        return oneOf({0.0, 1.0, 0.5, 2.0, -1.0, 0.05, 0.95, 10.0, 1e9, 1e300, -1e300, 1e-300, MissingValue,
                      std::nan(""), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()});
    }
    short wildBool() { return oneOf<short>({0, -1, -1, 1, 32'767, -32'768}); }
    std::vector<double> doubles(int count) {
        std::vector<double> values(static_cast<std::size_t>(count));
        for (double& x : values) {
            x = wildDouble();
        }
        return values;
    }
    std::vector<double> square() { return doubles(room * room); }
    /// A correlation matrix that is likely to be accepted.
    std::vector<double> correlations(int n) {
        std::vector<double> m(room * room, oneOf({0.0, 0.5, 1.0, -0.9}));
        for (int i = 0; i < n; ++i) {
            m[static_cast<std::size_t>(i * n + i)] = 1.0;
        }
        return below(3) == 0 ? square() : m;
    }
    HostStringArray* labels() {
        matrix<std::u16string> names(below(6), 1);
        for (std::size_t i = 0; i < names.size(); ++i) {
            names.data()[i] = u"f" + std::u16string(1, static_cast<char16_t>(u'0' + below(10)));
        }
        return toHostStringArray(names);
    }
    /// Strings that a front end lends; released with the list.
    struct Strings {
        std::vector<HostString> list = std::vector<HostString>(room * room);
        ~Strings() {
            for (HostString text : list) {
                SysFreeString(text);
            }
        }
        HostString* data() { return list.data(); }
    };

    void anyCell() {
        quick.cell = {std::string("[Book]") + static_cast<char>('A' + below(below(4) == 0 ? 12 : 2)),
                      oneOf({0, 1, 2, 3, 4, 64'999, 65'000, 65'535}), oneOf({0, 1, 2, 254, 255})};
    }
    void modelFunction() {
        anyCell();
        const std::string name = "f" + std::to_string(below(10));
        const int law = below(3) == 0 ? wildInt() : 1 + below(35);
        XLOPER reference{};
        reference.type = oneOf({hosttype::localReference, hosttype::reference, hosttype::number});
        reference.value.localReference.range = {static_cast<std::uint16_t>(below(6)), 0,
                                                static_cast<std::uint8_t>(below(4)), 0};
        std::uint16_t rows = static_cast<std::uint16_t>(below(5));
        std::uint16_t columns = static_cast<std::uint16_t>(below(3));
        std::vector<double> list = doubles(room);
        switch (below(6)) {
            case 0:
                QUORVA_EXPORT(QUORVA_SimDist)
                (name.c_str(), law, wildDouble(), wildDouble(), wildDouble(), wildDouble(), wildDouble(), wildInt(),
                 wildDouble(), wildDouble(), wildInt());
                break;
            case 1:
                QUORVA_EXPORT(QUORVA_SimSVar)
                (name.c_str(), wildDouble(), wildDouble(), smallInt(), wildInt(), wildBool(), wildDouble(), wildInt());
                break;
            case 2:
                QUORVA_EXPORT(QUORVA_SimRes)(name.c_str(), wildDouble(), wildDouble(), wildBool(), wildInt());
                break;
            case 3:
                QUORVA_EXPORT(QUORVA_SimStat)(name.c_str(), &reference, below(2) ? wildInt() : below(104), wildInt());
                break;
            case 4:
                QUORVA_EXPORT(QUORVA_SimEmpiricUniform)
                (name.c_str(), &rows, &columns, list.data(), wildBool(), wildDouble(), wildInt());
                break;
            default:
                QUORVA_EXPORT(QUORVA_SimTriangularQ)
                (name.c_str(), wildDouble(), wildDouble(), wildDouble(), wildDouble(), wildDouble(), smallInt(),
                 wildDouble(), wildDouble(), wildBool(), wildDouble(), wildInt());
        }
    }
    /// A model that makes a run possible.
    void soundModel() {
        quick.cell = {"[Book]A", 10, 1};
        QUORVA_EXPORT(QUORVA_SimNormal)("f1", 1, 2, 0, 0, 0, 0, 0, 1);
        quick.cell.row = 11;
        QUORVA_EXPORT(QUORVA_SimExponential)("f2", 2, smallInt(), 0.1, 0.9, 0, 0, 1);
        quick.cell.row = 12;
        QUORVA_EXPORT(QUORVA_SimRes)("f3", wildDouble(), 0, -1, 1);
    }
    void startSoundRun() {
        init();
        soundModel();
        ASSERT_EQ(init2(), 0);
        soundModel();
        ASSERT_EQ(begin(5, 3), 0);
    }
    void control() {
        int seed = wildInt();
        int out[5] = {};
        switch (below(8)) {
            case 0:
                QUORVA_EXPORT(Cpp_SimReset)(&seed, wildBool(), out);
                break;
            case 1:
                QUORVA_EXPORT(Cpp_SimInit)(wildBool(), &seed, wildBool(), out);
                soundModel();
                break;
            case 2:
            case 3:
                setUp();
                soundModel();
                break;
            case 4:
            case 5:
                QUORVA_EXPORT(Cpp_SimBegin)
                (below(8) == 0 ? wildInt() : smallInt(), below(8) == 0 ? INT_MAX : smallInt(), wildBool(), wildInt(),
                 wildDouble(), wildDouble(), wildBool(), smallInt(), wildDouble(), out, out + 1, out + 2, out + 3,
                 out + 4);
                break;
            default:
                QUORVA_EXPORT(Cpp_SimNext)();
                soundModel();
        }
    }
    void setUp() {
        const int n = side() / 4;
        const int spc = side();
        HostStringArray* names = labels();
        HostStringArray* spcNames = below(4) == 0 ? nullptr : labels();
        auto given = correlations(n);
        auto lower = doubles(room);
        QUORVA_EXPORT(Cpp_SimInit2)
        (wildBool(), n, n < 1 ? nullptr : given.data(), &names, wildBool(), spc, wildDouble(), lower.data(),
         lower.data(), lower.data(), spcNames ? &spcNames : nullptr);
        SafeArrayDestroy(names);
        if (spcNames) {
            SafeArrayDestroy(spcNames);
        }
    }
    void errors() {
        const ReportedError first = moduleError(below(2) ? -1 : 0);
        static_cast<void>(first);
        moduleError2();
        QUORVA_EXPORT(Cpp_SimGetStatus)();
    }
    void registry() {
        int column = wildInt();
        int row = wildInt();
        int slot = wildInt();
        if (below(2) == 0) {
            QUORVA_EXPORT(checkfieldentry)(&column, &row, &slot, static_cast<std::uint32_t>(below(20)), u"sheet");
        } else {
            QUORVA_EXPORT(getSheetId)(&column, &row, &slot, static_cast<std::uint32_t>(below(20)), u"sheet");
        }
        QUORVA_EXPORT(setFieldInfo)(wildInt(), wildInt(), smallInt(), static_cast<std::uint32_t>(smallInt()));
        QUORVA_EXPORT(getFieldInfo)(wildInt(), wildInt(), wildInt());
    }
    void sampling() {
        int seed = wildInt();
        int updated = 0;
        QUORVA_EXPORT(getLHSRandom01)(wildInt(), wildInt(), wildDouble(), wildDouble(), &seed, wildBool(), &updated);
        if (below(4) == 0) {
            QUORVA_EXPORT(getNormalCorr)(wildInt(), &seed, wildBool(), &updated);
        }
        QUORVA_EXPORT(TheoStat)(wildInt(), smallInt(), wildDouble(), wildDouble(), wildDouble(), wildDouble());
        matrix<double> factor(below(5), below(5), wildDouble());
        matrix<double> groups(below(5), below(7), wildDouble());
        int count = 0;
        QUORVA_EXPORT(FindSubGroups)(&factor, smallInt(), &groups, &count);
    }
    void statistics() {
        switch (below(5)) {
            case 0:
                QUORVA_EXPORT(CalcSimStat)(wildInt(), wildDouble());
                break;
            case 1:
                QUORVA_EXPORT(SimUpdateStat)();
                break;
            case 2:
                QUORVA_EXPORT(SimCalcStat)(wildInt(), below(2) ? smallInt() : wildInt(), wildInt(), below(105));
                break;
            case 3:
                QUORVA_EXPORT(Cpp_SimConv)();
                break;
            default:
                QUORVA_EXPORT(checkVarlistCorr)();
                QUORVA_EXPORT(checkVarlistSPC)();
                QUORVA_EXPORT(checkVarlistDoubles)();
        }
    }
    void tables() {
        std::vector<double> table = square(), second = square(), third = square();
        std::vector<int> indices(room), more(room);
        Strings texts, others;
        int out = 0;
        switch (below(9)) {
            case 0:
                QUORVA_EXPORT(Cpp_SimEnd)
                (wildDouble(), below(2) ? wildInt() : smallInt(), table.data(), texts.data(), second.data(),
                 others.data(), &out, third.data());
                break;
            case 1:
                QUORVA_EXPORT(Cpp_GetSimRes)(wildInt(), side(), table.data());
                break;
            case 2:
                QUORVA_EXPORT(Cpp_GetSimMat)(side(), side(), table.data());
                break;
            case 3:
                QUORVA_EXPORT(Cpp_GetSimMatGrp)(side(), side(), table.data(), smallInt(), texts.data());
                break;
            case 4:
                QUORVA_EXPORT(Cpp_GetSimMatRed)(side(), side(), table.data(), texts.data());
                break;
            case 5:
                QUORVA_EXPORT(Cpp_GetSimMatSorted)(side(), side(), table.data(), texts.data());
                break;
            case 6:
                QUORVA_EXPORT(Cpp_PrepareTor)
                (smallInt(), smallInt(), wildDouble(), std::min(side(), 12), side(), &out, table.data(), texts.data());
                break;
            case 7:
                QUORVA_EXPORT(Cpp_GetTornado)
                (side(), side(), table.data(), indices.data(), more.data(), texts.data());
                break;
            default:
                for (int& i : indices) {
                    i = wildInt();
                }
                QUORVA_EXPORT(Cpp_GetTornadoItem)
                (side(), side(), wildInt(), table.data(), indices.data(), second.data(), third.data());
                QUORVA_EXPORT(Cpp_GetSensitivity)
                (side(), table.data(), side(), wildInt(), smallInt(), second.data());
        }
    }
};

TEST_P(RandomSequence, NeitherCrashesNorHangsNorLeavesItsArrays) {
    startSoundRun();
    std::set<int> statuses;
    for (int step = 0; step < 1500; ++step) {
        statuses.insert(status());
        switch (below(12)) {
            case 0:
            case 1:
            case 2:
                control();
                break;
            case 3:
                errors();
                break;
            case 4:
                registry();
                break;
            case 5:
                sampling();
                break;
            case 6:
                statistics();
                break;
            case 7:
            case 8:
                tables();
                break;
            default:
                modelFunction();
        }
    }
    EXPECT_TRUE(statuses.contains(3)) << "the sequence reaches the running status";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSequence, ::testing::Range(1U, 41U));

}  // namespace
