#include "workbook/values/value.h"

#include <array>

namespace quorva::workbook {

namespace {
constexpr std::array<std::string_view, 14> errorTexts{"#NULL!",    "#DIV/0!",   "#VALUE!",       "#REF!",   "#NAME?",
                                                      "#NUM!",     "#N/A",      "#GETTING_DATA", "#SPILL!", "#CONNECT!",
                                                      "#BLOCKED!", "#UNKNOWN!", "#FIELD!",       "#CALC!"};

template <class T>
void destroyBody(Body* body) {
    delete static_cast<T*>(body);
}
}  // namespace

std::string_view errorText(ErrorCode code) { return errorTexts[static_cast<std::size_t>(code)]; }

bool errorFromText(std::string_view text, ErrorCode& code) {
    for (std::size_t i = 0; i < errorTexts.size(); ++i) {
        if (errorTexts[i] == text) {
            code = static_cast<ErrorCode>(i);
            return true;
        }
    }
    return false;
}

Value::Value(std::string text)
    : type_(Type::Text),
      bits_(std::bit_cast<std::uint64_t>(static_cast<Body*>(new TextBody(std::move(text), destroyBody<TextBody>)))) {}

Value Value::array(int rows, int columns, std::vector<Value> cells) {
    return adopt(Type::Array, new ArrayBody(rows, columns, std::move(cells), destroyBody<ArrayBody>));
}

Value Value::references(int rows, int columns, std::vector<Value> cells) {
    auto* body = new ArrayBody(rows, columns, std::move(cells), destroyBody<ArrayBody>);
    body->ofReferences = true;
    return adopt(Type::Array, body);
}

Value Value::reference(std::vector<Area> areas) {
    return adopt(Type::Reference, new ReferenceBody(std::move(areas), destroyBody<ReferenceBody>));
}

}  // namespace quorva::workbook
