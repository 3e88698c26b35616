// Securities: coupon dates, prices and yields, discounted papers, accrued interest.
#include <algorithm>
#include <cmath>
#include <limits>

#include "workbook/functions/day_count.h"
#include "workbook/functions/families.h"

namespace quorva::workbook {

namespace {

double numberOr(Arguments arguments, std::size_t index, double otherwise) {
    return index < arguments.size() ? arguments[index].number() : otherwise;
}

// ---- coupon dates ----

/// A security that pays interest at regular dates, seen from its settlement.
struct Coupons {
    double settlement = 0;
    double maturity = 0;
    int frequency = 1;  ///< payments a year: 1, 2 or 4
    Basis basis = Basis::UsThirty360;
    double previous = 0;  ///< the last coupon date at or before the settlement
    double next = 0;
    int count = 0;       ///< coupons still to be paid
    double elapsed = 0;  ///< days from the previous coupon to the settlement
    double period = 0;   ///< days of the coupon period
    double toNext = 0;   ///< days from the settlement to the next coupon

    /// The part of the coupon period that is still to come. Not by toNext: of a period of nominal length (ACT/360,
    /// ACT/365) prices count what has not elapsed.
    double ahead() const { return (period - elapsed) / period; }
};

/// The coupon date `steps` periods before the maturity; at the end of the month when the maturity is.
Result<double> couponDate(double maturity, int steps, int frequency, bool date1904) {
    const auto date = addMonths(maturity, -steps * 12.0 / frequency, date1904);
    const auto last = dateFromSerial(maturity, date1904);
    if (!date || !last || last->day < daysInMonth(last->year, last->month)) {
        return date;
    }
    const auto parts = dateFromSerial(*date, date1904);
    return *date + daysInMonth(parts->year, parts->month) - parts->day;
}

double daysBetween(double from, double to, Basis basis, bool date1904) {
    if (basis == Basis::UsThirty360 || basis == Basis::EuropeanThirty360) {
        return days360Securities(*dateFromSerial(from, date1904), *dateFromSerial(to, date1904),
                                 basis == Basis::EuropeanThirty360);
    }
    return to - from;
}

Result<Coupons> coupons(const Call& call, double settlement, double maturity, double frequency, double basisCode) {
    Coupons paper;
    paper.settlement = std::floor(settlement);
    paper.maturity = std::floor(maturity);
    paper.frequency = static_cast<int>(std::clamp(frequency, 0.0, 12.0));
    const auto basis = basisFromCode(basisCode);
    const int f = paper.frequency;
    if (!basis || !(f == 1 || f == 2 || f == 4) || frequency >= 5 || !dateFromSerial(paper.settlement, call.date1904) ||
        !dateFromSerial(paper.maturity, call.date1904) || paper.settlement >= paper.maturity) {
        return ErrorCode::Num;
    }
    paper.basis = *basis;
    // A first guess from the days between, then step by step.
    paper.count = std::max(static_cast<int>((paper.maturity - paper.settlement) * f / 366) - 1, 1);
    for (;; ++paper.count) {
        const auto date = couponDate(paper.maturity, paper.count, f, call.date1904);
        if (!date) {
            return date.error();
        }
        if (*date <= paper.settlement) {
            paper.previous = *date;
            break;
        }
    }
    call.spend(paper.count);  // who asks for the coupons adds them up
    paper.next = *couponDate(paper.maturity, paper.count - 1, f, call.date1904);
    paper.elapsed = daysBetween(paper.previous, paper.settlement, *basis, call.date1904);
    paper.period = *basis == Basis::ActualActual ? paper.next - paper.previous
                   : *basis == Basis::Actual365  ? 365.0 / f
                                                 : 360.0 / f;
    const bool thirty = *basis == Basis::UsThirty360 || *basis == Basis::EuropeanThirty360;
    paper.toNext = thirty ? paper.period - paper.elapsed : paper.next - paper.settlement;
    return paper;
}

template <class Part>
Value couponPart(const Call& call, Arguments arguments, Part part) {
    const auto paper =
        coupons(call, arguments[0].number(), arguments[1].number(), arguments[2].number(), numberOr(arguments, 3, 0));
    return paper ? Value(part(*paper)) : Value(paper.error());
}
Value couponElapsedDays(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.elapsed; });
}
Value couponPeriodDays(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.period; });
}
Value couponDaysToNext(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.toNext; });
}
Value nextCoupon(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.next; });
}
Value couponCount(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.count; });
}
Value previousCoupon(Call& call, Arguments arguments) {
    return couponPart(call, arguments, [](const Coupons& paper) { return paper.previous; });
}

// ---- prices and yields of papers with coupons, per 100 of face value ----

double priceOf(const Coupons& paper, double rate, double yield, double redemption) {
    const double coupon = 100 * rate / paper.frequency;
    const double accrued = coupon * paper.elapsed / paper.period;
    const double first = paper.ahead();
    if (paper.count == 1) {
        return (coupon + redemption) / (1 + first * yield / paper.frequency) - accrued;
    }
    const double step = 1 + yield / paper.frequency;
    double discount = std::pow(step, first);
    double price = 0;
    for (int i = 0; i < paper.count; ++i) {
        price += coupon / discount;
        discount *= i + 1 < paper.count ? step : 1;
    }
    return price + redemption / discount - accrued;
}

Value price(Call& call, Arguments arguments) {
    const auto paper =
        coupons(call, arguments[0].number(), arguments[1].number(), arguments[5].number(), numberOr(arguments, 6, 0));
    if (!paper) {
        return paper.error();
    }
    const double rate = arguments[2].number();
    const double yield = arguments[3].number();
    const double redemption = arguments[4].number();
    return rate < 0 || yield < 0 || redemption <= 0 ? Value(ErrorCode::Num)
                                                    : Value(priceOf(*paper, rate, yield, redemption));
}

/// The yield at which a price, which falls as the yield rises, is the one wanted: bracketed, then halved.
template <class Price>
Value yieldForPrice(double wanted, double frequency, Price&& priceAt) {
    double low = -0.99 * frequency;
    double high = 1;
    while (priceAt(high) > wanted) {
        high *= 2;
        if (high > 1e12) {
            return ErrorCode::Num;
        }
    }
    if (priceAt(low) < wanted) {
        return ErrorCode::Num;
    }
    for (int i = 0; i < 200 && high - low > 1e-16; ++i) {
        const double middle = low + (high - low) / 2;
        (priceAt(middle) > wanted ? low : high) = middle;
    }
    return low + (high - low) / 2;
}

Value yield(Call& call, Arguments arguments) {
    const auto paper =
        coupons(call, arguments[0].number(), arguments[1].number(), arguments[5].number(), numberOr(arguments, 6, 0));
    if (!paper) {
        return paper.error();
    }
    const double rate = arguments[2].number();
    const double wanted = arguments[3].number();
    const double redemption = arguments[4].number();
    if (rate < 0 || wanted <= 0 || redemption <= 0) {
        return ErrorCode::Num;
    }
    if (paper->count == 1) {
        const double coupon = rate / paper->frequency;
        const double paid = wanted / 100 + paper->elapsed / paper->period * coupon;
        return (redemption / 100 + coupon - paid) / paid * paper->frequency / paper->ahead();
    }
    return yieldForPrice(wanted, paper->frequency, [&](double y) { return priceOf(*paper, rate, y, redemption); });
}

/// Macaulay's duration in years; modified when asked.
Value durationOf(const Call& call, Arguments arguments, bool modified) {
    const auto paper =
        coupons(call, arguments[0].number(), arguments[1].number(), arguments[4].number(), numberOr(arguments, 5, 0));
    if (!paper) {
        return paper.error();
    }
    const double rate = arguments[2].number();
    const double yieldRate = arguments[3].number();
    if (rate < 0 || yieldRate < 0) {
        return ErrorCode::Num;
    }
    const double coupon = 100 * rate / paper->frequency;
    const double step = 1 + yieldRate / paper->frequency;
    const double first = paper->ahead();
    double total = 0;
    double weighted = 0;
    for (int i = 0; i < paper->count; ++i) {
        const double periods = first + i;
        const double present = (coupon + (i + 1 == paper->count ? 100 : 0)) / std::pow(step, periods);
        total += present;
        weighted += periods * present;
    }
    const double duration = weighted / total / paper->frequency;
    return modified ? duration / step : duration;
}
Value macaulayDuration(Call& call, Arguments arguments) { return durationOf(call, arguments, false); }
Value modifiedDuration(Call& call, Arguments arguments) { return durationOf(call, arguments, true); }

// ---- papers without coupons ----

/// The years from the settlement to the maturity; #NUM! unless the one lies before the other.
Result<double> term(const Call& call, double settlement, double maturity, double basisCode) {
    const auto basis = basisFromCode(basisCode);
    if (!basis || std::floor(settlement) >= std::floor(maturity)) {
        return ErrorCode::Num;
    }
    return yearFraction(settlement, maturity, *basis, call.date1904);
}

/// Functions of settlement, maturity, two positive amounts or rates, and a basis.
template <class F>
Value discounted(const Call& call, Arguments arguments, F&& f) {
    const double first = arguments[2].number();
    const double second = arguments[3].number();
    const auto years = term(call, arguments[0].number(), arguments[1].number(), numberOr(arguments, 4, 0));
    if (!years) {
        return years.error();
    }
    return first <= 0 || second <= 0 ? Value(ErrorCode::Num) : Value(f(first, second, *years));
}
Value discountRate(Call& call, Arguments arguments) {
    return discounted(call, arguments, [](double paid, double redemption, double years) {
        return (redemption - paid) / redemption / years;
    });
}
Value interestRate(Call& call, Arguments arguments) {
    return discounted(call, arguments,
                      [](double paid, double redemption, double years) { return (redemption - paid) / paid / years; });
}
Value received(Call& call, Arguments arguments) {
    return discounted(call, arguments, [](double paid, double discount, double years) {
        const double left = 1 - discount * years;
        return left > 0 ? paid / left : std::numeric_limits<double>::quiet_NaN();
    });
}
Value discountedPrice(Call& call, Arguments arguments) {
    return discounted(call, arguments, [](double discount, double redemption, double years) {
        return redemption - discount * redemption * years;
    });
}

/// The fractions of years that papers paying interest at maturity are priced with.
struct AtMaturity {
    double issueToMaturity;
    double issueToSettlement;
    double settlementToMaturity;
};
Result<AtMaturity> atMaturity(const Call& call, Arguments arguments) {
    const double settlement = std::floor(arguments[0].number());
    const double maturity = std::floor(arguments[1].number());
    const double issue = std::floor(arguments[2].number());
    const auto basis = basisFromCode(numberOr(arguments, 5, 0));
    if (!basis || settlement >= maturity || issue > settlement || arguments[3].number() < 0 ||
        arguments[4].number() < 0) {
        return ErrorCode::Num;
    }
    const auto whole = yearFraction(issue, maturity, *basis, call.date1904);
    const auto past = yearFraction(issue, settlement, *basis, call.date1904);
    const auto ahead = yearFraction(settlement, maturity, *basis, call.date1904);
    if (!whole || !past || !ahead) {
        return ErrorCode::Num;
    }
    return AtMaturity{*whole, *past, *ahead};
}
Value priceAtMaturity(Call& call, Arguments arguments) {
    const auto years = atMaturity(call, arguments);
    if (!years) {
        return years.error();
    }
    const double rate = arguments[3].number();
    const double yieldRate = arguments[4].number();
    return (100 + years->issueToMaturity * rate * 100) / (1 + years->settlementToMaturity * yieldRate) -
           years->issueToSettlement * rate * 100;
}
Value yieldAtMaturity(Call& call, Arguments arguments) {
    const auto years = atMaturity(call, arguments);
    if (!years) {
        return years.error();
    }
    const double rate = arguments[3].number();
    const double paid = arguments[4].number() / 100 + years->issueToSettlement * rate;
    return (1 + years->issueToMaturity * rate - paid) / paid / years->settlementToMaturity;
}

// ---- accrued interest ----

Value accruedAtMaturity(Call& call, Arguments arguments) {
    const double rate = arguments[2].number();
    const double par = arguments.size() > 3 && !arguments[3].missing ? arguments[3].number() : 1000;
    const auto years = term(call, arguments[0].number(), arguments[1].number(), numberOr(arguments, 4, 0));
    if (!years) {
        return years.error();
    }
    return rate <= 0 || par <= 0 ? Value(ErrorCode::Num) : Value(par * rate * *years);
}

/// How much of a coupon period counts: its days by the length that the basis gives a period or by its own days, or
/// every period after the one in which the time begins as a whole.
enum class Parts : std::uint8_t { ByDays, ByOwnDays, WholeAfterFirst };

double periodLength(double start, double end, int frequency, Basis basis) {
    return basis == Basis::ActualActual ? end - start : (basis == Basis::Actual365 ? 365.0 : 360.0) / frequency;
}

/// The coupon periods between two dates, parts of them counted by the basis; one of the coupon dates is given.
Result<double> periodsBetween(double couponAt, double from, double to, int frequency, Basis basis, bool date1904,
                              Parts parts = Parts::ByDays) {
    const bool actual = basis == Basis::Actual360 || basis == Basis::Actual365;
    int steps = 0;  // periods before (negative: after) that coupon date at which the current period ends
    for (;; --steps) {
        const auto end = couponDate(couponAt, steps, frequency, date1904);
        if (!end) {
            return end.error();
        }
        if (*end >= to) {
            break;
        }
    }
    double periods = 0;
    for (double end = *couponDate(couponAt, steps, frequency, date1904); end > from; ++steps) {
        const auto start = couponDate(couponAt, steps + 1, frequency, date1904);
        if (!start) {
            return start.error();
        }
        const double first = std::max(*start, from);
        const double last = std::min(end, to);
        if (parts == Parts::WholeAfterFirst && *start > from && last == end) {
            periods += 1;
        } else if (first < last) {
            const double length =
                parts == Parts::ByOwnDays && actual ? end - *start : periodLength(*start, end, frequency, basis);
            periods += daysBetween(first, last, basis, date1904) / length;
        }
        end = *start;
    }
    return periods;
}

/// ACCRINT: issue, first interest, settlement, rate, par, frequency, basis, from the issue (else from the first
/// interest). The interest of each coupon period that lies, wholly or in part, between.
Value accruedInterest(Call& call, Arguments arguments) {
    double from = std::floor(arguments[0].number());
    const double firstInterest = std::floor(arguments[1].number());
    const double settlement = std::floor(arguments[2].number());
    const double rate = arguments[3].number();
    const double par = arguments[4].missing ? 1000 : arguments[4].number();
    const double frequency = std::trunc(arguments[5].number());
    const auto basis = basisFromCode(numberOr(arguments, 6, 0));
    const bool fromIssue = arguments.size() < 8 || arguments[7].missing || arguments[7].number() != 0;
    if (!basis || rate <= 0 || par <= 0 || !(frequency == 1 || frequency == 2 || frequency == 4) ||
        from >= settlement || !dateFromSerial(from, call.date1904) || !dateFromSerial(settlement, call.date1904) ||
        !dateFromSerial(firstInterest, call.date1904)) {
        return ErrorCode::Num;
    }
    if (!fromIssue && settlement > firstInterest) {
        from = firstInterest;
    }
    const int f = static_cast<int>(frequency);
    // Up to the first interest the days since the coupon date before it count, backwards too, and the periods from the
    // issue to that date.
    const auto previous = couponDate(firstInterest, 1, f, call.date1904);
    const bool early = previous && settlement < *previous;
    const auto periods = periodsBetween(firstInterest, from, early ? *previous : settlement, f, *basis, call.date1904);
    if (!periods) {
        return periods.error();
    }
    const double last = early ? daysBetween(*previous, settlement, *basis, call.date1904) /
                                    periodLength(*previous, firstInterest, f, *basis)
                              : 0;
    return par * rate / frequency * (*periods + last);
}

// ---- odd first or last periods, per 100 of face value ----

/// What is left of a paper with an odd period: amounts in coupons, times in coupon periods.
struct OddPaper {
    double coupon = 0;       ///< of a regular period
    double oddCoupons = 0;   ///< the odd period's interest
    double accrued = 0;      ///< of the odd period at the settlement
    double toOddCoupon = 0;  ///< from the settlement to the odd period's end
    int later = 0;           ///< regular coupons after it
    double frequency = 1;
};

double priceOf(const OddPaper& paper, double yieldRate, double redemption) {
    const double step = 1 + yieldRate / paper.frequency;
    double discount = std::pow(step, paper.toOddCoupon);
    double total = paper.coupon * paper.oddCoupons / discount;
    for (int i = 0; i < paper.later; ++i) {
        discount *= step;
        total += paper.coupon / discount;
    }
    return total + redemption / discount - paper.coupon * paper.accrued;
}

/// ODDFPRICE and ODDFYIELD: settlement, maturity, issue, first coupon, rate, price or yield, redemption, frequency,
/// basis.
Result<OddPaper> oddFirst(const Call& call, Arguments arguments) {
    const double settlement = std::floor(arguments[0].number());
    const double maturity = std::floor(arguments[1].number());
    const double issue = std::floor(arguments[2].number());
    const double firstCoupon = std::floor(arguments[3].number());
    const double rate = arguments[4].number();
    const double frequency = std::trunc(arguments[7].number());
    const auto regular = coupons(call, firstCoupon, maturity, frequency, numberOr(arguments, 8, 0));
    if (!regular || rate < 0 || !(maturity > firstCoupon && firstCoupon > settlement && settlement > issue) ||
        regular->previous != firstCoupon) {
        return ErrorCode::Num;
    }
    const int f = regular->frequency;
    const auto periods = [&](double from, double to, Parts parts) {
        return periodsBetween(firstCoupon, from, to, f, regular->basis, call.date1904, parts);
    };
    const auto whole = periods(issue, firstCoupon, Parts::WholeAfterFirst);
    const auto past = periods(issue, settlement, Parts::ByDays);
    const auto ahead = periods(settlement, firstCoupon, Parts::WholeAfterFirst);
    if (!whole || !past || !ahead) {
        return ErrorCode::Num;
    }
    return OddPaper{100 * rate / f, *whole, *past, *ahead, regular->count, static_cast<double>(f)};
}
Value oddFirstPrice(Call& call, Arguments arguments) {
    const auto paper = oddFirst(call, arguments);
    const double yieldRate = arguments[5].number();
    const double redemption = arguments[6].number();
    return !paper || yieldRate < 0 || redemption <= 0 ? Value(ErrorCode::Num)
                                                      : Value(priceOf(*paper, yieldRate, redemption));
}
Value oddFirstYield(Call& call, Arguments arguments) {
    const auto paper = oddFirst(call, arguments);
    const double wanted = arguments[5].number();
    const double redemption = arguments[6].number();
    if (!paper || wanted <= 0 || redemption <= 0) {
        return ErrorCode::Num;
    }
    return yieldForPrice(wanted, paper->frequency, [&](double y) { return priceOf(*paper, y, redemption); });
}

/// ODDLPRICE and ODDLYIELD: settlement, maturity, last interest, rate, price or yield, redemption, frequency, basis.
Result<OddPaper> oddLast(const Call& call, Arguments arguments) {
    const double settlement = std::floor(arguments[0].number());
    const double maturity = std::floor(arguments[1].number());
    const double lastInterest = std::floor(arguments[2].number());
    const double rate = arguments[3].number();
    const double frequency = std::trunc(arguments[6].number());
    const auto basis = basisFromCode(numberOr(arguments, 7, 0));
    if (!basis || rate < 0 || !(frequency == 1 || frequency == 2 || frequency == 4) ||
        !(maturity > settlement && settlement > lastInterest) || !dateFromSerial(lastInterest, call.date1904) ||
        !dateFromSerial(maturity, call.date1904)) {
        return ErrorCode::Num;
    }
    const int f = static_cast<int>(frequency);
    const auto periods = [&](double from, double to) {
        return periodsBetween(lastInterest, from, to, f, *basis, call.date1904, Parts::ByOwnDays);
    };
    const auto whole = periods(lastInterest, maturity);
    const auto past = periods(lastInterest, settlement);
    const auto ahead = periods(settlement, maturity);
    if (!whole || !past || !ahead) {
        return ErrorCode::Num;
    }
    return OddPaper{100 * rate / f, *whole, *past, *ahead, 0, frequency};
}
Value oddLastPrice(Call& call, Arguments arguments) {
    const auto paper = oddLast(call, arguments);
    const double yieldRate = arguments[4].number();
    const double redemption = arguments[5].number();
    if (!paper || yieldRate < 0 || redemption <= 0) {
        return ErrorCode::Num;
    }
    return (redemption + paper->coupon * paper->oddCoupons) / (1 + paper->toOddCoupon * yieldRate / paper->frequency) -
           paper->coupon * paper->accrued;
}
Value oddLastYield(Call& call, Arguments arguments) {
    const auto paper = oddLast(call, arguments);
    const double redemption = arguments[5].number();
    if (!paper || arguments[4].number() <= 0 || redemption <= 0) {
        return ErrorCode::Num;
    }
    const double paid = arguments[4].number() + paper->coupon * paper->accrued;
    return (redemption + paper->coupon * paper->oddCoupons - paid) / paid * paper->frequency / paper->toOddCoupon;
}

// ---- treasury bills ----

/// The days of a bill, at most a year; #NUM! otherwise.
Result<double> billDays(const Call& call, Arguments arguments) {
    const double settlement = std::floor(arguments[0].number());
    const double maturity = std::floor(arguments[1].number());
    const auto latest = addMonths(settlement, 12, call.date1904);
    if (!latest || settlement >= maturity || maturity > *latest || arguments[2].number() <= 0) {
        return ErrorCode::Num;
    }
    return maturity - settlement;
}
Value billEquivalent(Call& call, Arguments arguments) {
    const auto days = billDays(call, arguments);
    if (!days) {
        return days.error();
    }
    const double discount = arguments[2].number();
    if (*days <= 182) {
        return 365 * discount / (360 - discount * *days);
    }
    // Longer bills are compared with a bond that pays interest after half a year.
    const double paid = 1 - discount * *days / 360;
    const double years = *days / (*days == 366 ? 366 : 365);
    const double root = years * years - (2 * years - 1) * (1 - 1 / paid);
    return paid <= 0 || root < 0 ? Value(ErrorCode::Num) : Value((std::sqrt(root) - years) * 2 / (2 * years - 1));
}
Value billPrice(Call& call, Arguments arguments) {
    const auto days = billDays(call, arguments);
    if (!days) {
        return days.error();
    }
    const double result = 100 * (1 - arguments[2].number() * *days / 360);
    return result < 0 ? Value(ErrorCode::Num) : Value(result);
}
Value billYield(Call& call, Arguments arguments) {
    const auto days = billDays(call, arguments);
    return days ? Value((100 - arguments[2].number()) / arguments[2].number() * 360 / *days) : Value(days.error());
}

constexpr FunctionRow row(std::string_view name, int minArgs, int maxArgs, Function function,
                          std::string_view kinds = "N") {
    return {.name = name,
            .minArgs = minArgs,
            .maxArgs = maxArgs,
            .kinds = kinds,
            .category = Category::Finance,
            .function = function,
            .refusesRanges = true};
}

constexpr FunctionRow table[] = {
    row("ACCRINT", 6, 8, accruedInterest, "NNNNNNNB"),
    row("ACCRINTM", 3, 5, accruedAtMaturity),
    row("COUPDAYBS", 3, 4, couponElapsedDays),
    row("COUPDAYS", 3, 4, couponPeriodDays),
    row("COUPDAYSNC", 3, 4, couponDaysToNext),
    row("COUPNCD", 3, 4, nextCoupon),
    row("COUPNUM", 3, 4, couponCount),
    row("COUPPCD", 3, 4, previousCoupon),
    row("DISC", 4, 5, discountRate),
    row("DURATION", 5, 6, macaulayDuration),
    row("INTRATE", 4, 5, interestRate),
    row("MDURATION", 5, 6, modifiedDuration),
    row("ODDFPRICE", 8, 9, oddFirstPrice),
    row("ODDFYIELD", 8, 9, oddFirstYield),
    row("ODDLPRICE", 7, 8, oddLastPrice),
    row("ODDLYIELD", 7, 8, oddLastYield),
    row("PRICE", 6, 7, price),
    row("PRICEDISC", 4, 5, discountedPrice),
    row("PRICEMAT", 5, 6, priceAtMaturity),
    row("RECEIVED", 4, 5, received),
    row("TBILLEQ", 3, 3, billEquivalent),
    row("TBILLPRICE", 3, 3, billPrice),
    row("TBILLYIELD", 3, 3, billYield),
    row("YIELD", 6, 7, yield),
    row("YIELDDISC", 4, 5, interestRate),
    row("YIELDMAT", 5, 6, yieldAtMaturity),
};

}  // namespace

std::span<const FunctionRow> securityFunctions() { return table; }

}  // namespace quorva::workbook
