// What one sees of a printer.
#include <iterator>

#include "vprinter/api/views.h"
#include "vprinter/device/condition.h"
#include "vprinter/device/status_block.h"
#include "vprinter/files/byte_text.h"

namespace vprinter::api {
namespace {

constexpr std::string_view kInkPrefix = "ink.";

tools::Json InkView(const DeviceModel& model) {
    tools::Json inks = tools::Json::EmptyArray();
    for (const std::string_view ink : condition::kInks) {
        const int64_t percent = model.Number(ink);
        inks.Append(
            {{"name", ink.substr(kInkPrefix.size())}, {"percent", percent}, {"state", InkWord(percent)}});
    }
    return inks;
}

tools::Json NetworkView(const DeviceModel& model) {
    const std::string_view method = model.Value(opl::KeyText(opl::Key::IPMethod));
    const opl::Key address = method == "DHCP"     ? opl::Key::DHCPIPAddress
                             : method == "Static" ? opl::Key::StaticIPAddress
                                                  : opl::Key::AutoIPAddress;
    return {{"radio", model.Flag(opl::KeyText(opl::Key::WirelessRadio))},
            {"ssid", ToUtf8(model.Value(opl::KeyText(opl::Key::WirelessSSID)))},
            {"state", model.Value(opl::KeyText(opl::Key::WirelessState))},
            {"signalStrength", model.Value(opl::KeyText(opl::Key::WirelessRSSI))},
            {"address", model.Get(opl::KeyText(address)).Text()}};
}

}  // namespace

tools::Json StatusView(const PrinterParts& printer) {
    const DeviceModel& model = printer.model;
    FirmwareUpgrade& upgrade = printer.responder.Device().Upgrade();
    if (upgrade.IsUnderWay()) upgrade.Advance();
    const vprinter::Status status = StatusOf(model, upgrade.Percent());
    tools::Json view = {{"port", printer.port},
                        {"name", ToUtf8(model.Value(opl::KeyText(opl::Key::FriendlyName)))},
                        {"firmware", ToUtf8(model.Value(opl::KeyText(opl::Key::FWVersionPrinter)))},
                        {"online", model.Flag(condition::kOnline)},
                        {"state", status.word},
                        {"stateNumber", static_cast<uint32_t>(status.state)},
                        {"text", ToUtf8(status.text)},
                        {"connection", model.Value(condition::kConnection) == "USB" ? "usb" : "network"}};
    if (const auto percent = upgrade.Percent()) view["upgradePercent"] = *percent;
    view["inks"] = InkView(model);
    view["trays"] = {{"upper", model.Number(opl::KeyText(opl::Key::UpperTrayLevel))},
                     {"lower", model.Number(opl::KeyText(opl::Key::LowerTrayLevel))},
                     {"photoEngaged", model.Flag(opl::KeyText(opl::Key::PhotoTrayEngaged))}};
    view["network"] = NetworkView(model);
    view["networkUp"] = view["network"].At("state") == "Connected";
    const uint32_t holder = printer.responder.LockHolder();
    view["lockHolder"] = holder != 0 ? tools::Json(holder) : tools::Json();
    view["revision"] = model.Revision();
    return view;
}

tools::Json Status(const PrinterParts& printer, const Call&) {
    return StatusView(printer);
}

}  // namespace vprinter::api
