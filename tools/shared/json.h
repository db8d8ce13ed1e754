// A JSON value, as the tools read it from their files and write it for scripts. The library that reads and
// writes the text is json.cpp's alone: its header takes seconds to compile wherever it is included.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tools {

/// A text that is no JSON, a member that is not there, or a value of another kind than was asked for.
class JsonError : public std::runtime_error {
  public:
    explicit JsonError(const std::string& what, size_t byte = 0) : runtime_error(what), byte_(byte) {}

    /// How much of a text that is no JSON had been read; 0 for another fault.
    [[nodiscard]] size_t Byte() const { return byte_; }

  private:
    size_t byte_;
};

class Json final {
  public:
    struct Member;
    using Array = std::vector<Json>;
    /// In the order in which the members were added.
    using Object = std::vector<Member>;

    // Whatever makes or ends one is defined where Member is known.
    Json();  // null
    Json(std::nullptr_t);
    // No pointer is taken for a flag.
    Json(std::same_as<bool> auto flag);
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) Json(Number number);
    Json(double number);
    Json(std::string text);
    Json(std::string_view text);
    Json(const char* text);
    Json(Array items);
    Json(Object members);
    template <typename Item>
    Json(const std::vector<Item>& items) : Json(Array(items.begin(), items.end())) {}
    /// An object: {{"name", value}, {"other", value}}.
    Json(std::initializer_list<Member> members);
    Json(const Json& other);
    Json(Json&& other) noexcept;
    Json& operator=(const Json& other);
    Json& operator=(Json&& other) noexcept;
    ~Json();

    [[nodiscard]] static Json EmptyArray();
    [[nodiscard]] static Json EmptyObject();

    /// Throws a JsonError for a text that is no JSON, or nests deeper than any of ours. Of members of one
    /// name the last one counts; they come in the order of their names.
    [[nodiscard]] static Json Parse(std::string_view text);
    /// On one line, or `indent` blanks deeper for each level. What is not UTF-8 becomes U+FFFD.
    [[nodiscard]] std::string Dump(int indent = -1) const;

    [[nodiscard]] bool IsText() const { return std::holds_alternative<std::string>(value_); }
    [[nodiscard]] bool IsFlag() const { return std::holds_alternative<bool>(value_); }
    [[nodiscard]] bool IsArray() const { return std::holds_alternative<Array>(value_); }
    [[nodiscard]] bool IsObject() const { return std::holds_alternative<Object>(value_); }
    /// A whole number that is not negative.
    [[nodiscard]] bool IsUnsigned() const { return std::holds_alternative<uint64_t>(value_); }
    [[nodiscard]] bool IsInteger() const { return IsUnsigned() || std::holds_alternative<int64_t>(value_); }

    // These throw a JsonError for a value of another kind.
    [[nodiscard]] bool Flag() const;
    [[nodiscard]] uint64_t Unsigned() const;
    /// Any number.
    [[nodiscard]] double Real() const;
    [[nodiscard]] const std::string& Text() const;
    [[nodiscard]] const Array& Items() const;
    [[nodiscard]] const Object& Members() const;
    [[nodiscard]] const Json& At(std::string_view name) const;

    /// Null when this is no object or has no such member.
    [[nodiscard]] const Json* Find(std::string_view name) const;

    /// The member of this name, which is made when there is none; so is the object, of a null.
    Json& operator[](std::string_view name);
    /// Adds to the end of an array, which is made of a null.
    void Append(Json item);

    bool operator==(const Json& other) const;

  private:
    friend class JsonWriter;

    template <typename Kind>
    [[nodiscard]] const Kind& As(const char* expected) const;

    std::variant<std::nullptr_t, bool, int64_t, uint64_t, double, std::string, Array, Object> value_;
};

struct Json::Member final {
    std::string name;
    Json value;

    bool operator==(const Member& other) const = default;
};

Json::Json(std::same_as<bool> auto flag) : value_(flag) {}

template <std::integral Number>
requires(!std::same_as<Number, bool>) Json::Json(Number number) {
    if (number < 0) {
        value_ = static_cast<int64_t>(number);
    } else {
        value_ = static_cast<uint64_t>(number);
    }
}

}  // namespace tools
