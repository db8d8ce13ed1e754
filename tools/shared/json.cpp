// Json over the library that knows the text: it reads a document, whose values are carried over, and writes
// the numbers and texts.
#include "shared/json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tools {
namespace {

using Document = nlohmann::json;
using Kind = Document::value_t;

// What is carried over, and let go of, goes as deep into the stack as the text nests.
constexpr int kDeepest = 64;

Json FromDocument(const Document& document) {
    switch (document.type()) {
        case Kind::boolean:
            return document.get<bool>();
        case Kind::number_integer:
            return document.get<int64_t>();
        case Kind::number_unsigned:
            return document.get<uint64_t>();
        case Kind::number_float:
            return document.get<double>();
        case Kind::string:
            return document.get_ref<const std::string&>();
        case Kind::array:
        case Kind::object:
            break;
        default:
            return {};
    }
    if (document.is_array()) {
        Json::Array items;
        for (const Document& item : document)
            items.push_back(FromDocument(item));
        return items;
    }
    Json::Object members;
    for (const auto& [name, value] : document.items())
        members.push_back({name, FromDocument(value)});
    return members;
}

}  // namespace

class JsonWriter final {
  public:
    explicit JsonWriter(int indent) : indent_(indent) {}

    void operator()(std::nullptr_t) { text_ += "null"; }
    template <typename Plain>
    void operator()(const Plain& plain) {
        text_ += Document(plain).dump(-1, ' ', false, Document::error_handler_t::replace);
    }
    void operator()(const Json::Array& items) {
        WriteList('[', items, ']', [this](const Json& item) { std::visit(*this, item.value_); });
    }
    void operator()(const Json::Object& members) {
        WriteList('{', members, '}', [this](const Json::Member& member) {
            (*this)(member.name);
            text_ += indent_ < 0 ? ":" : ": ";
            std::visit(*this, member.value.value_);
        });
    }

    [[nodiscard]] std::string Take() { return std::move(text_); }

  private:
    template <typename List, typename WriteItem>
    void WriteList(char begin, const List& list, char end, WriteItem writeItem) {
        text_ += begin;
        ++depth_;
        for (const auto& item : list) {
            if (&item != &list.front()) text_ += ',';
            BeginLine();
            writeItem(item);
        }
        --depth_;
        if (!list.empty()) BeginLine();
        text_ += end;
    }
    void BeginLine() {
        if (indent_ < 0) return;
        text_ += '\n';
        text_.append(static_cast<size_t>(indent_) * static_cast<size_t>(depth_), ' ');
    }

    int indent_;
    int depth_ = 0;
    std::string text_;
};

Json::Json() = default;
Json::Json(std::nullptr_t) {}
Json::Json(double number) : value_(number) {}
Json::Json(std::string text) : value_(std::move(text)) {}
Json::Json(std::string_view text) : value_(std::string(text)) {}
Json::Json(const char* text) : value_(std::string(text)) {}
Json::Json(Array items) : value_(std::move(items)) {}
Json::Json(Object members) : value_(std::move(members)) {}
Json::Json(std::initializer_list<Member> members) : value_(Object(members)) {}
Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json Json::EmptyArray() {
    return Array();
}
Json Json::EmptyObject() {
    return Object();
}

Json Json::Parse(std::string_view text) {
    const auto checkDepth = [](int depth, Document::parse_event_t, Document&) {
        if (depth > kDeepest) throw JsonError("it nests too deeply");
        return true;
    };
    try {
        return FromDocument(Document::parse(text, checkDepth));
    } catch (const Document::parse_error& error) {
        throw JsonError(error.what(), error.byte);
    } catch (const Document::out_of_range& error) {
        throw JsonError(std::string("a number is too large: ") + error.what());
    }
}

std::string Json::Dump(int indent) const {
    JsonWriter writer(indent);
    std::visit(writer, value_);
    return writer.Take();
}

template <typename Kind>
const Kind& Json::As(const char* expected) const {
    if (const auto* const value = std::get_if<Kind>(&value_)) return *value;
    throw JsonError(std::string("expected ") + expected + " instead of " + Dump());
}

bool Json::Flag() const {
    return As<bool>("true or false");
}
uint64_t Json::Unsigned() const {
    return As<uint64_t>("a whole number");
}
double Json::Real() const {
    if (const auto* const whole = std::get_if<uint64_t>(&value_)) return static_cast<double>(*whole);
    if (const auto* const negative = std::get_if<int64_t>(&value_)) return static_cast<double>(*negative);
    return As<double>("a number");
}
const std::string& Json::Text() const {
    return As<std::string>("a text");
}
const Json::Array& Json::Items() const {
    return As<Array>("a list");
}
const Json::Object& Json::Members() const {
    return As<Object>("an object");
}

const Json* Json::Find(std::string_view name) const {
    const auto* const members = std::get_if<Object>(&value_);
    if (members == nullptr) return nullptr;
    const auto found = std::ranges::find(*members, name, &Member::name);
    return found == members->end() ? nullptr : &found->value;
}

const Json& Json::At(std::string_view name) const {
    if (const Json* const value = Find(name)) return *value;
    throw JsonError("expected \"" + std::string(name) + "\", which is not there");
}

Json& Json::operator[](std::string_view name) {
    if (std::holds_alternative<std::nullptr_t>(value_)) value_ = Object();
    Object& members = std::get<Object>(value_);
    const auto found = std::ranges::find(members, name, &Member::name);
    return found != members.end() ? found->value : members.emplace_back(Member{std::string(name), {}}).value;
}

void Json::Append(Json item) {
    if (std::holds_alternative<std::nullptr_t>(value_)) value_ = Array();
    std::get<Array>(value_).push_back(std::move(item));
}

bool Json::operator==(const Json& other) const {
    return value_ == other.value_;
}

}  // namespace tools
