// A value is judged by its setting's kind before it is taken; the reply is made then and only then.
#include "vprinter/device/model.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <stdexcept>

#include "opl/value_escape.h"
#include "shared/text.h"

namespace vprinter {
namespace {

constexpr std::string_view kGood = "0000,";

struct FlagWord {
    std::string_view word;
    bool value;
    bool anyCase;
};

constexpr FlagWord kFlagWords[] = {
    {"TRUE", true, false},   {"YES", true, true}, {"ON", true, false},   {"ENABLE", true, false},
    {"FALSE", false, false}, {"NO", false, true}, {"OFF", false, false}, {"DISABLE", false, false},
};

bool EqualsInAnyCase(std::string_view left, std::string_view right) {
    const auto capital = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    return std::ranges::equal(left, right, {}, capital, capital);
}

std::optional<bool> FlagOf(std::string_view text) {
    for (const FlagWord& row : kFlagWords) {
        if (text == row.word || (row.anyCase && EqualsInAnyCase(text, row.word))) return row.value;
    }
    return std::nullopt;
}

std::string Unescaped(std::string_view value) {
    std::string text(value);
    for (char& c : text)
        c = opl::EscapeByte(c);
    return text;
}

/// The stored form of a value, or what is wrong with the value.
struct Judgement {
    std::string value;
    std::string problem;
};

Judgement JudgeNumber(const SettingSpec& spec, std::string_view text) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < spec.lowest ||
        number > spec.highest) {
        return {{}, fmt::format("Expected a number from {} to {}", spec.lowest, spec.highest)};
    }
    return {std::to_string(number), {}};
}

Judgement Judge(const SettingSpec& spec, std::string text) {
    switch (spec.kind) {
        case ValueKind::Flag: {
            const std::optional<bool> flag = FlagOf(text);
            if (!flag) return {{}, "Expected YES or NO"};
            return {*flag ? "YES" : "NO", {}};
        }
        case ValueKind::Number:
            return JudgeNumber(spec, text);
        case ValueKind::Word:
            if (std::ranges::find(spec.words, text) != spec.words.end()) return {std::move(text), {}};
            return {{}, fmt::format("Expected one of {}", tools::Joined(spec.words, " "))};
        case ValueKind::Address:
            if (text.size() == 4) return {std::move(text), {}};
            return {{}, "Expected an address of four bytes"};
        case ValueKind::Text:
            break;
    }
    if (text.size() <= spec.maxLength) return {std::move(text), {}};
    return {{}, fmt::format("Expected at most {} characters", spec.maxLength)};
}

Judgement JudgePeoplesText(const SettingSpec& spec, std::string_view text) {
    return Judge(spec, spec.kind == ValueKind::Address ? AddressBytes(text) : std::string(text));
}

}  // namespace

std::string AddressBytes(std::string_view dotted) {
    std::string bytes;
    const char* at = dotted.data();
    const char* const end = at + dotted.size();
    for (int i = 0; i < 4; ++i) {
        uint8_t part = 0;
        const auto [after, error] = std::from_chars(at, end, part);
        const bool last = i == 3;
        if (error != std::errc() || (last ? after != end : after == end || *after != '.')) return {};
        bytes += static_cast<char>(part);
        at = last ? after : after + 1;
    }
    return bytes;
}

std::string DottedAddress(std::string_view bytes) {
    const auto part = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
    return fmt::format("{}.{}.{}.{}", part(0), part(1), part(2), part(3));
}

std::string_view Setting::Item() const {
    return std::string_view(reply).substr(kGood.size(), reply.size() - kGood.size() - 1);
}

std::string Setting::Text() const {
    return spec.kind == ValueKind::Address ? DottedAddress(value) : value;
}

DeviceModel::DeviceModel(std::vector<SettingSpec> specs) {
    for (SettingSpec& spec : specs) {
        Judgement first = JudgePeoplesText(spec, spec.initial);
        if (!first.problem.empty()) {
            throw std::logic_error(fmt::format("first value of {}: {}", spec.key, first.problem));
        }
        positions_.emplace(spec.key, settings_.size());
        initials_.push_back(first.value);
        settings_.push_back({std::move(spec), {}, {}});
        Store(settings_.back(), std::move(first.value));
    }
    revision_ = 0;
}

Setting* DeviceModel::Find(std::string_view key) {
    const auto position = positions_.find(key);
    return position == positions_.end() ? nullptr : &settings_[position->second];
}

int64_t DeviceModel::Number(std::string_view key) const {
    const std::string& text = Value(key);
    int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void DeviceModel::Change(std::string_view key, std::string_view value) {
    const std::string problem = SetFromText(*Find(key), value);
    if (!problem.empty()) throw std::logic_error(fmt::format("{} changed to {}: {}", key, value, problem));
}

std::string DeviceModel::Set(Setting& setting, std::string_view value, bool binary) {
    const bool isAddress = setting.spec.kind == ValueKind::Address;
    if (binary != isAddress) return isAddress ? "Expected a binary block" : "Expected no binary block";
    Judgement judgement = Judge(setting.spec, binary ? std::string(value) : Unescaped(value));
    if (judgement.problem.empty()) Store(setting, std::move(judgement.value));
    return std::move(judgement.problem);
}

std::string DeviceModel::SetFromText(Setting& setting, std::string_view text) {
    Judgement judgement = JudgePeoplesText(setting.spec, text);
    if (judgement.problem.empty()) Store(setting, std::move(judgement.value));
    return std::move(judgement.problem);
}

std::string DeviceModel::Check(const Setting& setting, std::string_view text) {
    return JudgePeoplesText(setting.spec, text).problem;
}

std::string DeviceModel::SetInitial(std::string_view key, std::string_view text) {
    const size_t position = positions_.at(key);
    std::string problem = SetFromText(settings_[position], text);
    if (problem.empty()) initials_[position] = settings_[position].value;
    return problem;
}

std::string DeviceModel::Adopt(std::string_view key, std::string_view text) {
    const size_t position = positions_.at(key);
    SettingSpec spec = settings_[position].spec;
    spec.lowest = std::min<int64_t>(spec.lowest, std::numeric_limits<int32_t>::min());
    spec.highest = std::max<int64_t>(spec.highest, std::numeric_limits<uint32_t>::max());
    Judgement judgement = JudgePeoplesText(spec, text);
    if (!judgement.problem.empty()) return std::move(judgement.problem);
    initials_[position] = judgement.value;
    Store(settings_[position], std::move(judgement.value));
    return {};
}

void DeviceModel::RestoreDefaults(std::string_view keyPrefix) {
    for (size_t i = 0; i < settings_.size(); ++i) {
        const SettingSpec& spec = settings_[i].spec;
        if (spec.writable && spec.key.starts_with(keyPrefix)) Store(settings_[i], initials_[i]);
    }
}

std::vector<std::string> DeviceModel::Values() const {
    std::vector<std::string> values;
    for (const Setting& setting : settings_)
        values.push_back(setting.value);
    return values;
}

void DeviceModel::PutBack(std::vector<std::string> values) {
    for (size_t i = 0; i < settings_.size(); ++i)
        Store(settings_[i], std::move(values[i]));
}

ValueMap DeviceModel::ChangedValues() const {
    ValueMap values;
    for (size_t i = 0; i < settings_.size(); ++i) {
        const Setting& setting = settings_[i];
        const bool act = setting.spec.writable && !setting.spec.readable;
        if (act || setting.spec.live || setting.value == initials_[i]) continue;
        values[std::string(setting.spec.key)] = setting.Text();
    }
    return values;
}

void DeviceModel::Store(Setting& setting, std::string value) {
    setting.value = std::move(value);
    std::string& reply = setting.reply;
    reply.assign(kGood);
    reply += setting.spec.key;
    if (setting.spec.kind == ValueKind::Address) {
        reply += "#4=";
        reply += setting.value;
    } else {
        reply += '=';
        for (const char c : setting.value)
            reply += opl::EscapeByte(c);
    }
    reply += ';';
    ++revision_;
}

}  // namespace vprinter
