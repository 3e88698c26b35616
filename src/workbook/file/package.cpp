#include "workbook/file/package.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "workbook/values/convert.h"
#include "workbook/values/failure.h"
#include "workbook/values/texts.h"

namespace quorva::workbook {

namespace {

constexpr std::uint64_t largestExpansion = 1ull << 30;
constexpr std::uint64_t largestRatio = 1000;
constexpr std::uint64_t ratioFreeSize = 1 << 20;  // small members may compress as well as they like
constexpr std::int64_t mostMembers = 100000;

[[noreturn]] void refuse(const std::string& name, const std::string& what) {
    throw Failure(Failure::Kind::Unreadable, name + " " + what + ".");
}

/// Why a file that is no zip archive cannot be read.
[[noreturn]] void refuseOther(const std::string& bytes, const std::string& name) {
    constexpr char compound[] = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
    if (bytes.compare(0, 8, compound, 8) != 0) {
        refuse(name, bytes.empty() ? "is empty" : "is not a workbook: it is not a zip archive");
    }
    std::string mark;
    for (const char c : std::string_view("EncryptedPackage")) {
        mark += c;
        mark += '\0';
    }
    refuse(name, bytes.find(mark) != std::string::npos ? "is protected by a password"
                                                       : "is in the old binary format (.xls); save it as .xlsx");
}

std::string plainName(std::string_view name) {
    std::string plain = toLower(name);
    std::replace(plain.begin(), plain.end(), '\\', '/');
    return plain.starts_with('/') ? plain.substr(1) : plain;
}

/// Resolves a relationship's target against the folder of the part that names it.
std::string resolveTarget(const std::string& source, std::string_view target) {
    std::vector<std::string> segments;
    const auto append = [&](std::string_view path) {
        while (!path.empty()) {
            const auto slash = path.find('/');
            const std::string_view segment = path.substr(0, slash);
            if (segment == "..") {
                if (!segments.empty()) {
                    segments.pop_back();
                }
            } else if (!segment.empty() && segment != ".") {
                segments.emplace_back(segment);
            }
            path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        }
    };
    if (!target.starts_with('/')) {
        const auto slash = source.rfind('/');
        append(slash == std::string::npos ? std::string_view() : std::string_view(source).substr(0, slash));
    }
    append(target);
    std::string joined;
    for (const std::string& segment : segments) {
        joined += (joined.empty() ? "" : "/") + segment;
    }
    return joined;
}

}  // namespace

std::string_view localName(const char* name) {
    const char* colon = std::strchr(name, ':');
    return colon ? colon + 1 : name;
}

pugi::xml_node child(pugi::xml_node node, std::string_view name) {
    for (pugi::xml_node one = node.first_child(); one; one = one.next_sibling()) {
        if (localName(one.name()) == name) {
            return one;
        }
    }
    return {};
}

pugi::xml_attribute attribute(pugi::xml_node node, std::string_view name) {
    for (pugi::xml_attribute one = node.first_attribute(); one; one = one.next_attribute()) {
        if (localName(one.name()) == name) {
            return one;
        }
    }
    return {};
}

std::optional<int> wholeNumber(std::string_view text, int least, int most) {
    const auto number = parsePlainNumber(text);
    if (!number || *number < least || *number > most || *number != std::floor(*number)) {
        return std::nullopt;
    }
    return static_cast<int>(*number);
}

bool isTrue(pugi::xml_attribute value) {
    const std::string_view text = value.value();
    return text == "1" || text == "true" || text == "on";
}

Package::Package(const std::string& bytes, std::string name) : name_(std::move(name)) {
    if (bytes.compare(0, 2, "PK") != 0) {
        refuseOther(bytes, name_);
    }
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    archive_ = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    zip_error_fini(&error);
    if (!archive_) {
        if (source) {
            zip_source_free(source);
        }
        refuse(name_, "is not a complete zip archive");
    }
    const zip_int64_t count = zip_get_num_entries(archive_, 0);
    std::uint64_t total = 0;
    std::string problem;
    if (count > mostMembers) {
        problem = "has more than 100000 members";
    }
    for (zip_int64_t i = 0; i < count && problem.empty(); ++i) {
        zip_stat_t stat;
        if (zip_stat_index(archive_, static_cast<zip_uint64_t>(i), 0, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE) ||
            !(stat.valid & ZIP_STAT_NAME)) {
            problem = "is a damaged zip archive";
        } else if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE) {
            problem = "is protected by a password";
        } else {
            if (stat.size > largestExpansion || (total += stat.size) > largestExpansion) {
                problem = "expands to more than 1 GiB";
            } else if (stat.size > ratioFreeSize && stat.size / largestRatio > stat.comp_size) {
                problem = "expands more than 1000 times at " + std::string(stat.name);
            }
            members_.emplace(plainName(stat.name), static_cast<std::uint64_t>(i));
        }
    }
    if (!problem.empty()) {
        zip_discard(archive_);
        refuse(name_, problem);
    }
}

Package::~Package() { zip_discard(archive_); }

void Package::fail(const std::string& part, const std::string& what) const {
    throw Failure(Failure::Kind::Unreadable, name_ + ", " + part + ": " + what + ".");
}

bool Package::has(std::string_view part) const { return members_.contains(plainName(part)); }

std::string Package::unpack(const std::string& part) const {
    const auto found = members_.find(plainName(part));
    if (found == members_.end()) {
        fail(part, "this part is missing");
    }
    zip_stat_t stat;
    zip_file_t* file =
        zip_stat_index(archive_, found->second, 0, &stat) == 0 ? zip_fopen_index(archive_, found->second, 0) : nullptr;
    if (!file) {
        fail(part, "this part cannot be unpacked");
    }
    std::string content;
    content.resize(stat.size);
    std::uint64_t done = 0;
    while (done < stat.size) {
        const zip_int64_t got = zip_fread(file, content.data() + done, stat.size - done);
        if (got <= 0) {
            break;
        }
        done += static_cast<std::uint64_t>(got);
    }
    char further;
    const bool complete = done == stat.size && zip_fread(file, &further, 1) == 0;
    zip_fclose(file);
    if (!complete) {
        fail(part, "this part is damaged");
    }
    return content;
}

void Package::read(const std::string& part, pugi::xml_document& document) const {
    const std::string content = unpack(part);
    if (content.find("<!DOCTYPE") != std::string::npos) {
        fail(part, "it declares a document type, which workbooks do not have");
    }
    const pugi::xml_parse_result result = document.load_buffer(
        content.data(), content.size(), pugi::parse_default | pugi::parse_ws_pcdata_single, pugi::encoding_auto);
    if (!result) {
        fail(part, "malformed XML at byte " + std::to_string(result.offset) + " (" + result.description() + ")");
    }
}

std::vector<Relationship> Package::relationships(const std::string& part) const {
    const auto slash = part.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : part.substr(0, slash + 1);
    const std::string file = folder + "_rels/" + part.substr(slash == std::string::npos ? 0 : slash + 1) + ".rels";
    std::vector<Relationship> found;
    if (!has(file)) {
        return found;
    }
    pugi::xml_document document;
    read(file, document);
    forEachChild(child(document, "Relationships"), "Relationship", [&](pugi::xml_node node) {
        const std::string_view type = attribute(node, "Type").value();
        const bool external = toLower(attribute(node, "TargetMode").value()) == "external";
        found.push_back({attribute(node, "Id").value(), std::string(type.substr(type.rfind('/') + 1)),
                         external ? "" : resolveTarget(part, attribute(node, "Target").value())});
    });
    return found;
}

}  // namespace quorva::workbook
