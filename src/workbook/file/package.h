// A workbook file as a package of parts: a zip archive with relationships between its members.
#pragma once

#include <zip.h>
#include <pugixml.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::workbook {

struct Relationship {
    std::string id;
    std::string type;    ///< the last word of the type's address, such as "worksheet"
    std::string target;  ///< full name of the part, without a leading slash; empty for external targets
};

class Package {
public:
    /// Checks the archive and unpacks nothing yet; throws Failure. `name` is the file's, for messages.
    Package(const std::string& bytes, std::string name);
    ~Package();
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    bool has(std::string_view part) const;
    /// A part as XML; throws Failure when it is missing, cannot be unpacked or is malformed.
    void read(const std::string& part, pugi::xml_document& document) const;
    /// The relationships of a part ("" for the package's own), none when it has none.
    std::vector<Relationship> relationships(const std::string& part) const;
    [[noreturn]] void fail(const std::string& part, const std::string& what) const;
    const std::string& name() const { return name_; }

private:
    std::string unpack(const std::string& part) const;

    std::string name_;
    zip_t* archive_ = nullptr;
    std::unordered_map<std::string, std::uint64_t> members_;  ///< by name in lower case
};

/// Element and attribute names without their namespace prefix.
std::string_view localName(const char* name);
pugi::xml_node child(pugi::xml_node node, std::string_view name);
pugi::xml_attribute attribute(pugi::xml_node node, std::string_view name);
/// A whole number that takes up the whole text, from `least` to `most`; nothing when the text is none.
std::optional<int> wholeNumber(std::string_view text, int least, int most);
/// "1", "true" and "on".
bool isTrue(pugi::xml_attribute attribute);
/// Children of a name, whatever their prefix.
template <class Visit>
void forEachChild(pugi::xml_node node, std::string_view name, Visit&& visit) {
    for (pugi::xml_node one = node.first_child(); one; one = one.next_sibling()) {
        if (localName(one.name()) == name) {
            visit(one);
        }
    }
}

}  // namespace quorva::workbook
