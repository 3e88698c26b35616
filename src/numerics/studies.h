// Process-capability indices.
#pragma once

namespace quorva {

/// Capability index 1 to 23 (Cp, Cpl, Cpu, Cpk, Pp, Ppl, Ppu, Ppk, Cpm, Cpm Boyles, Cp 5.15, Cpk 5.15, Cpmk, Wright's
/// Cs, Z below, above and total, p below, above and total, PPM below, above and total) into `result`. A limit of
/// MissingValue is absent. `confidence` changes no point estimate. Returns 0, or negative for an unknown index.
int calcPcapDescOne(int n, double LSL, double USL, double target, double confidence, double stdev, double mean,
                    double& result, int index);

}  // namespace quorva
