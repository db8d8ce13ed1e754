// Settings as the catalogue knows them, conditions as the model does; one way to change both.
#include <fmt/core.h>

#include <algorithm>

#include "catalogue/rows.h"
#include "vprinter/api/refusal.h"
#include "vprinter/api/views.h"
#include "vprinter/device/condition.h"
#include "vprinter/files/byte_text.h"

namespace vprinter::api {
namespace {

std::string_view KindText(ValueKind kind) {
    constexpr std::string_view kTexts[] = {"bool", "number", "enum", "text", "address"};
    return kTexts[static_cast<size_t>(kind)];
}

/// Commands are made, not kept: they have no value to show.
bool HasValue(const Setting& setting) {
    return !setting.spec.live && !(setting.spec.writable && !setting.spec.readable);
}

void AddBounds(tools::Json& view, const SettingSpec& spec) {
    for (const std::string_view word : spec.words)
        view["words"].Append(word);
    if (spec.kind == ValueKind::Number) view["lowest"] = spec.lowest, view["highest"] = spec.highest;
    if (spec.kind == ValueKind::Text) view["maxLength"] = spec.maxLength;
}

tools::Json SettingView(const catalogue::Row& row, DeviceModel& model) {
    tools::Json view = {{"key", row.name},
                        {"type", catalogue::TypeText(row.readType)},
                        {"readable", row.CanRead()},
                        {"writable", row.CanWrite()},
                        {"about", row.about}};
    if (!row.id) {
        view["value"] = 0;
        return view;
    }
    const Setting& setting = *model.Find(row.key);
    AddBounds(view, setting.spec);
    if (!row.CanRead()) return view;
    view["value"] = row.IsSecret() ? tools::Json(kMask) : ValueView(setting);
    if (row.IsSecret()) view["masked"] = true;
    return view;
}

tools::Json ConditionView(const Setting& setting) {
    tools::Json view = {{"key", setting.spec.key}, {"type", KindText(setting.spec.kind)}};
    AddBounds(view, setting.spec);
    view["value"] = ValueView(setting);
    return view;
}

Setting& Named(DeviceModel& model, const std::string& name) {
    const auto rows = catalogue::Rows();
    const auto row = std::ranges::find(rows, name, &catalogue::Row::name);
    Setting* const setting = row != rows.end() ? model.Find(row->key) : model.Find(name);
    const bool ofPrinter = setting != nullptr && (row != rows.end() || !setting->spec.IsReachable());
    if (!ofPrinter) throw Refusal(404, "there is no setting \"" + name + "\"", "GET settings lists them");
    return *setting;
}

}  // namespace

tools::Json ValueView(const Setting& setting) {
    const std::string text = setting.Text();
    if (setting.spec.kind == ValueKind::Flag) return text == "YES";
    if (setting.spec.kind == ValueKind::Number) return tools::Json::Parse(text);
    return ToUtf8(text);
}

std::string TextFor(const Setting& setting, const tools::Json& value) {
    switch (setting.spec.kind) {
        case ValueKind::Flag:
            if (value.IsFlag()) return value.Flag() ? "YES" : "NO";
            throw Refusal(422, "expected true or false", "send {\"value\": true}");
        case ValueKind::Number:
            if (value.IsInteger()) return value.Dump();
            throw Refusal(422, "expected a whole number", "send {\"value\": 3}");
        default:
            break;
    }
    if (!value.IsText()) throw Refusal(422, "expected a text", "send {\"value\": \"...\"}");
    std::string bytes = FromUtf8(value.Text());
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    // Control codes carry the command language's own characters on the wire and would come back as those.
    if (ToUtf8(bytes) != value.Text() || std::ranges::any_of(bytes, isControl)) {
        throw Refusal(422, "the text has characters that the printer does not have",
                      "write it in Latin letters, without control characters");
    }
    return bytes;
}

void Take(const PrinterParts& printer, Setting& setting, const std::string& text) {
    const std::string problem = printer.model.SetFromText(setting, text);
    if (!problem.empty())
        throw Refusal(422, fmt::format("{} does not take this value", setting.spec.key), problem);
    printer.responder.ForgetFixedReply(setting.spec.key);
}

tools::Json Settings(const PrinterParts& printer, const Call&) {
    tools::Json settings = tools::Json::EmptyArray();
    for (const catalogue::Row& row : catalogue::Rows())
        settings.Append(SettingView(row, printer.model));
    tools::Json conditions = tools::Json::EmptyArray();
    for (const Setting& setting : printer.model.All())
        if (!setting.spec.IsReachable()) conditions.Append(ConditionView(setting));
    return {{"settings", settings}, {"conditions", conditions}};
}

tools::Json ChangeSetting(const PrinterParts& printer, const Call& call) {
    Setting& setting = Named(printer.model, call.arguments.front());
    const bool madeByPrinter = setting.spec.live && !setting.spec.writable;
    if (madeByPrinter) throw Refusal(422, "the printer makes this value itself", "change another setting");
    Take(printer, setting, TextFor(setting, call.body.At("value")));
    if (setting.spec.live) {
        const std::string problem = printer.responder.Device().Act(setting);
        if (!problem.empty()) throw Refusal(422, "the printer does not do this", problem);
    }
    tools::Json answer = {{"key", call.arguments.front()}};
    const auto rows = catalogue::Rows();
    const auto row = std::ranges::find(rows, setting.spec.key, &catalogue::Row::key);
    const bool shown = HasValue(setting) && (row == rows.end() || !row->IsSecret());
    if (shown) answer["value"] = ValueView(setting);
    return answer;
}

}  // namespace vprinter::api
