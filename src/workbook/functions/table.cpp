// The one table of worksheet functions: every family's rows.
#include "workbook/functions/families.h"

namespace quorva::workbook {

const FunctionTable& worksheetFunctions() {
    static const FunctionTable table{mathFunctions(),
                                     roundingFunctions(),
                                     trigonometryFunctions(),
                                     combinatoricFunctions(),
                                     matrixFunctions(),
                                     statisticsFunctions(),
                                     orderStatisticsFunctions(),
                                     regressionFunctions(),
                                     distributionFunctions(),
                                     discreteDistributionFunctions(),
                                     testFunctions(),
                                     financeFunctions(),
                                     dateFunctions(),
                                     textFunctions(),
                                     textArrayFunctions(),
                                     regularExpressionFunctions(),
                                     asianTextFunctions(),
                                     depreciationFunctions(),
                                     securityFunctions(),
                                     engineeringFunctions(),
                                     unitFunctions(),
                                     euroFunctions(),
                                     complexFunctions(),
                                     lookupFunctions(),
                                     arrayFunctions(),
                                     sortingFunctions(),
                                     randomFunctions(),
                                     informationFunctions(),
                                     databaseFunctions(),
                                     conditionalFunctions(),
                                     subtotalFunctions()};
    return table;
}

}  // namespace quorva::workbook
