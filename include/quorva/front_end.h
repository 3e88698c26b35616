// The functions through which a front end drives a run. All are called on the host's calculation thread, one at a time.
//
// The order of a run; "recalculate" means that the front end makes the host recalculate the model:
//
//   Cpp_SimInit                                     recalculate: the fields are counted
//   Cpp_SimInit2                                    recalculate: the fields describe themselves
//   Cpp_SimBegin
//   for each iteration: Cpp_SimNext                 recalculate: the fields draw and record their values
//                       Cpp_SimConv, when wanted
//   Cpp_SimEnd, then Cpp_GetSim… and Cpp_GetSensitivity in any order
//   Cpp_PrepareTor, when wanted                     recalculate, once for each case
//   Cpp_GetTornado, then Cpp_GetTornadoItem
//   Cpp_SimReset
//
// A negative code ends the run: the front end reads Cpp_SimError, where the code is one of runerror, and starts again
// with Cpp_SimInit. Nothing throws.
//
// What all functions share:
// - Statuses, codes, limits and the columns of tables have their names in quorva/wire_format.h.
// - A table of R x C is a flat array of doubles of the caller, column by column: its element (row, column), both from
//   1, is element (row - 1) + (column - 1) x R from 0 (tableElement). The module never allocates or resizes one. A null
//   table, list or array that a result would go to is left out.
// - A list of strings (HostString*) is an array of automation strings of the caller, column by column if it has two,
//   null standing for an empty one. The module replaces an entry, freeing the old string and allocating a new one,
//   when its text differs; the caller frees what it finds in the end.
// - A host string array (HostStringArray**) is a one-dimensional array of automation strings with any lower bound.
// - A HostBool is true when it is -1; 1 is false.
// - Fields are numbered from 1 in the order of their names (code unit by code unit) once Cpp_SimBegin has succeeded. N,
//   D, V, M and S stand for the numbers of fields, distributions, scenario variables, results and statistics that it
//   returns.
// - Cells' rows and columns count from 0. Probabilities run from 0 to 1; what is in percent says so.
// - MissingValue stands for no value.
#pragma once

#include "quorva/automation.h"

extern "C" {

// Run control

/// Ends whatever run there is and releases its tables: status Idle, no error, no results, model functions not volatile.
/// At any time.
///   mioSeed     in: seed of the uniforms to come, 1 to 2147483647; not written
///   miSeedInit  in: true takes *mioSeed, anything else draws a seed from the system
///   moSeed      out: the seed with which the next call goes on in the same stream
void Cpp_SimReset(int* mioSeed, quorva::HostBool miSeedInit, int* moSeed);

/// Resets as Cpp_SimReset does, makes the model functions volatile and gets ready to count fields: status Initialised.
/// At any time. The recalculation that follows must reach every field once; a cell reached twice is an error (-10).
///   iWorkbookModel  in: true for fields on up to 10 sheets; otherwise all fields stand on one sheet
///   mioSeed         in: as for Cpp_SimReset
///   miSeedInit      in: as for Cpp_SimReset
///   moSeed          out: the seed of this run; given again, with miSeedInit true, it gives the same run
/// Returns 0, even when there is no memory for the field grid, which is recorded as an error (-15).
int Cpp_SimInit(quorva::HostBool iWorkbookModel, int* mioSeed, quorva::HostBool miSeedInit, int* moSeed);

/// The status (RunStatus): 0 Idle, 1 Initialised, 2 Prepared, 3 Running, 4 Analysing. At any time.
int Cpp_SimGetStatus();

/// Takes correlations and specification limits, makes room for the fields that were counted and gets ready for their
/// description: status Prepared. After the recalculation that counted them.
///   UseCorr       in: true when distributions are correlated
///   nCorr         in: number of correlation labels n
///   iCorrMat      in, out: n x n correlations in the order of the labels; MissingValue counts as 0. Written for code 2
///                 and for a matrix that could not be repaired. Not read without UseCorr
///   LabelCorrMat  in: n names of distributions, each once
///   iUseSpc       in: true when capability statistics are asked for
///   inSpc         in: number of fields with specification limits k
///   iSpcConf      in: confidence level, kept for the capability statistics; it changes none of their values
///   iLSL, iUSL    in: k lower and k upper limits; MissingValue: none
///   itarget       in: k targets; MissingValue: none
///   LabelSPC      in: k names of fields of any kind; a name that no field has is passed over
/// Returns
///    0  success
///    2  success, after a matrix that no model can have was replaced by a possible one, which iCorrMat now holds. This
///       run multiplies with the matrix itself; a new run with the matrix handed back has a proper factor for it
///   -2  matrix not symmetric, or beyond repair; status unchanged, but the counts are gone
///   -3  no distribution or no result was counted; status Idle
///  -15  no memory
/// or the code of the error that the recalculation recorded, with nothing changed.
int Cpp_SimInit2(quorva::HostBool UseCorr, int nCorr, double* iCorrMat, quorva::HostStringArray** LabelCorrMat,
                 quorva::HostBool iUseSpc, int inSpc, double iSpcConf, double* iLSL, double* iUSL, double* itarget,
                 quorva::HostStringArray** LabelSPC);

/// Checks the described model, numbers its fields by name, binds labels to fields and makes room for the values: status
/// Running, iteration 0. After the recalculation that described the fields.
///   nSim         in: iterations planned; nSim x N at most 64,000,000. After the last one the values of the first are
///                overwritten
///   inbuckets    in: Latin hypercube strata of each distribution; 0: plain random sampling
///   iCheckConv   in: true to monitor results for Cpp_SimConv; without a result to monitor it counts as false
///   iVerifInt    in: not used; when to call Cpp_SimConv is the front end's business
///   iconvPerc    in: largest accepted movement of a bound between two checks, in percent
///   iconf        in: probability whose normal quantile gives the half-width of the bounds: 0.975 for two-sided 95 %
///   iallRes      in: true to monitor every result; otherwise those whose worksheet function was given ConvCheck
///   inCrit       in: ConvergenceCriterion: 1 mean, 2 standard deviation, 3 percentile
///   ipercentile  in: the percentile of criterion 3, in percent
///   oFieldNbr    out: number of fields N
///   oFNbrTyp1 to oFNbrTyp4
///                out: numbers of distributions D, scenario variables V, results M, statistics S
/// Returns 0, or with status Idle
///   -1  a correlation label matches no distribution; not reported when limits are in use (iUseSpc)
///   -2  no distribution, no result or no field was described
///  -11  more fields described than counted
///  -12  nSim x N above 64,000,000
///  -15  no memory; also for a product beyond 32 bits
///  -17  two fields share a name, whatever their sheets
/// or the code of the error that the recalculation recorded; with correlations or limits in use Cpp_SimNext alone
/// reports it. The counts are written for 0, for -1 and for an error recorded before.
int Cpp_SimBegin(int nSim, int inbuckets, quorva::HostBool iCheckConv, int iVerifInt, double iconvPerc, double iconf,
                 quorva::HostBool iallRes, int inCrit, double ipercentile, int* oFieldNbr, int* oFNbrTyp1,
                 int* oFNbrTyp2, int* oFNbrTyp3, int* oFNbrTyp4);

/// Closes the iteration before, whose statistic fields that were not recalculated get their values, and opens the next.
/// Before the recalculation of every iteration, the first included. Returns 0, or -1 when an error is recorded.
int Cpp_SimNext();

/// The error recorded last. Writes nothing when there is none; at any time.
///   oSimError  out: its code (runerror)
///   oEline     in, out: row of its cell; -1 on entry asks for the second cell instead, which only -17 has
///   oEcol      out: column of its cell
///   oESheet    out: a new array, lower bound 0, which the caller destroys: the sheet's name as the host writes it; for
///              the second cell its sheet's name and the text of the error, for -17 the name that two fields share
void Cpp_SimError(int* oSimError, int* oEline, int* oEcol, quorva::HostStringArray** oESheet);

/// The same for the second cell, whatever *oEline and whether or not there is an error.
void Cpp_SimError2(int* oSimError2, int* oEline, int* oEcol, quorva::HostStringArray** oESheet);

/// Registers the model functions as volatile, so that every recalculation reaches every field, or as they were.
/// Cpp_SimInit and Cpp_SimReset call them; a call that would change nothing does nothing.
void Cpp_SimVolatile();
void Cpp_SimNotVolatile();

/// Computes the bounds of the monitored results from the iterations so far and compares them with the check before:
/// 1 when none has moved by more than iconvPerc, else 0. The first check of a run has nothing to compare with and
/// returns 0, and so does every check when nothing is monitored. Between iterations.
///
/// A movement is |new - old| / old; of a bound that was 0 it is 0. The bounds of criterion 2 do not depend on iconf.
int Cpp_SimConv();

// Results of a run; they stay until the next Cpp_SimInit or Cpp_SimReset

/// Ends the run, status Idle, and returns its summary. After the last iteration.
///   TorProb  in: probability of each tail of the central interval, 0 to 0.5
///   nSim     in: iterations to look at, from the first on: those that were calculated
///   ResGen   out: N x 14, what the fields are (generalcolumn)
///   ResStr   in, out: N x 2 strings, names of fields and of their sheets (namecolumn)
///   ResConv  out: 2 x max(1, 2 M), bounds and their movements (convergencerow, convergencecolumn); zeros when nothing
///            was monitored
///   ConvStr  in, out: 2 M strings, the name of the result that each column of ResConv belongs to; columns that belong
///            to none keep their entry
///   pConv    out: the last column of ResConv that belongs to a result; not written when none does
///   IntT     out: N x 5, quantiles of each field's values (intervalcolumn)
void Cpp_SimEnd(double TorProb, int nSim, double* ResGen, quorva::HostString* ResStr, double* ResConv,
                quorva::HostString* ConvStr, int* pConv, double* IntT);

/// The values of one field.
///   iFieldNbr  in: its number, 1 to N; any other number gives zeros
///   nSim       in: iterations wanted, at most those planned; 0 for an iteration that was not calculated
///   Res        out: nSim values
void Cpp_GetSimRes(int iFieldNbr, int nSim, double* Res);

/// The values of all fields.
///   nSim     in: as for Cpp_GetSimRes
///   nFields  in: fields wanted, from the first on: N for all
///   Res      out: nSim x max(1, nFields), a column for each field in the order of their numbers
void Cpp_GetSimMat(int nSim, int nFields, double* Res);

/// The values and names of the fields of one kind.
///   nSim     in: as for Cpp_GetSimRes
///   nFields  in: columns of Res: D, V, M or S; what they have no room for is left out
///   Res      out: nSim x max(1, nFields), a column for each field of the kind in the order of their numbers; further
///            columns hold 0
///   FType    in: the kind (FieldKind): 1 distributions, 2 scenario variables, 3 results, 4 statistics
///   ResStr   in, out: nFields strings, the names of the columns' fields; further entries stay
void Cpp_GetSimMatGrp(int nSim, int nFields, double* Res, int FType, quorva::HostString* ResStr);

/// The same for distributions, then results: nFields is D + M.
void Cpp_GetSimMatRed(int nSim, int nFields, double* Res, quorva::HostString* ResStr);

/// The same for distributions, then results, then statistics: nFields is D + M + S. Kinds are put in order, not values.
void Cpp_GetSimMatSorted(int nSim, int nFields, double* Res, quorva::HostString* ResStr);

// Tornado and spider: each input (distribution or scenario variable) moves over a few points while the others stay

/// Plans the pass: status Analysing. After Cpp_SimEnd.
///
/// Each recalculation that follows calculates one case: the field whose turn it is shows its next point, all other
/// inputs show their base, and the results are recorded. Fields take their turn in the order of their numbers, inbrPts
/// cases each: first field 1, whatever it is, then all fields but results, unless column `upper` of IntT holds
/// MissingValue for them. Statistic fields have no points: a front end sets MissingValue for them. The input that is
/// evaluated first tells one case from the next, so that each case is one recalculation that reaches it once.
///   iDefCase      in: base of the inputs that stay (TornadoBase): 0 their simulated median, else their default value
///   iIntMeth      in: points of distributions (TornadoSpread): 0 evenly from the lower to the upper bound of the
///                 central interval, else in a band round the base, pulled back into the simulated range. Scenario
///                 variables move over their interval when quantitative, else by their step from the lower bound on
///   ialpha        in: with iIntMeth 0 the tail of the central interval, for the labels; else half the width of the
///                 band as a share of the base
///   inbrPts       in: points of each input, at least 2. Only with 5 does Cpp_GetTornado know which points were pulled
///                 back
///   p             in: rows of IntT: N
///   onCases       out: rows that the table of Cpp_GetTornado needs: M x inbrPts
///   IntT          in: p x 5 (intervalcolumn), as Cpp_SimEnd returned it or changed by the front end
///   SpiderLabels  in, out: inbrPts strings, the place of each point in percent with two decimals, such as "27.50%": a
///                 position between the tails, or a change of the base
void Cpp_PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases, double* IntT,
                    quorva::HostString* SpiderLabels);

/// What the pass recorded, and its end: status Idle. After the last case.
///   nCases     in: rows of TorT: *onCases of Cpp_PrepareTor
///   nFields    in: columns of TorT: D + V for the inputs; N when Cpp_GetTornadoItem follows, see there
///   TorT       in, out: nCases x nFields. Column k is the k-th input in the order of field numbers; rows (r - 1) x
///              inbrPts + 1 to r x inbrPts are the r-th result at the input's points. MissingValue for a point that was
///              pulled back; further columns are not written
///   FieldInd   in, out: nFields integers, the field number of each column; further entries are not written and should
///              be 0
///   ResInd     out: N integers, which result r a field is; 0 for any other field and for results that were not reached
///   FieldName  in, out: nFields strings, the name of each column's field
void Cpp_GetTornado(int nCases, int nFields, double* TorT, int* FieldInd, int* ResInd, quorva::HostString* FieldName);

/// Spider and tornado of one result. After Cpp_GetTornado, for as many results as wanted.
///   nCases    in: as for Cpp_GetTornado
///   nFields   in: as for Cpp_GetTornado. Points that were pulled back are found only when it is Cpp_PrepareTor's p
///   iField    in: field number of the result
///   TorT      in: nCases x nFields, as Cpp_GetTornado returned it
///   FieldInd  in: nFields integers, as Cpp_GetTornado returned them
///   oTornado  out: nFields x 4 (tornadocolumn), a row for each column of TorT, widest swing first
///   oSpider   out: inbrPts x nFields, the result at each point of each input; MissingValue for a point that was pulled
///             back
void Cpp_GetTornadoItem(int nCases, int nFields, int iField, double* TorT, int* FieldInd, double* oTornado,
                        double* oSpider);

// Sensitivity

/// How much each distribution contributes to the variability of a field, out of associations that the front end has
/// computed from the values, of values or of ranks. After Cpp_SimEnd.
///   nFields  in: N
///   VarCovT  in: N x N associations, field against field; row iField is read. MissingValue: not known
///   nFtyp1   in: rows of SensT: D
///   iField   in: number of the field to explain
///   order    in: 1 puts the largest contribution first; anything else keeps the order of field numbers
///   SensT    out: nFtyp1 x 4 (sensitivitycolumn). Contributions are shares of the sum of squared associations, with
///            the sign of the association; sizes add up to 1. A distribution whose association is not known has an
///            infinite contribution and is ranked first; a NaN makes every contribution NaN
void Cpp_GetSensitivity(int nFields, double* VarCovT, int nFtyp1, int iField, int order, double* SensT);

// Life cycle of the add-in, called by the host

/// Registers the worksheet functions. Returns 1.
int xlAutoOpen();
/// Gives back what the host allocated for the add-in; functions stay registered. Returns 1.
int xlAutoClose();
}
