// Basic types of the Kestrel SDK and the numbers of its enumerated settings. Plain C11, also valid as C++.
#pragma once

#include <stddef.h>
#include <stdint.h>

#if !defined(__cplusplus) && !defined(_WIN32)
#include <uchar.h>
#endif

#ifdef __cplusplus
#define KESTREL_EXTERN_C extern "C"
#else
#define KESTREL_EXTERN_C
#endif

/// Stands before every function of the library. On Windows the export list alone says what is exported.
#ifdef _WIN32
#define KESTREL_API KESTREL_EXTERN_C
#else
#define KESTREL_API KESTREL_EXTERN_C __attribute__((visibility("default")))
#endif

/// Result or argument: 0 is false or failure, anything else true or success.
typedef uint8_t kestrel_bool;

/// One UTF-16 unit, two bytes.
#ifdef _WIN32
typedef wchar_t kestrel_char;
#else
typedef char16_t kestrel_char;
#endif

// The enumerations below give names to the numbers; the functions take and write them as uint32_t.

/// Language of the printer's own display.
typedef enum KestrelLanguage {
    KESTREL_LANGUAGE_ENGLISH = 0,
    KESTREL_LANGUAGE_INTERNATIONAL_ENGLISH = 1,
    KESTREL_LANGUAGE_FRENCH = 2,
    KESTREL_LANGUAGE_SPANISH = 3,
    KESTREL_LANGUAGE_GERMAN = 4,
    KESTREL_LANGUAGE_ITALIAN = 5,
    KESTREL_LANGUAGE_PORTUGUESE = 6,
    KESTREL_LANGUAGE_DANISH = 7,
    KESTREL_LANGUAGE_FINNISH = 8,
    KESTREL_LANGUAGE_SWEDISH = 9,
    KESTREL_LANGUAGE_CANADIAN_FRENCH = 10,
    KESTREL_LANGUAGE_BOKMAL_NORWEGIAN = 11,
    KESTREL_LANGUAGE_CASTILIAN_SPANISH = 12,
    KESTREL_LANGUAGE_DUTCH = 13,
    KESTREL_LANGUAGE_BRAZILIAN_PORTUGUESE = 14
} KestrelLanguage;

/// What RestoreDefaults resets.
typedef enum KestrelRestoreScope {
    KESTREL_RESTORE_SCOPE_ALL = 0,
    KESTREL_RESTORE_SCOPE_NETWORK = 1
} KestrelRestoreScope;

/// How the printer treats a camera on its USB socket.
typedef enum KestrelCameraMode {
    KESTREL_CAMERA_MODE_FORCE_PTP = 0,
    KESTREL_CAMERA_MODE_NOMINAL = 1
} KestrelCameraMode;

/// How a photo is scaled to the page.
typedef enum KestrelImageScaling {
    KESTREL_IMAGE_SCALING_FIT_TO = 0,
    KESTREL_IMAGE_SCALING_FILL = 1
} KestrelImageScaling;

/// Who answers an incoming call.
typedef enum KestrelAnswerMode {
    KESTREL_ANSWER_MODE_AUTO = 0,
    KESTREL_ANSWER_MODE_ANSWERING_MACHINE = 1,
    KESTREL_ANSWER_MODE_MANUAL = 2
} KestrelAnswerMode;

/// Radio regulations that the printer keeps to.
typedef enum KestrelWirelessRegion {
    KESTREL_WIRELESS_REGION_US_FCC = 0,
    KESTREL_WIRELESS_REGION_CANADA_IC = 1,
    KESTREL_WIRELESS_REGION_MOST_OF_EUROPE_ETSI = 2,
    KESTREL_WIRELESS_REGION_SPAIN = 3,
    KESTREL_WIRELESS_REGION_FRANCE = 4,
    KESTREL_WIRELESS_REGION_JAPAN_MKK = 5,
    KESTREL_WIRELESS_REGION_JAPAN_MKK1 = 6,
    KESTREL_WIRELESS_REGION_ISRAEL = 7
} KestrelWirelessRegion;

typedef enum KestrelWirelessMode {
    KESTREL_WIRELESS_MODE_AD_HOC = 0,
    KESTREL_WIRELESS_MODE_INFRASTRUCTURE = 1
} KestrelWirelessMode;

typedef enum KestrelAuthentication {
    KESTREL_AUTHENTICATION_OPEN = 0,
    KESTREL_AUTHENTICATION_SHARED_KEY = 1
} KestrelAuthentication;

typedef enum KestrelSecurityType {
    KESTREL_SECURITY_TYPE_NO_ENCRYPTION = 0,
    KESTREL_SECURITY_TYPE_WEP64 = 1,
    KESTREL_SECURITY_TYPE_WEP128 = 2,
    KESTREL_SECURITY_TYPE_WPA_PSK_TKIP = 3,
    KESTREL_SECURITY_TYPE_WPA_PSK_AES = 4,
    KESTREL_SECURITY_TYPE_WPA2_PSK_TKIP = 5,
    KESTREL_SECURITY_TYPE_WPA2_PSK_AES = 6
} KestrelSecurityType;

/// Where the printer's address comes from.
typedef enum KestrelAddressMethod {
    KESTREL_ADDRESS_METHOD_AUTO_IP = 0,
    KESTREL_ADDRESS_METHOD_STATIC = 1,
    KESTREL_ADDRESS_METHOD_DHCP = 2
} KestrelAddressMethod;

typedef enum KestrelCopyQuality {
    KESTREL_COPY_QUALITY_DRAFT = 0,
    KESTREL_COPY_QUALITY_NORMAL = 1,
    KESTREL_COPY_QUALITY_PRESENTATION = 2
} KestrelCopyQuality;

typedef enum KestrelCopyRendering {
    KESTREL_COPY_RENDERING_MONO = 0,
    KESTREL_COPY_RENDERING_COLOR = 1
} KestrelCopyRendering;

typedef enum KestrelCopyOutput {
    KESTREL_COPY_OUTPUT_SAME_SIZE = 0,
    KESTREL_COPY_OUTPUT_FIT_TO_PAGE = 1,
    KESTREL_COPY_OUTPUT_SCALE_PERCENTAGE = 2,
    KESTREL_COPY_OUTPUT_PHOTO_LAYOUTS = 3
} KestrelCopyOutput;

typedef enum KestrelPhotoQuality {
    KESTREL_PHOTO_QUALITY_DRAFT = 0,
    KESTREL_PHOTO_QUALITY_NORMAL = 1,
    KESTREL_PHOTO_QUALITY_PRESENTATION = 2
} KestrelPhotoQuality;

typedef enum KestrelPhotoRendering {
    KESTREL_PHOTO_RENDERING_COLOR = 0,
    KESTREL_PHOTO_RENDERING_GREYSCALE = 1
} KestrelPhotoRendering;

typedef enum KestrelPhotoMode {
    KESTREL_PHOTO_MODE_LAYOUT = 0,
    KESTREL_PHOTO_MODE_FIXED_SIZE = 1
} KestrelPhotoMode;

/// Prints on a page, or pages of a poster.
typedef enum KestrelLayout {
    KESTREL_LAYOUT_1_BORDERLESS = 0,
    KESTREL_LAYOUT_1_BORDERED = 1,
    KESTREL_LAYOUT_2_PRINTS = 2,
    KESTREL_LAYOUT_3_PRINTS = 3,
    KESTREL_LAYOUT_4_PRINTS = 4,
    KESTREL_LAYOUT_9_PRINTS = 5,
    KESTREL_LAYOUT_2X2_POSTER = 6,
    KESTREL_LAYOUT_3X3_POSTER = 7,
    KESTREL_LAYOUT_4X4_POSTER = 8
} KestrelLayout;

/// How the printer's display groups the files of a memory card.
typedef enum KestrelFileView {
    KESTREL_FILE_VIEW_ALL = 0,
    KESTREL_FILE_VIEW_EVENT = 1,
    KESTREL_FILE_VIEW_DATE = 2,
    KESTREL_FILE_VIEW_FAVORITES = 3,
    KESTREL_FILE_VIEW_FILENAME = 4,
    KESTREL_FILE_VIEW_ALBUM = 5,
    KESTREL_FILE_VIEW_TAGGED_IMAGES = 6
} KestrelFileView;

typedef enum KestrelFaxMode {
    KESTREL_FAX_MODE_PHOTO_COLOR = 0,
    KESTREL_FAX_MODE_PHOTO_GREYSCALE = 1,
    KESTREL_FAX_MODE_FINE_COLOR = 2,
    KESTREL_FAX_MODE_FINE_BLACK = 3,
    KESTREL_FAX_MODE_DRAFT_COLOR = 4,
    KESTREL_FAX_MODE_DRAFT_BLACK = 5
} KestrelFaxMode;

/// Highest speed of sending and receiving, in bits a second.
typedef enum KestrelFaxSpeed {
    KESTREL_FAX_SPEED_33600 = 0,
    KESTREL_FAX_SPEED_14400 = 1,
    KESTREL_FAX_SPEED_9600 = 2
} KestrelFaxSpeed;

typedef enum KestrelDialing { KESTREL_DIALING_TONE = 0, KESTREL_DIALING_PULSE = 1 } KestrelDialing;

/// What the address of an address-book entry is.
typedef enum KestrelAddressType {
    KESTREL_ADDRESS_TYPE_NONE = 0,
    KESTREL_ADDRESS_TYPE_FAX = 1,
    KESTREL_ADDRESS_TYPE_EMAIL = 2
} KestrelAddressType;

typedef enum KestrelScanWhat { KESTREL_SCAN_WHAT_DOCUMENT = 0, KESTREL_SCAN_WHAT_PHOTO = 1 } KestrelScanWhat;

typedef enum KestrelScanTo {
    KESTREL_SCAN_TO_FILE = 0,
    KESTREL_SCAN_TO_APPLICATION = 1,
    KESTREL_SCAN_TO_MEMORY_CARD = 2
} KestrelScanTo;

/// What is plugged into the printer's camera socket.
typedef enum KestrelImageDeviceLink {
    KESTREL_IMAGE_DEVICE_LINK_NONE = 0,
    KESTREL_IMAGE_DEVICE_LINK_PTP = 1,
    KESTREL_IMAGE_DEVICE_LINK_PICTBRIDGE = 2,
    KESTREL_IMAGE_DEVICE_LINK_CRADLE_PORT = 3
} KestrelImageDeviceLink;

typedef enum KestrelWirelessState {
    KESTREL_WIRELESS_STATE_INITIALIZING_RADIO = 0,
    KESTREL_WIRELESS_STATE_SCANNING_AP = 1,
    KESTREL_WIRELESS_STATE_CONNECTING = 2,
    KESTREL_WIRELESS_STATE_CONNECTED = 3,
    KESTREL_WIRELESS_STATE_DISCONNECTED = 4,
    KESTREL_WIRELESS_STATE_DISABLED = 5,
    KESTREL_WIRELESS_STATE_ERROR_INITIALIZING_RADIO = 6,
    KESTREL_WIRELESS_STATE_ERROR_CONNECTING_RADIO = 7
} KestrelWirelessState;

// --- Records ---

/// The printer's status, 1,052 bytes, as the language monitor sends it. The library reads three fields; the
/// others have the meaning that the language monitor and the status monitor of the product agree on.
typedef struct DeviceStatusRecord {
    uint8_t unspecified0[8];
    uint32_t state;  ///< 100000 with an empty text: the status is not known yet
    uint8_t unspecified12[728];
    uint8_t onUsb;  ///< not 0: the printer is on a USB port
    uint8_t unspecified741[19];
    kestrel_char text[146];  ///< a longer text is cut here, without a terminator
} DeviceStatusRecord;

#define KESTREL_SPEED_DIAL_RECORDS 60
#define KESTREL_ONE_TOUCH_RECORDS 5
#define KESTREL_MAX_ACCESS_POINTS 30
#define KESTREL_MAX_HOSTS 10

/// A destination of the address book, 184 bytes. Texts are zero-terminated.
typedef struct KestrelQuickDial {
    uint32_t addressType;  ///< a KestrelAddressType
    kestrel_char name[40];
    kestrel_char address[50];  ///< fax number or e-mail address
} KestrelQuickDial;

/// An access point as the printer sees it, 372 bytes.
typedef struct KestrelAccessPoint {
    kestrel_char macAddress[18];  ///< 00:1B:2C:3D:4E:5F; empty when the printer does not tell it
    uint16_t signalStrength;      ///< this and the other numbers as the printer reports them
    uint16_t beaconInterval;
    uint16_t capabilities;
    kestrel_char ssid[33];
    uint32_t channel;
    uint32_t encryption;
    uint8_t reserved[256];  ///< zero
} KestrelAccessPoint;

/// A host name, 512 bytes.
typedef struct KestrelHost {
    kestrel_char name[256];
} KestrelHost;
