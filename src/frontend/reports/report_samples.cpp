#include "frontend/reports/report_samples.h"

#include "frontend/text/csv.h"
#include "frontend/text/number_text.h"

namespace quorva::frontend {

void writeSamplesCsv(const RunResults& results, Sink& sink) {
    sink.write("iteration");
    for (const Field& field : results.fields) {
        sink.write(",");
        sink.write(csvName(field.name));
    }
    sink.write("\n");
    std::string line;
    for (int k = 0; k < results.iterations; ++k) {
        line = std::to_string(k + 1);
        for (const auto& column : results.samples.columns) {
            line += ',';
            line += exactNumber(column[k]);
        }
        line += '\n';
        sink.write(line);
    }
}

}  // namespace quorva::frontend
