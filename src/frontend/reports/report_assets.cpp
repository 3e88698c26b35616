#include "frontend/reports/report_assets.h"

#define QUORVA_EMBED(symbol, file)               \
    asm(".section .rodata\n"                     \
        ".global " #symbol "_begin\n" #symbol    \
        "_begin:\n"                              \
        ".incbin \"" QUORVA_REPORTS_DIR "/" file \
        "\"\n"                                   \
        ".global " #symbol "_end\n" #symbol      \
        "_end:\n"                                \
        ".byte 0\n"                              \
        ".previous\n");                          \
    extern "C" const char symbol##_begin[], symbol##_end[]

QUORVA_EMBED(quorva_report_style, "assets/report.css");
QUORVA_EMBED(quorva_report_script, "assets/report.js");
QUORVA_EMBED(quorva_chart_library, "vendor/chart.umd.min.js");

namespace quorva::frontend {

std::string_view reportStyle() { return {quorva_report_style_begin, quorva_report_style_end}; }
std::string_view reportScript() { return {quorva_report_script_begin, quorva_report_script_end}; }
std::string_view chartLibrary() { return {quorva_chart_library_begin, quorva_chart_library_end}; }

}  // namespace quorva::frontend
