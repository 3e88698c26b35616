// Uniforms of the distribution fields: plain random, or stratified over a permutation of strata per field.
#pragma once

extern "C" {

/// A uniform of random stream `stream` (a column of LhsTable) between the probabilities `lower` and `upper`; without
/// bounds 0 and 1. The generator's state is the caller's; each draw moves it on. A draw that does not fall within its
/// bounds is given up after limit::redraws and recorded as an error. Exported.
double getLHSRandom01(int ignored, int stream, double lower, double upper, int* seed, short seedInit, int* seedUpdate);
}
