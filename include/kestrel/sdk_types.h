// Basic types of the Kestrel SDK and the numbers of its enumerated settings. Plain C11, also valid as C++.
#pragma once

#include <stddef.h>
#include <stdint.h>

#if !defined(__cplusplus) && !defined(_WIN32)
#include <uchar.h>
#endif

/// What makes a declaration one of C, also in C++.
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
    KESTREL_LANGUAGE_ENGLISH = 0,                ///< English
    KESTREL_LANGUAGE_INTERNATIONAL_ENGLISH = 1,  ///< International English
    KESTREL_LANGUAGE_FRENCH = 2,                 ///< French
    KESTREL_LANGUAGE_SPANISH = 3,                ///< Spanish
    KESTREL_LANGUAGE_GERMAN = 4,                 ///< German
    KESTREL_LANGUAGE_ITALIAN = 5,                ///< Italian
    KESTREL_LANGUAGE_PORTUGUESE = 6,             ///< Portuguese
    KESTREL_LANGUAGE_DANISH = 7,                 ///< Danish
    KESTREL_LANGUAGE_FINNISH = 8,                ///< Finnish
    KESTREL_LANGUAGE_SWEDISH = 9,                ///< Swedish
    KESTREL_LANGUAGE_CANADIAN_FRENCH = 10,       ///< French of Canada
    KESTREL_LANGUAGE_BOKMAL_NORWEGIAN = 11,      ///< Norwegian (Bokmal)
    KESTREL_LANGUAGE_CASTILIAN_SPANISH = 12,     ///< Spanish of Spain
    KESTREL_LANGUAGE_DUTCH = 13,                 ///< Dutch
    KESTREL_LANGUAGE_BRAZILIAN_PORTUGUESE = 14   ///< Portuguese of Brazil
} KestrelLanguage;

/// What RestoreDefaults resets.
typedef enum KestrelRestoreScope {
    KESTREL_RESTORE_SCOPE_ALL = 0,     ///< every setting
    KESTREL_RESTORE_SCOPE_NETWORK = 1  ///< the network settings alone
} KestrelRestoreScope;

/// How the printer treats a camera on its USB socket.
typedef enum KestrelCameraMode {
    KESTREL_CAMERA_MODE_FORCE_PTP = 0,  ///< by the picture transfer protocol, whatever it offers
    KESTREL_CAMERA_MODE_NOMINAL = 1     ///< as the camera presents itself
} KestrelCameraMode;

/// How a photo is scaled to the page.
typedef enum KestrelImageScaling {
    KESTREL_IMAGE_SCALING_FIT_TO = 0,  ///< the whole photo is on the page, perhaps with margins
    KESTREL_IMAGE_SCALING_FILL = 1     ///< the page is filled, and the photo perhaps cropped
} KestrelImageScaling;

/// Who answers an incoming call.
typedef enum KestrelAnswerMode {
    KESTREL_ANSWER_MODE_AUTO = 0,               ///< the printer, as a fax
    KESTREL_ANSWER_MODE_ANSWERING_MACHINE = 1,  ///< an answering machine on the same line
    KESTREL_ANSWER_MODE_MANUAL = 2              ///< people
} KestrelAnswerMode;

/// Radio regulations that the printer keeps to.
typedef enum KestrelWirelessRegion {
    KESTREL_WIRELESS_REGION_US_FCC = 0,               ///< United States, FCC
    KESTREL_WIRELESS_REGION_CANADA_IC = 1,            ///< Canada, IC
    KESTREL_WIRELESS_REGION_MOST_OF_EUROPE_ETSI = 2,  ///< most of Europe, ETSI
    KESTREL_WIRELESS_REGION_SPAIN = 3,                ///< Spain
    KESTREL_WIRELESS_REGION_FRANCE = 4,               ///< France
    KESTREL_WIRELESS_REGION_JAPAN_MKK = 5,            ///< Japan, MKK
    KESTREL_WIRELESS_REGION_JAPAN_MKK1 = 6,           ///< Japan, MKK1
    KESTREL_WIRELESS_REGION_ISRAEL = 7                ///< Israel
} KestrelWirelessRegion;

/// How the printer joins a wireless network.
typedef enum KestrelWirelessMode {
    KESTREL_WIRELESS_MODE_AD_HOC = 0,         ///< directly, without an access point
    KESTREL_WIRELESS_MODE_INFRASTRUCTURE = 1  ///< through an access point
} KestrelWirelessMode;

/// How the printer shows an access point that it may join.
typedef enum KestrelAuthentication {
    KESTREL_AUTHENTICATION_OPEN = 0,       ///< without a key
    KESTREL_AUTHENTICATION_SHARED_KEY = 1  ///< with the key that the access point has as well
} KestrelAuthentication;

/// How what goes over the radio is encrypted.
typedef enum KestrelSecurityType {
    KESTREL_SECURITY_TYPE_NO_ENCRYPTION = 0,  ///< none: everybody can listen
    KESTREL_SECURITY_TYPE_WEP64 = 1,          ///< WEP with a key of 64 bits
    KESTREL_SECURITY_TYPE_WEP128 = 2,         ///< WEP with a key of 128 bits
    KESTREL_SECURITY_TYPE_WPA_PSK_TKIP = 3,   ///< WPA with a pass phrase, TKIP
    KESTREL_SECURITY_TYPE_WPA_PSK_AES = 4,    ///< WPA with a pass phrase, AES
    KESTREL_SECURITY_TYPE_WPA2_PSK_TKIP = 5,  ///< WPA2 with a pass phrase, TKIP
    KESTREL_SECURITY_TYPE_WPA2_PSK_AES = 6    ///< WPA2 with a pass phrase, AES
} KestrelSecurityType;

/// Where the printer's address comes from.
typedef enum KestrelAddressMethod {
    KESTREL_ADDRESS_METHOD_AUTO_IP = 0,  ///< the printer chooses one itself
    KESTREL_ADDRESS_METHOD_STATIC = 1,   ///< the address that has been set
    KESTREL_ADDRESS_METHOD_DHCP = 2      ///< a server of the network
} KestrelAddressMethod;

/// Print quality of copies.
typedef enum KestrelCopyQuality {
    KESTREL_COPY_QUALITY_DRAFT = 0,        ///< fast
    KESTREL_COPY_QUALITY_NORMAL = 1,       ///< between the two others
    KESTREL_COPY_QUALITY_PRESENTATION = 2  ///< best
} KestrelCopyQuality;

/// Colours of copies.
typedef enum KestrelCopyRendering {
    KESTREL_COPY_RENDERING_MONO = 0,  ///< black and white
    KESTREL_COPY_RENDERING_COLOR = 1  ///< in colour
} KestrelCopyRendering;

/// How large a copy is.
typedef enum KestrelCopyOutput {
    KESTREL_COPY_OUTPUT_SAME_SIZE = 0,         ///< as large as the original
    KESTREL_COPY_OUTPUT_FIT_TO_PAGE = 1,       ///< as large as the page allows
    KESTREL_COPY_OUTPUT_SCALE_PERCENTAGE = 2,  ///< scaled by the percentage that is set
    KESTREL_COPY_OUTPUT_PHOTO_LAYOUTS = 3      ///< in a layout for photos
} KestrelCopyOutput;

/// Print quality of photos.
typedef enum KestrelPhotoQuality {
    KESTREL_PHOTO_QUALITY_DRAFT = 0,        ///< fast
    KESTREL_PHOTO_QUALITY_NORMAL = 1,       ///< between the two others
    KESTREL_PHOTO_QUALITY_PRESENTATION = 2  ///< best
} KestrelPhotoQuality;

/// Colours of photos.
typedef enum KestrelPhotoRendering {
    KESTREL_PHOTO_RENDERING_COLOR = 0,     ///< in colour
    KESTREL_PHOTO_RENDERING_GREYSCALE = 1  ///< in shades of grey
} KestrelPhotoRendering;

/// How photos are laid out on the page.
typedef enum KestrelPhotoMode {
    KESTREL_PHOTO_MODE_LAYOUT = 0,     ///< by a KestrelLayout
    KESTREL_PHOTO_MODE_FIXED_SIZE = 1  ///< in a fixed size
} KestrelPhotoMode;

/// Prints on a page, or pages of a poster.
typedef enum KestrelLayout {
    KESTREL_LAYOUT_1_BORDERLESS = 0,  ///< one, to the edge of the page
    KESTREL_LAYOUT_1_BORDERED = 1,    ///< one, with a border
    KESTREL_LAYOUT_2_PRINTS = 2,      ///< two on a page
    KESTREL_LAYOUT_3_PRINTS = 3,      ///< three on a page
    KESTREL_LAYOUT_4_PRINTS = 4,      ///< four on a page
    KESTREL_LAYOUT_9_PRINTS = 5,      ///< nine on a page
    KESTREL_LAYOUT_2X2_POSTER = 6,    ///< a poster of four pages
    KESTREL_LAYOUT_3X3_POSTER = 7,    ///< a poster of nine pages
    KESTREL_LAYOUT_4X4_POSTER = 8     ///< a poster of 16 pages
} KestrelLayout;

/// How the printer's display groups the files of a memory card.
typedef enum KestrelFileView {
    KESTREL_FILE_VIEW_ALL = 0,           ///< not at all: all files in one row
    KESTREL_FILE_VIEW_EVENT = 1,         ///< by the event at which they were taken
    KESTREL_FILE_VIEW_DATE = 2,          ///< by date
    KESTREL_FILE_VIEW_FAVORITES = 3,     ///< the favourites
    KESTREL_FILE_VIEW_FILENAME = 4,      ///< by file name
    KESTREL_FILE_VIEW_ALBUM = 5,         ///< by album
    KESTREL_FILE_VIEW_TAGGED_IMAGES = 6  ///< those that the camera has tagged
} KestrelFileView;

/// Resolution and colours of a fax.
typedef enum KestrelFaxMode {
    KESTREL_FAX_MODE_PHOTO_COLOR = 0,      ///< photo resolution, in colour
    KESTREL_FAX_MODE_PHOTO_GREYSCALE = 1,  ///< photo resolution, in shades of grey
    KESTREL_FAX_MODE_FINE_COLOR = 2,       ///< fine resolution, in colour
    KESTREL_FAX_MODE_FINE_BLACK = 3,       ///< fine resolution, black and white
    KESTREL_FAX_MODE_DRAFT_COLOR = 4,      ///< draft resolution, in colour
    KESTREL_FAX_MODE_DRAFT_BLACK = 5       ///< draft resolution, black and white
} KestrelFaxMode;

/// Highest speed of sending and receiving, in bits a second.
typedef enum KestrelFaxSpeed {
    KESTREL_FAX_SPEED_33600 = 0,  ///< 33,600
    KESTREL_FAX_SPEED_14400 = 1,  ///< 14,400
    KESTREL_FAX_SPEED_9600 = 2    ///< 9,600
} KestrelFaxSpeed;

/// How numbers are dialled.
typedef enum KestrelDialing {
    KESTREL_DIALING_TONE = 0,  ///< by tones
    KESTREL_DIALING_PULSE = 1  ///< by pulses
} KestrelDialing;

/// What the address of an address-book entry is.
typedef enum KestrelAddressType {
    KESTREL_ADDRESS_TYPE_NONE = 0,  ///< the entry is not in use
    KESTREL_ADDRESS_TYPE_FAX = 1,   ///< a fax number
    KESTREL_ADDRESS_TYPE_EMAIL = 2  ///< an e-mail address
} KestrelAddressType;

/// What lies on the scanner.
typedef enum KestrelScanWhat {
    KESTREL_SCAN_WHAT_DOCUMENT = 0,  ///< a document
    KESTREL_SCAN_WHAT_PHOTO = 1      ///< a photo
} KestrelScanWhat;

/// Where a scan goes.
typedef enum KestrelScanTo {
    KESTREL_SCAN_TO_FILE = 0,         ///< a file on the computer
    KESTREL_SCAN_TO_APPLICATION = 1,  ///< a program on the computer
    KESTREL_SCAN_TO_MEMORY_CARD = 2   ///< the memory card in the printer
} KestrelScanTo;

/// What is plugged into the printer's camera socket.
typedef enum KestrelImageDeviceLink {
    KESTREL_IMAGE_DEVICE_LINK_NONE = 0,        ///< nothing
    KESTREL_IMAGE_DEVICE_LINK_PTP = 1,         ///< a camera that speaks the picture transfer protocol
    KESTREL_IMAGE_DEVICE_LINK_PICTBRIDGE = 2,  ///< a camera that prints by itself
    KESTREL_IMAGE_DEVICE_LINK_CRADLE_PORT = 3  ///< a camera's cradle
} KestrelImageDeviceLink;

/// The state of the printer's wireless network.
typedef enum KestrelWirelessState {
    KESTREL_WIRELESS_STATE_INITIALIZING_RADIO = 0,        ///< the radio is being switched on
    KESTREL_WIRELESS_STATE_SCANNING_AP = 1,               ///< access points are searched for
    KESTREL_WIRELESS_STATE_CONNECTING = 2,                ///< the printer is joining the network
    KESTREL_WIRELESS_STATE_CONNECTED = 3,                 ///< the printer is in the network
    KESTREL_WIRELESS_STATE_DISCONNECTED = 4,              ///< the printer is in no network
    KESTREL_WIRELESS_STATE_DISABLED = 5,                  ///< the radio is switched off
    KESTREL_WIRELESS_STATE_ERROR_INITIALIZING_RADIO = 6,  ///< the radio could not be switched on
    KESTREL_WIRELESS_STATE_ERROR_CONNECTING_RADIO = 7     ///< the network could not be joined
} KestrelWirelessState;

// --- Records ---

/// The printer's status, 1,052 bytes, as the language monitor sends it. The library reads three fields; the
/// others have the meaning that the language monitor and the status monitor of the product agree on.
typedef struct DeviceStatusRecord {
    uint8_t unspecified0[8];     ///< not for the library
    uint32_t state;              ///< 100000 with an empty text: the status is not known yet
    uint8_t unspecified12[728];  ///< not for the library
    uint8_t onUsb;               ///< not 0: the printer is on a USB port
    uint8_t unspecified741[19];  ///< not for the library
    kestrel_char text[146];      ///< a longer text is cut here, without a terminator
} DeviceStatusRecord;

/// Records of the speed-dial list.
#define KESTREL_SPEED_DIAL_RECORDS 60
/// Records of the one-touch list.
#define KESTREL_ONE_TOUCH_RECORDS 5
/// Access points that the printer tells of.
#define KESTREL_MAX_ACCESS_POINTS 30
/// Hosts that the printer tells of.
#define KESTREL_MAX_HOSTS 10

/// A destination of the address book, 184 bytes. Texts are zero-terminated.
typedef struct KestrelQuickDial {
    uint32_t addressType;      ///< a KestrelAddressType
    kestrel_char name[40];     ///< of the person or office
    kestrel_char address[50];  ///< fax number or e-mail address
} KestrelQuickDial;

/// An access point as the printer sees it, 372 bytes.
typedef struct KestrelAccessPoint {
    kestrel_char macAddress[18];  ///< 00:1B:2C:3D:4E:5F; empty when the printer does not tell it
    uint16_t signalStrength;      ///< this and the other numbers as the printer reports them
    uint16_t beaconInterval;      ///< time between two signs of life
    uint16_t capabilities;        ///< bits, each with a meaning of its own
    kestrel_char ssid[33];        ///< name of the network
    uint32_t channel;             ///< of the radio
    uint32_t encryption;          ///< a number of the printer's own
    uint8_t reserved[256];        ///< zero
} KestrelAccessPoint;

/// A host name, 512 bytes.
typedef struct KestrelHost {
    kestrel_char name[256];  ///< zero-terminated
} KestrelHost;
