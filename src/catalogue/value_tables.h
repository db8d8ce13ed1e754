// The device's words for the numbers of the exported interface.
#pragma once

#include <cstdint>
#include <string_view>

#include "kestrel/sdk_types.h"

namespace catalogue {

struct EnumEntry {
    const char* name;  // as the device sends and accepts it, letter for letter
    uint32_t value;
};

/// The first entry of `table` with this name or number; null when there is none. A table ends with an entry
/// without a name.
[[nodiscard]] const EnumEntry* FindByName(const EnumEntry* table, std::string_view name);
[[nodiscard]] const EnumEntry* FindByValue(const EnumEntry* table, uint32_t value);

inline constexpr EnumEntry kNoWords[] = {{nullptr, 0}};

inline constexpr EnumEntry kLanguage[] = {
    {"English", KESTREL_LANGUAGE_ENGLISH},
    {"InternationalEnglish", KESTREL_LANGUAGE_INTERNATIONAL_ENGLISH},
    {"French", KESTREL_LANGUAGE_FRENCH},
    {"Spanish", KESTREL_LANGUAGE_SPANISH},
    {"German", KESTREL_LANGUAGE_GERMAN},
    {"Italian", KESTREL_LANGUAGE_ITALIAN},
    {"Portuguese", KESTREL_LANGUAGE_PORTUGUESE},
    {"Danish", KESTREL_LANGUAGE_DANISH},
    {"Finnish", KESTREL_LANGUAGE_FINNISH},
    {"Swedish", KESTREL_LANGUAGE_SWEDISH},
    {"CanadianFrench", KESTREL_LANGUAGE_CANADIAN_FRENCH},
    {"CastilianSpanish", KESTREL_LANGUAGE_CASTILIAN_SPANISH},
    {"BokmalNorwegian", KESTREL_LANGUAGE_BOKMAL_NORWEGIAN},
    {"Dutch", KESTREL_LANGUAGE_DUTCH},
    {"BrazilianPortuguese", KESTREL_LANGUAGE_BRAZILIAN_PORTUGUESE},
    {nullptr, 0},
};

inline constexpr EnumEntry kRestoreScope[] = {
    {"All", KESTREL_RESTORE_SCOPE_ALL},
    {"Network", KESTREL_RESTORE_SCOPE_NETWORK},
    {nullptr, 0},
};

inline constexpr EnumEntry kCameraMode[] = {
    {"Force_PTP", KESTREL_CAMERA_MODE_FORCE_PTP},
    {"Nominal", KESTREL_CAMERA_MODE_NOMINAL},
    {nullptr, 0},
};

inline constexpr EnumEntry kImageScaling[] = {
    {"FitTo", KESTREL_IMAGE_SCALING_FIT_TO},
    {"Fill", KESTREL_IMAGE_SCALING_FILL},
    {nullptr, 0},
};

inline constexpr EnumEntry kAnswerMode[] = {
    {"Auto", KESTREL_ANSWER_MODE_AUTO},
    {"Answering_Machine", KESTREL_ANSWER_MODE_ANSWERING_MACHINE},
    {"Manual", KESTREL_ANSWER_MODE_MANUAL},
    {nullptr, 0},
};

inline constexpr EnumEntry kWirelessRegion[] = {
    {"US_FCC", KESTREL_WIRELESS_REGION_US_FCC},
    {"Canada_IC", KESTREL_WIRELESS_REGION_CANADA_IC},
    {"MostofEurope_ETSI", KESTREL_WIRELESS_REGION_MOST_OF_EUROPE_ETSI},
    {"Spain", KESTREL_WIRELESS_REGION_SPAIN},
    {"France", KESTREL_WIRELESS_REGION_FRANCE},
    {"Japan_MKK", KESTREL_WIRELESS_REGION_JAPAN_MKK},
    {"Japan_MKK1", KESTREL_WIRELESS_REGION_JAPAN_MKK1},
    {"Israel", KESTREL_WIRELESS_REGION_ISRAEL},
    {nullptr, 0},
};

inline constexpr EnumEntry kWirelessMode[] = {
    {"AdHoc", KESTREL_WIRELESS_MODE_AD_HOC},
    {"Infrastructure", KESTREL_WIRELESS_MODE_INFRASTRUCTURE},
    {nullptr, 0},
};

inline constexpr EnumEntry kAuthentication[] = {
    {"Open", KESTREL_AUTHENTICATION_OPEN},
    {"SHKey", KESTREL_AUTHENTICATION_SHARED_KEY},
    {nullptr, 0},
};

inline constexpr EnumEntry kSecurityType[] = {
    {"NoEncryption", KESTREL_SECURITY_TYPE_NO_ENCRYPTION},
    {"WEP64", KESTREL_SECURITY_TYPE_WEP64},
    {"WEP128", KESTREL_SECURITY_TYPE_WEP128},
    {"WPAPSK_TKIP", KESTREL_SECURITY_TYPE_WPA_PSK_TKIP},
    {"WPAPSK_AES", KESTREL_SECURITY_TYPE_WPA_PSK_AES},
    {"WPA2PSK_TKIP", KESTREL_SECURITY_TYPE_WPA2_PSK_TKIP},
    {"WPA2PSK_AES", KESTREL_SECURITY_TYPE_WPA2_PSK_AES},
    {nullptr, 0},
};

inline constexpr EnumEntry kAddressMethod[] = {
    {"AutoIP", KESTREL_ADDRESS_METHOD_AUTO_IP},
    {"Static", KESTREL_ADDRESS_METHOD_STATIC},
    {"DHCP", KESTREL_ADDRESS_METHOD_DHCP},
    {nullptr, 0},
};

inline constexpr EnumEntry kCopyQuality[] = {
    {"Draft", KESTREL_COPY_QUALITY_DRAFT},
    {"Normal", KESTREL_COPY_QUALITY_NORMAL},
    {"Presentation", KESTREL_COPY_QUALITY_PRESENTATION},
    {nullptr, 0},
};

inline constexpr EnumEntry kCopyRendering[] = {
    {"Mono", KESTREL_COPY_RENDERING_MONO},
    {"Color", KESTREL_COPY_RENDERING_COLOR},
    {nullptr, 0},
};

inline constexpr EnumEntry kCopyOutput[] = {
    {"Same_Size", KESTREL_COPY_OUTPUT_SAME_SIZE},
    {"Fit_To_Page", KESTREL_COPY_OUTPUT_FIT_TO_PAGE},
    {"Scale_Percentage", KESTREL_COPY_OUTPUT_SCALE_PERCENTAGE},
    {"Photo_Layouts", KESTREL_COPY_OUTPUT_PHOTO_LAYOUTS},
    {nullptr, 0},
};

inline constexpr EnumEntry kPhotoQuality[] = {
    {"Draft", KESTREL_PHOTO_QUALITY_DRAFT},
    {"Normal", KESTREL_PHOTO_QUALITY_NORMAL},
    {"Presentation", KESTREL_PHOTO_QUALITY_PRESENTATION},
    {nullptr, 0},
};

inline constexpr EnumEntry kPhotoRendering[] = {
    {"Color", KESTREL_PHOTO_RENDERING_COLOR},
    {"Greyscale", KESTREL_PHOTO_RENDERING_GREYSCALE},
    {nullptr, 0},
};

inline constexpr EnumEntry kPhotoMode[] = {
    {"Layout", KESTREL_PHOTO_MODE_LAYOUT},
    {"FixedSize", KESTREL_PHOTO_MODE_FIXED_SIZE},
    {nullptr, 0},
};

inline constexpr EnumEntry kLayout[] = {
    {"1_borderless", KESTREL_LAYOUT_1_BORDERLESS}, {"1_bordered", KESTREL_LAYOUT_1_BORDERED},
    {"2_prints", KESTREL_LAYOUT_2_PRINTS},         {"3_prints", KESTREL_LAYOUT_3_PRINTS},
    {"4_prints", KESTREL_LAYOUT_4_PRINTS},         {"9_prints", KESTREL_LAYOUT_9_PRINTS},
    {"2x2Poster", KESTREL_LAYOUT_2X2_POSTER},      {"3x3Poster", KESTREL_LAYOUT_3X3_POSTER},
    {"4x4Poster", KESTREL_LAYOUT_4X4_POSTER},      {nullptr, 0},
};

inline constexpr EnumEntry kFileView[] = {
    {"All", KESTREL_FILE_VIEW_ALL},
    {"Event", KESTREL_FILE_VIEW_EVENT},
    {"Date", KESTREL_FILE_VIEW_DATE},
    {"Favorites", KESTREL_FILE_VIEW_FAVORITES},
    {"Filename", KESTREL_FILE_VIEW_FILENAME},
    {"Album", KESTREL_FILE_VIEW_ALBUM},
    {"Tagged_Images", KESTREL_FILE_VIEW_TAGGED_IMAGES},
    {nullptr, 0},
};

inline constexpr EnumEntry kFaxMode[] = {
    {"Photo_Color", KESTREL_FAX_MODE_PHOTO_COLOR},
    {"Photo_Greyscale", KESTREL_FAX_MODE_PHOTO_GREYSCALE},
    {"Fine_Color", KESTREL_FAX_MODE_FINE_COLOR},
    {"Fine_Black", KESTREL_FAX_MODE_FINE_BLACK},
    {"Draft_Color", KESTREL_FAX_MODE_DRAFT_COLOR},
    {"Draft_Black", KESTREL_FAX_MODE_DRAFT_BLACK},
    {nullptr, 0},
};

inline constexpr EnumEntry kFaxSpeed[] = {
    {"V_34__33pt6K_BAUD", KESTREL_FAX_SPEED_33600},
    {"V_37__14pt4K_BAUD", KESTREL_FAX_SPEED_14400},
    {"V_29__9600BAUD", KESTREL_FAX_SPEED_9600},
    {nullptr, 0},
};

inline constexpr EnumEntry kDialing[] = {
    {"Tone", KESTREL_DIALING_TONE},
    {"Pulse", KESTREL_DIALING_PULSE},
    {nullptr, 0},
};

inline constexpr EnumEntry kAddressType[] = {
    {"(null)", KESTREL_ADDRESS_TYPE_NONE},
    {"Fax", KESTREL_ADDRESS_TYPE_FAX},
    {"Email", KESTREL_ADDRESS_TYPE_EMAIL},
    {nullptr, 0},
};

inline constexpr EnumEntry kScanWhat[] = {
    {"Document", KESTREL_SCAN_WHAT_DOCUMENT},
    {"Photo", KESTREL_SCAN_WHAT_PHOTO},
    {nullptr, 0},
};

inline constexpr EnumEntry kScanTo[] = {
    {"File", KESTREL_SCAN_TO_FILE},
    {"Application", KESTREL_SCAN_TO_APPLICATION},
    {"Memory_Card", KESTREL_SCAN_TO_MEMORY_CARD},
    {nullptr, 0},
};

inline constexpr EnumEntry kImageDeviceLink[] = {
    {"None", KESTREL_IMAGE_DEVICE_LINK_NONE},
    {"PTP", KESTREL_IMAGE_DEVICE_LINK_PTP},
    {"PictBridge", KESTREL_IMAGE_DEVICE_LINK_PICTBRIDGE},
    {"CradlePort", KESTREL_IMAGE_DEVICE_LINK_CRADLE_PORT},
    {nullptr, 0},
};

inline constexpr EnumEntry kWirelessState[] = {
    {"InitializingRadio", KESTREL_WIRELESS_STATE_INITIALIZING_RADIO},
    {"ScanningAP", KESTREL_WIRELESS_STATE_SCANNING_AP},
    {"Connecting", KESTREL_WIRELESS_STATE_CONNECTING},
    {"Connected", KESTREL_WIRELESS_STATE_CONNECTED},
    {"Disconnected", KESTREL_WIRELESS_STATE_DISCONNECTED},
    {"Disabled", KESTREL_WIRELESS_STATE_DISABLED},
    {"ErrorInitializingRadio", KESTREL_WIRELESS_STATE_ERROR_INITIALIZING_RADIO},
    {"ErrorConnectingRadio", KESTREL_WIRELESS_STATE_ERROR_CONNECTING_RADIO},
    {nullptr, 0},
};

}  // namespace catalogue
