// Checks of the described model, which bind labels to fields.
#pragma once

// Exported.
extern "C" {

/// 0 when all field names differ; otherwise -1, with both cells and the name recorded as an error of the run.
int checkVarlistDoubles();

/// Binds each correlation label to the first distribution of its name. 0, or labelUnknown at the first label that is no
/// distribution's name; labels after it stay unbound.
int checkVarlistCorr();

/// Binds each capability label to the first field of its name, of any kind. A label that is no field's name stays
/// unbound. Always 0.
int checkVarlistSPC();
}
