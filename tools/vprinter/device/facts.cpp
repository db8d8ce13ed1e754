#include "vprinter/device/facts.h"

#include <limits>

namespace vprinter {
namespace {

constexpr int32_t kAny = std::numeric_limits<int32_t>::max();
constexpr bool kLive = true;

constexpr DeviceFact kFacts[] = {
    // Identity and system
    {OplKey::ServiceNumber, "SN00417"},
    {OplKey::RPID, "RP-0417-2209"},
    {OplKey::RevNumber, "A01"},
    {OplKey::ServiceTag, "7KQ4T1S"},
    {OplKey::VendorID, "65520", 0, 65535},
    {OplKey::ProductID, "9900", 0, 65535},
    {OplKey::FriendlyName, "Kestrel 9900"},
    {OplKey::DisplayLanguage, "English"},
    {OplKey::RestoreDefaults, "All", 0, 0, kLive},
    {OplKey::CameraMode, "Nominal"},
    {OplKey::NetworkReset, "NO"},

    // Clock
    {OplKey::DeviceTime, "", 0, 0, kLive},
    {OplKey::DeviceTimeYear, "2012", 2000, 2136, kLive},
    {OplKey::DeviceTimeMonth, "1", 1, 12, kLive},
    {OplKey::DeviceTimeDay, "1", 1, 31, kLive},
    {OplKey::DeviceTimeHour, "0", 0, 23, kLive},
    {OplKey::DeviceTimeMinute, "0", 0, 59, kLive},
    {OplKey::CurrentTimeRTC, "", 0, 0, kLive},

    // Firmware and capabilities
    {OplKey::FWVersionLagoon, "417", 0, kAny},
    {OplKey::FWVersionCustomer, "2209", 0, kAny},
    {OplKey::FWVersionPrinter, "9900.2209.417"},
    {OplKey::CapFWUpgrade, "OPL"},
    {OplKey::CapRBNVer, "B"},
    {OplKey::CapTOFEdgeOverride, "YES"},
    {OplKey::Configuration, "", 0, 0, kLive},
    {OplKey::GCPConfigured, "NO"},
    {OplKey::PennantConfigured, "NO"},

    // Photo
    {OplKey::SceneBalance, "YES"},
    {OplKey::DateOnPrints, "NO"},
    {OplKey::ImagePageFormatting, "FitTo"},
    {OplKey::DPOFPromptIfDiscovered, "YES"},
    {OplKey::EnableAutomaticDpof, "NO"},
    {OplKey::PhotoQuality, "Normal"},
    {OplKey::PhotoRendering, "Color"},
    {OplKey::PhotoLayout, "1_borderless"},
    {OplKey::PhotoMode, "Layout"},
    {OplKey::PhotoCopies, "1", 1, 99},
    {OplKey::ViewFilesBy, "All"},

    // Printer and trays
    {OplKey::DuplexDryTime, "0", 0, 60},
    {OplKey::UpperTrayLevel, "80", 0, 100},
    {OplKey::LowerTrayLevel, "100", 0, 100},
    {OplKey::PhotoTrayEngaged, "NO"},
    {OplKey::ImageDeviceLinkState, "None"},

    // Scanner
    {OplKey::ScanWhat, "Document"},
    {OplKey::ScanTo, "File"},
    {OplKey::ScanPreview, "NO"},

    // Copy
    {OplKey::CopyQuality, "Normal"},
    {OplKey::CopyQuantity, "1", 1, 99},
    {OplKey::CopyBrightness, "0", -5, 5},
    {OplKey::CopyRendering, "Color"},
    {OplKey::CopyOutput, "Same_Size"},
    {OplKey::CopySizeScale, "100", 25, 400},
    {OplKey::CopyPreview, "NO"},
    {OplKey::CopySizeLayout, "1_borderless"},

    // Fax
    {OplKey::FaxRedials, "3", 0, 10},
    {OplKey::FaxNoAnswerRedial, "YES"},
    {OplKey::TAMSupport, "Auto"},
    {OplKey::TAMNumRings, "4", 1, 9},
    {OplKey::FaxConfirmationPage, "NO"},
    {OplKey::CallWaiting, "NO"},
    {OplKey::AudibleFaxTones, "YES"},
    {OplKey::FaxSendersName, ""},
    {OplKey::FaxPhoneNum, ""},
    {OplKey::FaxNum, ""},
    {OplKey::FaxPrintDate, "YES"},
    {OplKey::FaxMode, "Fine_Black"},
    {OplKey::FaxErrorCorrection, "YES"},
    {OplKey::FaxBackup, "YES"},
    {OplKey::FaxScaleToFit, "YES"},
    {OplKey::FaxTransferSpeed, "V_34__33pt6K_BAUD"},
    {OplKey::FaxDialing, "Tone"},

    // User interface and power saving: seconds, minutes, minutes
    {OplKey::SlideshowInterval, "5", 1, 60},
    {OplKey::AudibleFeedback, "YES"},
    {OplKey::SleepTimeout, "10", 1, 240},
    {OplKey::StandbyTimeout, "60", 1, 240},

    // Wireless configuration
    {OplKey::WirelessRadio, "YES"},
    {OplKey::WirelessRegion, "US_FCC"},
    {OplKey::WirelessMode, "Infrastructure"},
    {OplKey::WirelessSSID, "kestrel"},
    {OplKey::WirelessChannel, "6", 1, 14},
    {OplKey::WirelessAuthentication, "Open"},
    {OplKey::WirelessSecurityType, "WPA2PSK_AES"},
    {OplKey::WirelessSecurityKey0, ""},
    {OplKey::WirelessSecurityKey1, ""},
    {OplKey::WirelessSecurityKey2, ""},
    {OplKey::WirelessSecurityKey3, ""},
    {OplKey::WirelessSecurityDefaultKey, "0", 0, 3},
    {OplKey::WirelessSecurityPassPhrase, ""},

    // TCP/IP configuration
    {OplKey::IPMethod, "DHCP"},
    {OplKey::AutoIPAddress, "169.254.0.42"},
    {OplKey::AutoIPSubnetMask, "255.255.0.0"},
    {OplKey::AutoIPDefaultGateway, "0.0.0.0"},
    {OplKey::AutoIPAddressRangeStart, "169.254.1.0"},
    {OplKey::AutoIPAddressRangeEnd, "169.254.254.255"},
    {OplKey::DHCPIPAddress, "192.168.0.42"},
    {OplKey::DHCPSubnetMask, "255.255.255.0"},
    {OplKey::DHCPDefaultGateway, "192.168.0.1"},
    {OplKey::StaticIPAddress, "192.168.0.42"},
    {OplKey::StaticSubnetMask, "255.255.255.0"},
    {OplKey::StaticDefaultGateway, "192.168.0.1"},

    // Wireless status: megabits a second, decibels over a milliwatt
    {OplKey::WirelessState, "Connected"},
    {OplKey::WirelessSpeed, "54", 0, kAny},
    {OplKey::WirelessRSSIdBm, "-52", -120, 0},
    {OplKey::WirelessRSSI, "Good"},

    // Access points and network diagnostics; the time-out of one ping in seconds
    {OplKey::SearchForAccessPoints, "NO", 0, 0, kLive},
    {OplKey::NumAccessPoints, "0", 0, 30, kLive},
    {OplKey::AccessPoints, "", 0, 0, kLive},
    {OplKey::PingAddress, "0.0.0.0", 0, 0, kLive},
    {OplKey::PingCount, "0", 0, 255, kLive},
    {OplKey::PingTimeout, "0", 0, 255, kLive},
    {OplKey::NumOfPingExecuted, "0", 0, 255, kLive},
    {OplKey::NumOfPingSuccess, "0", 0, 255, kLive},
    {OplKey::MDNSHostList, "", 0, 0, kLive},
};

}  // namespace

std::span<const DeviceFact> DeviceFacts() {
    return kFacts;
}

}  // namespace vprinter
