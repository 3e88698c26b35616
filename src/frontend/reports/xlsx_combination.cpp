#include "frontend/reports/xlsx_combination.h"

#include <memory>
#include <sstream>

#include <zip.h>
#include <pugixml.hpp>

#include "frontend/text/command_failure.h"

namespace quorva::frontend {

namespace {
constexpr const char* categoryAxis = "60010001";
constexpr const char* valueAxis = "60010002";
constexpr zip_uint16_t firstDosDate = 33;  ///< 1980-01-01, so that the same run gives the same bytes

[[noreturn]] void fail(const std::string& what) {
    throw CommandFailure(ExitStatus::Internal, "the .xlsx report could not be completed: " + what);
}

pugi::xml_node value(pugi::xml_node parent, const char* name, const char* text) {
    pugi::xml_node node = parent.append_child(name);
    node.append_attribute("val") = text;
    return node;
}

/// The children of a series have a fixed order: the markers stand before the categories.
void makeLineSeries(pugi::xml_node series) {
    pugi::xml_node marker = series.insert_child_before("c:marker", series.child("c:cat"));
    value(marker, "c:symbol", "none");
    value(series, "c:smooth", "0");
}

void addAxes(pugi::xml_node plot, pugi::xml_node after, const std::string& title) {
    pugi::xml_node category = plot.insert_child_after("c:catAx", after);
    value(category, "c:axId", categoryAxis);
    value(category.append_child("c:scaling"), "c:orientation", "minMax");
    value(category, "c:delete", "1");
    value(category, "c:axPos", "b");
    value(category, "c:crossAx", valueAxis);
    pugi::xml_node axis = plot.insert_child_after("c:valAx", category);
    value(axis, "c:axId", valueAxis);
    pugi::xml_node scaling = axis.append_child("c:scaling");
    value(scaling, "c:orientation", "minMax");
    value(scaling, "c:max", "1");
    value(scaling, "c:min", "0");
    value(axis, "c:delete", "0");
    value(axis, "c:axPos", "r");
    pugi::xml_node rich = axis.append_child("c:title").append_child("c:tx").append_child("c:rich");
    rich.append_child("a:bodyPr");
    rich.append_child("a:p").append_child("a:r").append_child("a:t").text() = title.c_str();
    pugi::xml_node format = axis.append_child("c:numFmt");
    format.append_attribute("formatCode") = "0%";
    format.append_attribute("sourceLinked") = "0";
    value(axis, "c:tickLblPos", "nextTo");
    value(axis, "c:crossAx", categoryAxis);
    value(axis, "c:crosses", "max");
}

std::string combined(const std::string& xml, const std::string& axisTitle) {
    pugi::xml_document document;
    if (!document.load_buffer(xml.data(), xml.size(), pugi::parse_full | pugi::parse_ws_pcdata)) {
        fail("a chart cannot be read");
    }
    pugi::xml_node plot = document.child("c:chartSpace").child("c:chart").child("c:plotArea");
    pugi::xml_node columns = plot.child("c:barChart");
    pugi::xml_node series;
    for (const pugi::xml_node candidate : columns.children("c:ser")) {
        series = candidate;
    }
    const pugi::xml_node lastAxis = plot.child("c:valAx");
    if (!series || !lastAxis) {
        fail("a chart has no series");
    }
    pugi::xml_node line = plot.insert_child_after("c:lineChart", columns);
    value(line, "c:grouping", "standard");
    makeLineSeries(line.append_move(series));
    value(line, "c:marker", "1");
    value(line, "c:axId", categoryAxis);
    value(line, "c:axId", valueAxis);
    addAxes(plot, lastAxis, axisTitle);
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    std::string text = out.str();
    return text.starts_with("<?xml") ? text : "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n" + text;
}

std::string read(zip_t* archive, zip_int64_t index) {
    zip_stat_t description;
    zip_file_t* entry = zip_fopen_index(archive, static_cast<zip_uint64_t>(index), 0);
    if (!entry || zip_stat_index(archive, static_cast<zip_uint64_t>(index), 0, &description) != 0) {
        fail("a chart is missing");
    }
    std::string text(description.size, '\0');
    const zip_int64_t count = zip_fread(entry, text.data(), text.size());
    zip_fclose(entry);
    if (count != static_cast<zip_int64_t>(text.size())) {
        fail("a chart cannot be read");
    }
    return text;
}
}  // namespace

void lineOverColumns(const std::string& file, const std::vector<int>& charts, const std::string& axisTitle) {
    if (charts.empty()) {
        return;
    }
    std::unique_ptr<zip_t, decltype(&zip_discard)> archive(zip_open(file.c_str(), 0, nullptr), &zip_discard);
    if (!archive) {
        fail("the file cannot be opened again");
    }
    std::vector<std::string> contents;  // has to outlive the closing of the archive
    contents.reserve(charts.size());
    for (const int chart : charts) {
        const std::string name = "xl/charts/chart" + std::to_string(chart) + ".xml";
        const zip_int64_t index = zip_name_locate(archive.get(), name.c_str(), 0);
        if (index < 0) {
            fail("a chart is missing");
        }
        const std::string& text = contents.emplace_back(combined(read(archive.get(), index), axisTitle));
        zip_source_t* source = zip_source_buffer(archive.get(), text.data(), text.size(), 0);
        const auto place = static_cast<zip_uint64_t>(index);
        if (!source || zip_file_replace(archive.get(), place, source, 0) != 0 ||
            zip_file_set_dostime(archive.get(), place, 0, firstDosDate, 0) != 0) {
            fail("a chart cannot be replaced");
        }
    }
    if (zip_close(archive.get()) != 0) {
        fail(zip_strerror(archive.get()));
    }
    archive.release();
}

}  // namespace quorva::frontend
