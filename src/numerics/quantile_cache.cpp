#include "numerics/quantile_cache.h"

#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "numerics/law_table.h"
#include "numerics/laws.h"
#include "numerics/quantile_table.h"

namespace quorva {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// A law as location + scale times a law of the same shape.
struct Standardised {
    int law;
    double p1, p2, p3, p4;
    double location = 0.0;
    double scale = 1.0;

    LawParameters shape() const { return {p1, p2, p3, p4}; }
};

/// With a scale that is not positive and finite the law is asked directly.
inline Standardised standardise(int law, const LawParameters& p) {
    switch (law) {
        case lawIndex(law::normal):
            return {lawIndex(law::normalStd), 0, 0, 0, 0, p[0], p[1]};
        case lawIndex(law::exponential):
            return {lawIndex(law::exponential), 1, 0, 0, 0, 0, 1 / p[0]};
        case lawIndex(law::logistic):
            return {lawIndex(law::logistic), 0, 1, 0, 0, p[0], p[1]};
        case lawIndex(law::fisherTippett1):
            return {lawIndex(law::gumbel), 0, 0, 0, 0, 0, p[0]};
        case lawIndex(law::fisherTippett2):
            return {lawIndex(law::gumbel), 0, 0, 0, 0, p[1], p[0]};
        case lawIndex(law::chiSquare):
            return {lawIndex(law::gamma1), p[0] / 2, 0, 0, 0, 0, 2};
        case lawIndex(law::gamma2):
            return {lawIndex(law::gamma1), p[0], 0, 0, 0, 0, p[1]};
        case lawIndex(law::gamma3):
            return {lawIndex(law::gamma1), p[0], 0, 0, 0, p[2], p[1]};
        case lawIndex(law::erlang):
            return {lawIndex(law::gamma1), p[0], 0, 0, 0, 0, 1 / p[1]};
        case lawIndex(law::weibull2):
            return {lawIndex(law::weibull1), p[0], 0, 0, 0, 0, p[1]};
        case lawIndex(law::weibull3):
            return {lawIndex(law::weibull1), p[0], 0, 0, 0, p[2], p[1]};
        case lawIndex(law::gumbel):
        case lawIndex(law::normalStd):
            return {law, 0, 0, 0, 0};
        default:
            return {law, p[0], p[1], p[2], p[3]};
    }
}

/// A law and shape with its table; never changed once it can be seen.
struct Entry {
    int law;
    double p1, p2, p3, p4;
    std::optional<InterpolatedQuantile> interpolated;
    std::optional<SteppedQuantile> stepped;

    bool is(const Standardised& wanted) const {
        return law == wanted.law && p1 == wanted.p1 && p2 == wanted.p2 && p3 == wanted.p3 && p4 == wanted.p4;
    }
    double quantile(double u) const { return interpolated ? (*interpolated)(u) : stepped ? (*stepped)(u) : nan; }
};

/// Calls of one law and shape before its table is built. A table costs about as much as a thousand quantiles that have
/// to be searched for, and as several thousand where the quantile is a formula.
constexpr std::uint32_t sustainedUse(int law) {
    switch (law) {
        case lawIndex(law::exponential):
        case lawIndex(law::gumbel):
        case lawIndex(law::logNormal):
        case lawIndex(law::normalStd):
        case lawIndex(law::pareto):
        case lawIndex(law::weibull1):
        case lawIndex(law::gev):
        case lawIndex(law::triangular):
        case lawIndex(law::logistic):
        case lawIndex(law::uniformDiscrete):
        case lawIndex(law::trapezoidal):
        case lawIndex(law::logNormal2):
            return 4000;
        default:
            return 400;
    }
}
constexpr std::size_t slots = 4096;
constexpr std::size_t probes = 4;  ///< neighbouring slots in which a law and shape may stand
constexpr std::size_t maximumTables = 2048;
constexpr double worthwhileCoverage = 0.8;
constexpr std::uint64_t fingerprintMask = ~std::uint64_t{0xFFFF};

struct Slot {
    std::atomic<const Entry*> entry{nullptr};
    /// Calls of the law and shape whose fingerprint stands in the upper bits, while it has no table.
    std::atomic<std::uint64_t> asked{0};
};

struct Cache {
    std::atomic<bool> on{true};
    std::array<Slot, slots> table;
    std::mutex building;
    std::vector<std::unique_ptr<const Entry>> entries;
};

Cache cache;  // not constinit: the mutex of the Windows threads library has no constant initialiser

inline std::uint64_t hashOf(const Standardised& law) {
    const auto mixed = std::bit_cast<std::uint64_t>(law.p1) * 0x9E3779B97F4A7C15 +
                       std::bit_cast<std::uint64_t>(law.p2) * 0xC2B2AE3D27D4EB4F +
                       std::bit_cast<std::uint64_t>(law.p3) * 0x165667B19E3779F9 +
                       std::bit_cast<std::uint64_t>(law.p4) * 0xD6E8FEB86659FD93 +
                       static_cast<std::uint64_t>(law.law) * 0xFF51AFD7ED558CCD;
    return mixed ^ (mixed >> 32);
}

/// The slot of a hash from its upper bits: those of parameters that are small numbers have nothing but zeros below.
inline Slot& slotAt(std::uint64_t hash, std::size_t probe) { return cache.table[((hash >> 52) + probe) % slots]; }

std::optional<SteppedQuantile> stepsOf(const LawFunctions& functions, const Support& support,
                                       const LawParameters& shape) {
    const double first = functions.quantile(SteppedQuantile::tail, shape);
    const double last = functions.quantile(1.0 - SteppedQuantile::tail, shape);
    if (!(last - first < SteppedQuantile::maximumSteps)) {
        return std::nullopt;
    }
    const double floor = first > support.lower ? functions.largestProbability(first - 1, shape) : 0.0;
    bool known = !std::isnan(floor);
    SteppedQuantile steps(first, last, floor, [&](double k) {
        const double largest = k >= support.upper ? 1.0 : functions.largestProbability(k, shape);
        known = known && !std::isnan(largest);
        return largest;
    });
    return known ? std::optional(std::move(steps)) : std::nullopt;
}

std::unique_ptr<Entry> build(const Standardised& law) {
    auto entry = std::make_unique<Entry>(Entry{law.law, law.p1, law.p2, law.p3, law.p4, {}, {}});
    const LawParameters shape = law.shape();
    const LawFunctions* functions = findLaw(law.law);
    const Support support = functions ? supportOf(*functions, shape) : noLaw;
    if (!support.defined || support.lower == support.upper) {
        return entry;
    }
    if (functions->discrete) {
        entry->stepped = stepsOf(*functions, support, shape);
        return entry;
    }
    entry->interpolated.emplace(
        TabulatedLaw{[&](double x) { return CDFFunction(law.law, x, shape[0], shape[1], shape[2], shape[3]); },
                     [&](double u) { return directQuantile(law.law, u, shape); }});
    if (entry->interpolated->coverage() < worthwhileCoverage) {
        entry->interpolated.reset();
    }
    return entry;
}

/// Counts a call of a law and shape without a table, and builds the table when it is due. A law that cannot have one
/// gets an entry that says so.
void count(Slot& slot, std::uint64_t fingerprint, const Standardised& law, std::atomic<std::uint32_t>& strangers) {
    const std::uint64_t seen = slot.asked.load(std::memory_order_relaxed);
    if ((seen & fingerprintMask) != fingerprint) {
        slot.asked.store(fingerprint | 1, std::memory_order_relaxed);
        strangers.store(strangers.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        return;
    }
    strangers.store(0, std::memory_order_relaxed);
    slot.asked.store(seen + 1, std::memory_order_relaxed);
    if ((seen & ~fingerprintMask) + 1 < sustainedUse(law.law)) {
        return;
    }
    const std::lock_guard lock(cache.building);
    if (slot.entry.load(std::memory_order_relaxed) == nullptr && cache.entries.size() < maximumTables) {
        cache.entries.push_back(build(law));
        slot.entry.store(cache.entries.back().get(), std::memory_order_release);
    }
    slot.asked.store(0, std::memory_order_relaxed);
}

/// The slot in which a law and shape without a table counts its calls: the one that counts them already, else a free
/// one, else one that another law and shape loses.
Slot* countingSlot(std::uint64_t hash) {
    Slot* open = nullptr;
    for (std::size_t probe = 0; probe < probes; ++probe) {
        Slot& slot = slotAt(hash, probe);
        if (slot.entry.load(std::memory_order_acquire) != nullptr) {
            continue;
        }
        const std::uint64_t asked = slot.asked.load(std::memory_order_relaxed);
        if (asked != 0 && (asked & fingerprintMask) == (hash & fingerprintMask)) {
            return &slot;
        }
        if (open == nullptr || (asked == 0 && open->asked.load(std::memory_order_relaxed) != 0)) {
            open = &slot;
        }
    }
    return open;
}

/// The entry of a law and shape that is not in its first slot, or none.
[[gnu::noinline]] const Entry* neighbour(std::uint64_t hash, const Standardised& wanted) {
    for (std::size_t probe = 1; probe < probes; ++probe) {
        const Entry* entry = slotAt(hash, probe).entry.load(std::memory_order_acquire);
        if (entry != nullptr && entry->is(wanted)) {
            return entry;
        }
    }
    return nullptr;
}

}  // namespace

std::array<std::atomic<std::uint32_t>, lawCount> callsWithoutTable{};

double tabulatedQuantile(int law, double u, const LawParameters& p) {
    auto& strangers = callsWithoutTable[static_cast<std::size_t>(law)];
    if (law == lawIndex(law::uniform) || law == lawIndex(law::bernoulli) || !std::isfinite(p[0] + p[1] + p[2] + p[3]) ||
        !cache.on.load(std::memory_order_relaxed)) {
        return nan;
    }
    const Standardised wanted = standardise(law, p);
    if (!(wanted.scale > 0.0 && wanted.scale <= std::numeric_limits<double>::max())) {
        return nan;
    }
    const std::uint64_t hash = hashOf(wanted);
    Slot& first = slotAt(hash, 0);
    const Entry* entry = first.entry.load(std::memory_order_acquire);
    if (entry == nullptr || !entry->is(wanted)) [[unlikely]] {
        const std::uint64_t counted = entry == nullptr ? first.asked.load(std::memory_order_relaxed) : 0;
        if (counted != 0 && (counted & fingerprintMask) == (hash & fingerprintMask)) {
            count(first, hash & fingerprintMask, wanted, strangers);
            return nan;
        }
        entry = neighbour(hash, wanted);
        if (entry == nullptr) {
            if (Slot* slot = countingSlot(hash)) {
                count(*slot, hash & fingerprintMask, wanted, strangers);
            }
            return nan;
        }
    }
    if (strangers.load(std::memory_order_relaxed) != 0) {
        strangers.store(0, std::memory_order_relaxed);
    }
    return wanted.location + wanted.scale * entry->quantile(u);
}

void useQuantileTables(bool on) {
    const std::lock_guard lock(cache.building);
    for (Slot& slot : cache.table) {
        slot.entry.store(nullptr, std::memory_order_relaxed);
        slot.asked.store(0, std::memory_order_relaxed);
    }
    for (auto& inARow : callsWithoutTable) {
        inARow.store(0, std::memory_order_relaxed);
    }
    cache.entries.clear();
    cache.on.store(on, std::memory_order_relaxed);
}

}  // namespace quorva
