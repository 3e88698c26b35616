// The joint draw of all correlated fields: independent normals, mixed by the correlation factor, mapped back to
// uniforms (a normal copula).
#pragma once

extern "C" {

/// The uniform of a correlated field in this iteration; the first field that asks draws for all of them. The
/// generator's state is the caller's. Exported.
double getNormalCorr(int field, int* seed, short seedInit, int* seedUpdate);
}
