// The model `project` of make_model.py as one writes it by hand: draws of the standard library, a loop, sums.
// usage: compare_loop normal|mixed ITERATIONS
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using Inputs = std::array<double, 10>;

std::mt19937_64 engine(1);

double uniform() { return std::uniform_real_distribution<double>()(engine); }

double beta(double a, double b) {
    const double x = std::gamma_distribution<double>(a)(engine);
    return x / (x + std::gamma_distribution<double>(b)(engine));
}

/// Symmetrical, by inversion.
double triangular(double lower, double upper) {
    const double u = uniform();
    const double half = (upper - lower) / 2;
    return u < 0.5 ? lower + half * std::sqrt(2 * u) : upper - half * std::sqrt(2 * (1 - u));
}

Inputs drawNormal() {
    static std::normal_distribution<double> normal(100, 15);
    Inputs x;
    std::generate(x.begin(), x.end(), [] { return normal(engine); });
    return x;
}

Inputs drawMixed() {
    static std::normal_distribution<double> normal(100, 15);
    static std::gamma_distribution<double> gamma(2.5, 40);
    static std::poisson_distribution<int> poisson(4);
    static std::student_t_distribution<double> student(7);
    static std::weibull_distribution<double> weibull(2, 113);
    static std::lognormal_distribution<double> logNormal(4.59, 0.15);
    static std::binomial_distribution<int> binomial(200, 0.5);
    return {normal(engine),
            gamma(engine),
            beta(2, 5) * 350,
            triangular(60, 140),
            60 + 80 * beta(3, 3),
            poisson(engine) * 25.0,
            student(engine) * 12 + 100,
            weibull(engine),
            logNormal(engine),
            static_cast<double>(binomial(engine))};
}

struct Outputs {
    double npv = 0;
    double revenue = 0;
    double worst = INFINITY;
};

Outputs project(const Inputs& x) {
    Outputs result;
    double volume = x[0] * 10;
    double price = x[2] / 10;
    double discount = 1;
    for (int year = 1; year <= 10; ++year) {
        const double revenue = volume * price;
        const double cost = volume * (x[4] / 20 * std::pow(1 + x[5] / 10000, year));
        const double margin = revenue - cost - (x[6] * 5 + x[7] * year / 10);
        const double cash = margin - std::max(0.0, margin * x[9] / 400) - (year <= 2 ? x[8] * 20 : x[8] * 2);
        discount /= 1.1;
        result.npv += cash * discount;
        result.revenue += revenue;
        result.worst = std::min(result.worst, cash);
        volume *= 1 + x[1] / 5000;
        price *= 1 + x[3] / 10000;
    }
    return result;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string kind = count == 3 ? arguments[1] : "";
    if (kind != "normal" && kind != "mixed") {
        std::fputs("usage: compare_loop normal|mixed ITERATIONS\n", stderr);
        return 2;
    }
    const int n = std::atoi(arguments[2]);
    std::array<std::vector<double>, 3> samples;
    for (int i = 0; i < n; ++i) {
        const Outputs outputs = project(kind == "mixed" ? drawMixed() : drawNormal());
        samples[0].push_back(outputs.npv);
        samples[1].push_back(outputs.revenue);
        samples[2].push_back(outputs.worst);
    }
    for (auto& sample : samples) {
        double sum = 0;
        for (const double value : sample) {
            sum += value;
        }
        std::sort(sample.begin(), sample.end());
        std::printf("%.17g %.17g\n", sum / n, sample[sample.size() / 2]);
    }
}
