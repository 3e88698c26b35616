// Reads a workbook's parts: the book, shared texts, names, tables and saved values of other books.
#include "workbook/file/book_reader.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <unordered_map>

#include "workbook/file/sheet_reader.h"
#include "workbook/values/areas.h"
#include "workbook/values/failure.h"

namespace quorva::workbook {

namespace {

constexpr std::size_t mostSheets = 10000;

/// The number formats that files name by their number alone (en-US); General for dates, too, which stay as they are.
std::string_view builtInNumberFormat(int id) {
    constexpr std::pair<int, std::string_view> formats[] = {
        {1, "0"},
        {2, "0.00"},
        {3, "#,##0"},
        {4, "#,##0.00"},
        {5, "$#,##0_);($#,##0)"},
        {6, "$#,##0_);($#,##0)"},
        {7, "$#,##0.00_);($#,##0.00)"},
        {8, "$#,##0.00_);($#,##0.00)"},
        {9, "0%"},
        {10, "0.00%"},
        {11, "0.00E+00"},
        {12, "# ?/?"},
        {13, "# ?\?/?\?"},
        {37, "#,##0_);(#,##0)"},
        {38, "#,##0_);(#,##0)"},
        {39, "#,##0.00_);(#,##0.00)"},
        {40, "#,##0.00_);(#,##0.00)"},
        {41, "_(* #,##0_);_(* (#,##0);_(* \"-\"_);_(@_)"},
        {42, "_($* #,##0_);_($* (#,##0);_($* \"-\"_);_(@_)"},
        {43, "_(* #,##0.00_);_(* (#,##0.00);_(* \"-\"?\?_);_(@_)"},
        {44, "_($* #,##0.00_);_($* (#,##0.00);_($* \"-\"?\?_);_(@_)"},
        {48, "##0.0E+0"},
    };
    const auto found =
        std::find_if(std::begin(formats), std::end(formats), [&](const auto& f) { return f.first == id; });
    return found == std::end(formats) ? "General" : found->second;
}

struct BookReader {
    const Package& package;
    RawBook book;
    SharedTexts texts;

    void read() {
        const std::string main = mainPart();
        pugi::xml_document document;
        package.read(main, document);
        const pugi::xml_node root = child(document, "workbook");
        if (!root) {
            package.fail(main, "it is not a workbook");
        }
        book.date1904 = isTrue(attribute(child(root, "workbookPr"), "date1904"));
        const auto fullPrecision = attribute(child(root, "calcPr"), "fullPrecision");
        book.precisionAsDisplayed = fullPrecision && !isTrue(fullPrecision);
        const auto relations = package.relationships(main);
        for (const Relationship& relation : relations) {
            if (relation.type == "sharedStrings") {
                readTexts(relation.target);
            } else if (relation.type == "styles" && book.precisionAsDisplayed) {
                readNumberFormats(relation.target);
            }
        }
        std::vector<std::string> parts = listSheets(root, main, relations);
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (!parts[i].empty()) {
                readSheet(package, parts[i], texts, book.sheets[i]);
                readTables(parts[i], static_cast<int>(i));
            }
        }
        readNames(root, main);
        int number = 0;
        forEachChild(child(root, "externalReferences"), "externalReference", [&](pugi::xml_node node) {
            readExternal(related(relations, attribute(node, "id").value()), ++number);
        });
    }

    std::string mainPart() const {
        if (!package.has("[Content_Types].xml")) {
            throw Failure(Failure::Kind::Unreadable,
                          package.name() + " is a zip archive but not a workbook: [Content_Types].xml is missing.");
        }
        for (const Relationship& relation : package.relationships("")) {
            if (relation.type == "officeDocument") {
                if (relation.target.ends_with(".bin")) {
                    throw Failure(Failure::Kind::Unreadable,
                                  package.name() + " is in the binary format (.xlsb); save it as .xlsx.");
                }
                return relation.target;
            }
        }
        throw Failure(Failure::Kind::Unreadable, package.name() + ", _rels/.rels: it names no workbook.");
    }

    static std::string related(const std::vector<Relationship>& relations, std::string_view id) {
        for (const Relationship& relation : relations) {
            if (relation.id == id) {
                return relation.target;
            }
        }
        return {};
    }

    /// Sheets in the order of the book with the names of their parts; charts and dialogs are empty sheets.
    std::vector<std::string> listSheets(pugi::xml_node root, const std::string& main,
                                        const std::vector<Relationship>& relations) {
        std::vector<std::string> parts;
        forEachChild(child(root, "sheets"), "sheet", [&](pugi::xml_node node) {
            const std::string name = attribute(node, "name").value();
            const std::string_view id = attribute(node, "id").value();
            const auto relation =
                std::find_if(relations.begin(), relations.end(), [&](const Relationship& one) { return one.id == id; });
            if (name.empty() || relation == relations.end() || relation->target.empty()) {
                package.fail(main, "the sheet " + std::to_string(parts.size() + 1) + " (" + name + ") has no part");
            }
            parts.push_back(relation->type == "worksheet" ? relation->target : "");
            book.sheets.push_back({name, {}, {}, {}});
        });
        if (parts.empty()) {
            package.fail(main, "it has no sheets");
        }
        if (parts.size() > mostSheets) {
            package.fail(main, "it has too many sheets");
        }
        book.ownSheets = static_cast<int>(parts.size());
        return parts;
    }

    void readTexts(const std::string& part) {
        pugi::xml_document document;
        package.read(part, document);
        forEachChild(child(document, "sst"), "si",
                     [&](pugi::xml_node node) { texts.push_back(Value(richText(node))); });
    }

    /// The number format of each style of cells.
    void readNumberFormats(const std::string& part) {
        pugi::xml_document document;
        package.read(part, document);
        const pugi::xml_node styles = child(document, "styleSheet");
        std::unordered_map<int, std::string> own;
        forEachChild(child(styles, "numFmts"), "numFmt", [&](pugi::xml_node node) {
            own[attribute(node, "numFmtId").as_int(-1)] = attribute(node, "formatCode").value();
        });
        forEachChild(child(styles, "cellXfs"), "xf", [&](pugi::xml_node node) {
            const int id = attribute(node, "numFmtId").as_int(0);
            const auto found = own.find(id);
            book.numberFormats.push_back(found == own.end() ? std::string(builtInNumberFormat(id)) : found->second);
        });
    }

    void readNames(pugi::xml_node root, const std::string& main) {
        forEachChild(child(root, "definedNames"), "definedName", [&](pugi::xml_node node) {
            RawName name;
            name.name = attribute(node, "name").value();
            if (const auto local = attribute(node, "localSheetId")) {
                const auto sheet = wholeNumber(local.value(), 0, book.ownSheets - 1);
                if (!sheet) {
                    package.fail(main, "the name " + name.name + " belongs to a sheet \"" + local.value() +
                                           "\" that does not exist");
                }
                name.sheet = *sheet;
            }
            name.formula = node.child_value();
            if (name.formula.starts_with('=')) {
                name.formula.erase(0, 1);
            }
            book.names.push_back(std::move(name));
        });
    }

    void readTables(const std::string& sheetPart, int sheet) {
        for (const Relationship& relation : package.relationships(sheetPart)) {
            if (relation.type != "table") {
                continue;
            }
            pugi::xml_document document;
            package.read(relation.target, document);
            const pugi::xml_node node = child(document, "table");
            RawTable table;
            table.name = attribute(node, "displayName").value();
            if (!parseArea(attribute(node, "ref").value(), table.area)) {
                package.fail(relation.target, "the table's range cannot be read");
            }
            table.area.sheet = sheet;
            const auto rowCount = [&](const char* name, int otherwise) {
                const auto given = attribute(node, name);
                const auto count =
                    given ? wholeNumber(given.value(), 0, table.area.rows()) : std::optional<int>(otherwise);
                if (!count) {
                    package.fail(relation.target, "the table's rows do not fit its range");
                }
                return *count;
            };
            table.headerRows = rowCount("headerRowCount", 1);
            table.totalsRows = rowCount("totalsRowCount", 0);
            forEachChild(child(node, "tableColumns"), "tableColumn", [&](pugi::xml_node column) {
                table.columns.push_back(decodeEscapes(attribute(column, "name").value()));
            });
            if (table.headerRows + table.totalsRows > table.area.rows()) {
                package.fail(relation.target, "the table's rows do not fit its range");
            }
            if (table.columns.size() > static_cast<std::size_t>(table.area.columns())) {
                package.fail(relation.target, "the table has more columns than its range");
            }
            markFilteredRows(child(node, "autoFilter"), book.sheets[static_cast<std::size_t>(sheet)]);
            book.tables.push_back(std::move(table));
        }
    }

    /// The saved values of another workbook, as sheets "[1]Name" behind the book's own.
    void readExternal(const std::string& part, int number) {
        if (part.empty() || !package.has(part)) {
            return;
        }
        pugi::xml_document document;
        package.read(part, document);
        const pugi::xml_node external = child(child(document, "externalLink"), "externalBook");
        const std::size_t first = book.sheets.size();
        forEachChild(child(external, "sheetNames"), "sheetName", [&](pugi::xml_node node) {
            book.sheets.push_back({"[" + std::to_string(number) + "]" + attribute(node, "val").value(), {}, {}, {}});
        });
        forEachChild(child(external, "sheetDataSet"), "sheetData", [&](pugi::xml_node node) {
            const auto index =
                wholeNumber(attribute(node, "sheetId").value(), 0, static_cast<int>(book.sheets.size() - first) - 1);
            if (!index) {
                package.fail(part, "saved values belong to a sheet that is not listed");
            }
            readSavedValues(package, part, node, texts, book.sheets[first + static_cast<std::size_t>(*index)]);
        });
    }
};

}  // namespace

std::unique_ptr<RawBook> readPackage(const std::string& bytes, const std::string& fileName) {
    const Package package(bytes, fileName);
    BookReader reader{package, {}, {}};
    reader.book.fileName = fileName;
    reader.read();
    return std::make_unique<RawBook>(std::move(reader.book));
}

std::unique_ptr<RawBook> readFile(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        throw Failure(Failure::Kind::Unreadable, file.string() + " is a folder.");
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw Failure(Failure::Kind::Unreadable, file.string() + " cannot be opened.");
    }
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return readPackage(bytes.str(), file.filename().string());
}

}  // namespace quorva::workbook
