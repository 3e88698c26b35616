// The values that formulas work with: numbers, texts, Booleans, errors, blanks, arrays, references and lambdas.
#pragma once

#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbook/values/arithmetic.h"

namespace quorva::workbook {

/// Error values of a worksheet, in the order of ERROR.TYPE (1-based there).
enum class ErrorCode : std::uint8_t {
    Null,
    Div0,
    Value,
    Ref,
    Name,
    Num,
    NA,
    GettingData,
    Spill,
    Connect,
    Blocked,
    Unknown,
    Field,
    Calc
};

/// "#N/A" and so on.
std::string_view errorText(ErrorCode code);
/// The error that a text such as "#N/A" names; false when it names none.
bool errorFromText(std::string_view text, ErrorCode& code);

/// A block of cells on one sheet; everything counts from 0, both ends included.
struct Area {
    int sheet = 0;
    int firstRow = 0;
    int firstColumn = 0;
    int lastRow = 0;
    int lastColumn = 0;

    int rows() const { return lastRow - firstRow + 1; }
    int columns() const { return lastColumn - firstColumn + 1; }
    bool single() const { return firstRow == lastRow && firstColumn == lastColumn; }
    bool contains(int row, int column) const {
        return row >= firstRow && row <= lastRow && column >= firstColumn && column <= lastColumn;
    }
    bool overlaps(const Area& other) const {
        return sheet == other.sheet && firstRow <= other.lastRow && lastRow >= other.firstRow &&
               firstColumn <= other.lastColumn && lastColumn >= other.firstColumn;
    }
    friend bool operator==(const Area&, const Area&) = default;
};

class Value;

/// Shared, immutable contents of a value; counted without locks (a book belongs to one thread).
struct Body {
    explicit Body(void (*destroyer)(Body*)) : destroy(destroyer) {}
    std::uint32_t owners = 1;
    void (*destroy)(Body*);
};
struct TextBody;
struct ArrayBody;
struct ReferenceBody;

/// One value. Numbers are always finite and 0 or normal: a NaN or an infinity becomes #NUM!, a denormal number 0.
class Value {
public:
    enum class Type : std::uint8_t { Blank, Number, Boolean, Error, Text, Array, Reference, Lambda };

    Value() = default;
    Value(double number) : type_(Type::Number), bits_(std::bit_cast<std::uint64_t>(flushDenormal(number))) {
        if (!std::isfinite(number)) {
            type_ = Type::Error;
            error_ = ErrorCode::Num;
        }
    }
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char>) Value(T number)
        : type_(Type::Number), bits_(std::bit_cast<std::uint64_t>(static_cast<double>(number))) {}
    template <std::same_as<bool> T>
    Value(T boolean) : type_(Type::Boolean), bits_(std::bit_cast<std::uint64_t>(boolean ? 1.0 : 0.0)) {}
    Value(ErrorCode error) : type_(Type::Error), error_(error) {}
    Value(std::string text);
    Value(std::string_view text) : Value(std::string(text)) {}
    Value(const char* text) : Value(std::string(text)) {}
    /// An array, row by row; cells.size() is rows * columns, both at least 1.
    static Value array(int rows, int columns, std::vector<Value> cells);
    static Value reference(std::vector<Area> areas);
    /// What OFFSET and INDIRECT give for arrays: an array whose elements are references (or errors).
    static Value references(int rows, int columns, std::vector<Value> cells);
    /// A value of a type with contents made elsewhere (lambdas); takes over one count.
    static Value adopt(Type type, Body* body) {
        Value value;
        value.type_ = type;
        value.bits_ = std::bit_cast<std::uint64_t>(body);
        return value;
    }

    Value(const Value& other) : type_(other.type_), error_(other.error_), bits_(other.bits_) {
        if (counted()) {
            ++body()->owners;
        }
    }
    Value(Value&& other) noexcept : type_(other.type_), error_(other.error_), bits_(other.bits_) {
        if (counted()) {
            other.type_ = Type::Blank;
            other.bits_ = 0;
        }
    }
    Value& operator=(const Value& other) {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Value() {
        if (counted() && --body()->owners == 0) {
            body()->destroy(body());
        }
    }

    Type type() const { return type_; }
    bool isBlank() const { return type_ == Type::Blank; }
    bool isNumber() const { return type_ == Type::Number; }
    bool isBoolean() const { return type_ == Type::Boolean; }
    bool isError() const { return type_ == Type::Error; }
    bool isText() const { return type_ == Type::Text; }
    bool isArray() const { return type_ == Type::Array; }
    bool isReference() const { return type_ == Type::Reference; }
    bool isLambda() const { return type_ == Type::Lambda; }
    bool isReferenceArray() const;
    /// Neither array nor reference.
    bool isScalar() const { return type_ != Type::Array && type_ != Type::Reference; }

    /// What they say only for the type named; number() is 1 or 0 for Booleans.
    double number() const { return std::bit_cast<double>(bits_); }
    bool boolean() const { return number() != 0; }
    ErrorCode error() const { return error_; }
    const std::string& text() const;
    int arrayRows() const;
    int arrayColumns() const;
    const std::vector<Value>& arrayCells() const;
    const std::vector<Area>& areas() const;
    Body* body() const { return std::bit_cast<Body*>(bits_); }

    void swap(Value& other) noexcept {
        std::swap(type_, other.type_);
        std::swap(error_, other.error_);
        std::swap(bits_, other.bits_);
    }

private:
    bool counted() const { return type_ >= Type::Text; }

    Type type_ = Type::Blank;
    ErrorCode error_ = ErrorCode::Null;
    std::uint64_t bits_ = 0;  ///< of a double, or of a pointer to the contents that are counted
};

struct TextBody : Body {
    TextBody(std::string contents, void (*destroyer)(Body*)) : Body(destroyer), text(std::move(contents)) {}
    std::string text;
};
struct ArrayBody : Body {
    ArrayBody(int r, int c, std::vector<Value> contents, void (*destroyer)(Body*))
        : Body(destroyer), rows(r), columns(c), cells(std::move(contents)) {}
    int rows;
    int columns;
    bool ofReferences = false;
    std::vector<Value> cells;
};
struct ReferenceBody : Body {
    ReferenceBody(std::vector<Area> contents, void (*destroyer)(Body*)) : Body(destroyer), areas(std::move(contents)) {}
    std::vector<Area> areas;
};

inline const std::string& Value::text() const { return static_cast<TextBody*>(body())->text; }
inline bool Value::isReferenceArray() const { return isArray() && static_cast<ArrayBody*>(body())->ofReferences; }
inline int Value::arrayRows() const { return static_cast<ArrayBody*>(body())->rows; }
inline int Value::arrayColumns() const { return static_cast<ArrayBody*>(body())->columns; }
inline const std::vector<Value>& Value::arrayCells() const { return static_cast<ArrayBody*>(body())->cells; }
inline const std::vector<Area>& Value::areas() const { return static_cast<ReferenceBody*>(body())->areas; }

/// Elements that an array may have; what would be larger is #NUM!.
constexpr std::int64_t largestArray = 1 << 24;

/// The element that takes part at (row, column) when values of several shapes are combined: scalars, single rows and
/// single columns are repeated; where there is no partner, #N/A.
inline Value combinedElement(const Value& value, int row, int column) {
    if (!value.isArray()) {
        return value;
    }
    const int r = value.arrayRows() == 1 ? 0 : row;
    const int c = value.arrayColumns() == 1 ? 0 : column;
    if (r >= value.arrayRows() || c >= value.arrayColumns()) {
        return ErrorCode::NA;
    }
    return value.arrayCells()[static_cast<std::size_t>(r) * value.arrayColumns() + c];
}

/// A value, or the error that takes its place.
template <class T>
class Result {
public:
    Result(T value) : value_(std::move(value)), ok_(true) {}
    Result(ErrorCode error) : error_(error) {}
    explicit operator bool() const { return ok_; }
    const T& operator*() const { return value_; }
    T& operator*() { return value_; }
    const T* operator->() const { return &value_; }
    T* operator->() { return &value_; }
    ErrorCode error() const { return error_; }

private:
    T value_{};
    bool ok_ = false;
    ErrorCode error_ = ErrorCode::Value;
};

}  // namespace quorva::workbook
