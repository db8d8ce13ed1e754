/* Every error code that a function of the Kestrel SDK leaves in the thread's last-error value, with a text
   for people and what to do about it. Plain C11, also valid as C++. */
#pragma once

/* The library's own codes; the others are those of the system, with their usual meaning. */
#define SDK_ERROR_CHANNEL_NOT_OPEN 0xE0000001u
#define SDK_ERROR_SEND_INCOMPLETE 0xE0000002u
#define SDK_ERROR_NO_REPLY 0xE0000003u
#define SDK_ERROR_BAD_REPLY 0xE0000011u
#define SDK_ERROR_UNEXPECTED_REPLY 0xE0000012u
#define SDK_ERROR_BIDI_DISABLED 0xE0000013u
#define SDK_ERROR_NETWORK_PRINTER_NAME 0xE0000014u
#define SDK_ERROR_PORT_LIST 0xE0000015u

/* One row per code: ROW(name, code, text, advice). To make a table of them:

       struct Error { const char* name; uint32_t code; const char* text; const char* advice; };
       #define ERROR_ROW(name, code, text, advice) {name, code, text, advice},
       static const struct Error kErrors[] = {KESTREL_SDK_ERRORS(ERROR_ROW)};
       #undef ERROR_ROW */
// clang-format off
#define KESTREL_SDK_ERRORS(ROW)                                                                              \
    ROW("SDK_ERROR_CHANNEL_NOT_OPEN", SDK_ERROR_CHANNEL_NOT_OPEN,                                            \
        "no printer is selected on this thread",                                                             \
        "select a printer on the thread that makes the call, and check that the selection succeeded")        \
    ROW("SDK_ERROR_SEND_INCOMPLETE", SDK_ERROR_SEND_INCOMPLETE,                                              \
        "the request could not be handed over whole",                                                        \
        "check that the printer's language monitor (for a status monitor request: the status monitor) runs " \
        "and is not busy with another program, allow more time, and keep a request within 65,791 bytes")     \
    ROW("SDK_ERROR_NO_REPLY", SDK_ERROR_NO_REPLY,                                                            \
        "no reply came in time",                                                                             \
        "check that the printer is switched on and connected, then repeat with more time")                   \
    ROW("SDK_ERROR_BAD_REPLY", SDK_ERROR_BAD_REPLY,                                                          \
        "the reply does not hold the value that was asked for",                                              \
        "look at the text of the last bad response; the printer may not support this request")               \
    ROW("SDK_ERROR_UNEXPECTED_REPLY", SDK_ERROR_UNEXPECTED_REPLY,                                            \
        "the reply is incomplete or has another form than expected",                                         \
        "repeat the request; if it fails again, look at the last response number and the last bad response") \
    ROW("SDK_ERROR_BIDI_DISABLED", SDK_ERROR_BIDI_DISABLED,                                                  \
        "the printer does not have bidirectional communication enabled",                                     \
        "enable bidirectional support in the printer's properties, on the page of its ports")                \
    ROW("SDK_ERROR_NETWORK_PRINTER_NAME", SDK_ERROR_NETWORK_PRINTER_NAME,                                    \
        "the printer is shared by another computer",                                                         \
        "select a printer that is installed on this computer, or run the program on the other one")          \
    ROW("SDK_ERROR_PORT_LIST", SDK_ERROR_PORT_LIST,                                                          \
        "the printer is attached to a list of ports",                                                        \
        "attach the printer to a single port in its properties, then select it again")                       \
    ROW("NO_ERROR", 0u, "success", "nothing to do")                                                          \
    ROW("ERROR_FILE_NOT_FOUND", 2u,                                                                          \
        "a file was not found",                                                                              \
        "check the file name that was passed, or on the printer the storage that it should be on")           \
    ROW("ERROR_ACCESS_DENIED", 5u,                                                                           \
        "access was denied",                                                                                 \
        "ask the administrator for the right to use this printer")                                           \
    ROW("ERROR_NOT_ENOUGH_MEMORY", 8u,                                                                       \
        "there is not enough memory",                                                                        \
        "close other programs and repeat")                                                                   \
    ROW("ERROR_BAD_COMMAND", 22u,                                                                            \
        "the printer does not know this command, or the library does not support this function",             \
        "use a function that this printer model supports")                                                   \
    ROW("ERROR_CRC", 23u,                                                                                    \
        "the printer found an error in the data",                                                            \
        "check the value that was sent against those that the printer accepts, then repeat")                 \
    ROW("ERROR_GEN_FAILURE", 31u,                                                                            \
        "the device or the status monitor refused the request",                                              \
        "look at the last response number and the last bad response for the reason")                         \
    ROW("ERROR_NOT_SUPPORTED", 50u,                                                                          \
        "the printer does not offer this",                                                                   \
        "ask for the printer's capabilities first")                                                          \
    ROW("ERROR_INVALID_PARAMETER", 87u,                                                                      \
        "an argument is not one of the accepted values, or the printer sent a word that is not known",       \
        "check the arguments; if they are right, look at the last bad response")                             \
    ROW("ERROR_OPEN_FAILED", 110u,                                                                           \
        "the channel to the other program could not be opened",                                              \
        "restart the program; if that does not help, restart the computer")                                  \
    ROW("ERROR_BUSY", 170u,                                                                                  \
        "the printer is busy",                                                                               \
        "wait until it has finished, then repeat")                                                           \
    ROW("ERROR_FILENAME_EXCED_RANGE", 206u,                                                                  \
        "a name is too long",                                                                                \
        "give the printer's port or the product's files a shorter name")                                     \
    ROW("ERROR_LOCKED", 212u,                                                                                \
        "this thread holds the lock of the printer selected now",                                            \
        "unlock that printer before another one is selected")                                                \
    ROW("ERROR_DLL_INIT_FAILED", 1114u,                                                                      \
        "the library was refused while it was being loaded",                                                 \
        "give the library file back its own name, which ends in SDK")                                        \
    ROW("ERROR_FILE_CORRUPT", 1392u,                                                                         \
        "a file is damaged",                                                                                 \
        "get the file anew and repeat")                                                                      \
    ROW("ERROR_TIMEOUT", 1460u,                                                                              \
        "the time allowed ran out",                                                                          \
        "check that the printer is ready, then repeat with more time")                                       \
    ROW("ERROR_BAD_CONFIGURATION", 1610u,                                                                    \
        "another program holds the channel in a smaller size",                                               \
        "make sure that all programs of the product are of the same version, then restart them")             \
    ROW("RPC_S_SERVER_UNAVAILABLE", 1722u,                                                                   \
        "the print spooler is not running",                                                                  \
        "start the print spooler, then repeat")                                                              \
    ROW("RPC_S_CALL_FAILED_DNE", 1727u,                                                                      \
        "the print spooler did not execute the call",                                                        \
        "restart the print spooler, then repeat")                                                            \
    ROW("ERROR_INVALID_PRINTER_NAME", 1801u,                                                                 \
        "there is no such printer, or its driver is not one of the product's",                               \
        "compare the name with the list of installed printers")                                              \
    ROW("ERROR_DEVICE_NOT_AVAILABLE", 4319u,                                                                 \
        "the printer cannot be reached",                                                                     \
        "check that it is switched on and that its cable or network connection works")
// clang-format on
