// The error codes that a function of the Kestrel SDK leaves in the thread's last-error value, and the
// response numbers of the printer's replies, each with a text for people and what to do about it; sdk_text.h
// finds them. A code of the system that is not here has been passed on unchanged and has its usual meaning.
// Plain C11, also valid as C++.
//
// Groups of codes, by which the other headers name what a function can fail with besides what it lists:
//   object    8, 1114: the thread's object cannot be made, for lack of memory or in a library that was
//             refused
//   exchange  object, SDK_ERROR_CHANNEL_NOT_OPEN, SDK_ERROR_PORT_LIST, SDK_ERROR_SEND_INCOMPLETE,
//             SDK_ERROR_NO_REPLY, 1460, 2, 22, 23, 31, 170, 1392, 4319: a request to the printer that was
//             not answered well. 1460: the time was used up before the reply could be waited for, or the
//             printer reports a time-out. From 2 on, and SDK_ERROR_NO_REPLY as well, the printer's own
//             verdict by the response number of its reply
//   query     exchange, SDK_ERROR_UNEXPECTED_REPLY: a request to the printer whose reply is read, and was
//             not whole
//   monitor   object, SDK_ERROR_SEND_INCOMPLETE, SDK_ERROR_NO_REPLY, 31, 32, 735, 995, 1460: the status
//             monitor does not answer a ping. Mostly 1460: it does not run or is busy.
//             SDK_ERROR_SEND_INCOMPLETE: the channel to it is not open on this thread. SDK_ERROR_NO_REPLY:
//             it answers with 0. The others come from the channel: 32, 735 and 995 are gone at the next call
//   start     0, 6, 1722, 1727, system: the status monitor cannot be started. 0: no printer was selected in
//             this process yet, so nobody knows which program it is. 6: the program cannot be started
//   system    4, 5, 6, 14, 31, 87, 112, 170, 1009, 1117, 1392, 1450, 1455: the system refuses an object, a
//             file, the registry or the spooler's work, for its own reason
#pragma once

// The library's own codes; the others are those of the system, with their usual meaning.
#define SDK_ERROR_CHANNEL_NOT_OPEN 0xE0000001u
#define SDK_ERROR_SEND_INCOMPLETE 0xE0000002u
#define SDK_ERROR_NO_REPLY 0xE0000003u
#define SDK_ERROR_BAD_REPLY 0xE0000011u
#define SDK_ERROR_UNEXPECTED_REPLY 0xE0000012u
#define SDK_ERROR_BIDI_DISABLED 0xE0000013u
#define SDK_ERROR_NETWORK_PRINTER_NAME 0xE0000014u
#define SDK_ERROR_PORT_LIST 0xE0000015u
// Those of sdk.hpp and of the interfaces of other languages, for a fault that they find before they call, and
// for a failure for which a function leaves 0. No function leaves them.
#define SDK_ERROR_WRONG_THREAD 0xE0000021u
#define SDK_ERROR_SELECTION_LOST 0xE0000022u
#define SDK_ERROR_BAD_TEXT 0xE0000023u
#define SDK_ERROR_BAD_NUMBER 0xE0000024u
#define SDK_ERROR_DECLINED 0xE0000025u
#define SDK_ERROR_NO_PRODUCT_PRINTER 0xE0000026u

/// One row per code.
///
/// `ROW`: a macro of four arguments: name, code, text, advice.
// clang-format off
#define KESTREL_SDK_ERRORS(ROW)                                                                              \
    ROW("SDK_ERROR_CHANNEL_NOT_OPEN", SDK_ERROR_CHANNEL_NOT_OPEN,                                            \
        "no printer is selected on this thread",                                                             \
        "select a printer on the thread that makes the call, and check that the selection succeeded")        \
    ROW("SDK_ERROR_SEND_INCOMPLETE", SDK_ERROR_SEND_INCOMPLETE,                                              \
        "the request was not taken, or not whole",                                                           \
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
    ROW("SDK_ERROR_WRONG_THREAD", SDK_ERROR_WRONG_THREAD,                                                    \
        "the printer was selected on another thread",                                                        \
        "select it on the thread that makes the call: each thread has a selection of its own")               \
    ROW("SDK_ERROR_SELECTION_LOST", SDK_ERROR_SELECTION_LOST,                                                \
        "this object's printer is not the one that the thread has selected now",                             \
        "select it anew, and keep one selected printer at a time on a thread")                               \
    ROW("SDK_ERROR_BAD_TEXT", SDK_ERROR_BAD_TEXT,                                                            \
        "a text is not valid Unicode, holds a zero character, or is too long for its field",                 \
        "check the text that was passed; nothing was sent")                                                  \
    ROW("SDK_ERROR_BAD_NUMBER", SDK_ERROR_BAD_NUMBER,                                                        \
        "a number does not fit the type that the setting is written as",                                     \
        "pass one within the setting's limits; nothing was sent")                                            \
    ROW("SDK_ERROR_DECLINED", SDK_ERROR_DECLINED,                                                            \
        "the printer declined, or its answer is not complete",                                               \
        "look at the last response number; the printer may not support this")                                \
    ROW("SDK_ERROR_NO_PRODUCT_PRINTER", SDK_ERROR_NO_PRODUCT_PRINTER,                                        \
        "no installed printer belongs to the product, or its configuration is missing",                      \
        "install the product and a printer, or name the printer to select")                                  \
    ROW("NO_ERROR", 0u, "success", "nothing to do")                                                          \
    ROW("ERROR_FILE_NOT_FOUND", 2u,                                                                          \
        "a file was not found",                                                                              \
        "check the file name that was passed, or on the printer the storage that it should be on")           \
    ROW("ERROR_TOO_MANY_OPEN_FILES", 4u,                                                                     \
        "too many files are open",                                                                           \
        "close other programs, or let this one open fewer files at once, and repeat")                        \
    ROW("ERROR_ACCESS_DENIED", 5u,                                                                           \
        "access was denied",                                                                                 \
        "ask the administrator for the right to use this printer")                                           \
    ROW("ERROR_INVALID_HANDLE", 6u,                                                                          \
        "a program could not be started, or another kind of object has a name of the product's",             \
        "install the product again; if that does not help, restart the computer")                            \
    ROW("ERROR_NOT_ENOUGH_MEMORY", 8u,                                                                       \
        "there is not enough memory",                                                                        \
        "close other programs and repeat")                                                                   \
    ROW("ERROR_OUTOFMEMORY", 14u,                                                                            \
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
    ROW("ERROR_SHARING_VIOLATION", 32u,                                                                      \
        "another program's request to the status monitor has not been read yet",                             \
        "repeat the call")                                                                                   \
    ROW("ERROR_NOT_SUPPORTED", 50u,                                                                          \
        "the printer does not offer this",                                                                   \
        "ask for the printer's capabilities first")                                                          \
    ROW("ERROR_INVALID_PARAMETER", 87u,                                                                      \
        "an argument is not one of the accepted values, or the printer sent a word that is not known",       \
        "check the arguments; if they are right, look at the last bad response")                             \
    ROW("ERROR_OPEN_FAILED", 110u,                                                                           \
        "the channel to the other program could not be opened",                                              \
        "restart the program; if that does not help, restart the computer")                                  \
    ROW("ERROR_DISK_FULL", 112u,                                                                             \
        "the file system is full",                                                                           \
        "make room on it, then repeat")                                                                      \
    ROW("ERROR_BUSY", 170u,                                                                                  \
        "the printer is busy",                                                                               \
        "wait until it has finished, then repeat")                                                           \
    ROW("ERROR_FILENAME_EXCED_RANGE", 206u,                                                                  \
        "a name is too long",                                                                                \
        "give the printer's port or the product's files a shorter name")                                     \
    ROW("ERROR_LOCKED", 212u,                                                                                \
        "this thread holds the lock of the printer selected now",                                            \
        "unlock that printer before another one is selected")                                                \
    ROW("ERROR_ABANDONED_WAIT_0", 735u,                                                                      \
        "a program ended in the middle of its request to the status monitor",                                \
        "repeat the call")                                                                                   \
    ROW("ERROR_OPERATION_ABORTED", 995u,                                                                     \
        "the request to the status monitor was cancelled",                                                   \
        "repeat the call")                                                                                   \
    ROW("ERROR_BADDB", 1009u,                                                                                \
        "the system's registry is damaged",                                                                  \
        "restore it from a copy, or on Linux remove the state folder and install the printers anew")         \
    ROW("ERROR_DLL_INIT_FAILED", 1114u,                                                                      \
        "the library was refused while it was being loaded",                                                 \
        "give the library file back its own name, which ends in SDK")                                        \
    ROW("ERROR_IO_DEVICE", 1117u,                                                                            \
        "a file of the system could not be read or written",                                                 \
        "check the file system and its rights, then repeat")                                                 \
    ROW("ERROR_FILE_CORRUPT", 1392u,                                                                         \
        "a file is damaged",                                                                                 \
        "get the file anew and repeat")                                                                      \
    ROW("ERROR_NO_SYSTEM_RESOURCES", 1450u,                                                                  \
        "the system has run out of resources",                                                               \
        "close other programs and repeat")                                                                   \
    ROW("ERROR_COMMITMENT_LIMIT", 1455u,                                                                     \
        "there is not enough memory",                                                                        \
        "close other programs and repeat")                                                                   \
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
    ROW("ERROR_UNKNOWN_PORT", 1796u,                                                                         \
        "the spooler does not know the port, or has no Standard TCP/IP port monitor",                        \
        "check the port's name, or install the Standard TCP/IP port monitor of the system")                  \
    ROW("ERROR_INVALID_PRINTER_NAME", 1801u,                                                                 \
        "there is no such printer, or its driver is not one of the product's",                               \
        "compare the name with the list of installed printers")                                              \
    ROW("ERROR_PRINTER_DELETED", 1905u,                                                                      \
        "the printer has been deleted",                                                                      \
        "select another printer, or install this one again")                                                 \
    ROW("ERROR_DEVICE_NOT_AVAILABLE", 4319u,                                                                 \
        "the printer cannot be reached",                                                                     \
        "check that it is switched on and that its cable or network connection works")
// clang-format on

/// The response numbers, with which the printer and its language monitor open a reply. The first row that has
/// a number counts; there is one for each.
/// `ROW`: a macro of six arguments: first, last, error, name, text, advice. It is for the numbers from first
/// to last, and error the last-error value that they stand for, 0 for the good ones.
// clang-format off
#define KESTREL_SDK_RESPONSES(ROW)                                                                           \
    ROW(0u, 0u, 0u, "RESPONSE_DONE",                                                                         \
        "the printer has done what was asked",                                                               \
        "nothing to do")                                                                                     \
    ROW(2u, 2u, 0u, "RESPONSE_LOCKED",                                                                       \
        "the printer is locked for the one who asked",                                                       \
        "unlock it when the work is done")                                                                   \
    ROW(3u, 3u, 0u, "RESPONSE_UNLOCKED",                                                                     \
        "the printer is unlocked",                                                                           \
        "nothing to do")                                                                                     \
    ROW(95u, 95u, 0u, "RESPONSE_MAINTENANCE_REFUSED",                                                        \
        "the printer did not carry out the maintenance action",                                              \
        "look at its display, put right what it asks for, then repeat")                                      \
    ROW(96u, 96u, 0u, "RESPONSE_MAINTENANCE_DONE",                                                           \
        "the printer has carried out the maintenance action",                                                \
        "nothing to do")                                                                                     \
    ROW(100u, 100u, 0u, "RESPONSE_NOT_COMPLIED",                                                             \
        "the language monitor does not do what was asked",                                                   \
        "check that the printer supports it and is ready, then repeat")                                      \
    ROW(101u, 101u, 0u, "RESPONSE_COMPLIED",                                                                 \
        "the language monitor has done what was asked",                                                      \
        "nothing to do")                                                                                     \
    ROW(1u, 1000u, 0u, "RESPONSE_ACCEPTED",                                                                  \
        "the printer accepted the request",                                                                  \
        "nothing to do, unless the function that was called wants another number")                           \
    ROW(4000u, 4199u, 0u, "RESPONSE_ACCEPTED_STATE",                                                         \
        "the printer accepted the request",                                                                  \
        "nothing to do, unless the function that was called wants another number")                           \
    ROW(100000u, 100000u, 0u, "RESPONSE_NONE",                                                               \
        "no reply has been read yet, or an upgrade was accepted",                                            \
        "send a request first")                                                                              \
    ROW(1999u, 1999u, 170u, "RESPONSE_BUSY",                                                                 \
        "the printer is busy, or another program has locked it",                                             \
        "wait until it has finished, or let the other program unlock it, then repeat")                       \
    ROW(3400u, 3400u, 22u, "RESPONSE_BAD_COMMAND",                                                           \
        "the printer does not know this command",                                                            \
        "use a request that this printer model supports")                                                    \
    ROW(3450u, 3450u, 23u, "RESPONSE_BAD_DATA",                                                              \
        "the printer found an error in the data",                                                            \
        "check the value that was sent against those that the printer accepts")                              \
    ROW(100001u, 100001u, 31u, "RESPONSE_NO_OBJECT",                                                         \
        "the thread's object cannot be made",                                                                \
        "look at the last-error value for the reason")                                                       \
    ROW(100003u, 100003u, 4319u, "RESPONSE_NOT_REACHED",                                                     \
        "the language monitor does not reach the printer",                                                   \
        "check that it is switched on and that its cable or network connection works")                       \
    ROW(100004u, 100004u, 1460u, "RESPONSE_TIMEOUT",                                                         \
        "the printer did not answer the language monitor in time",                                           \
        "check that the printer is ready, then repeat with more time")                                       \
    ROW(100007u, 100007u, 4319u, "RESPONSE_CONNECTION_FAILED",                                               \
        "the connection to the printer cannot be made",                                                      \
        "check that it is switched on and that its cable or network connection works")                       \
    ROW(100008u, 100008u, 4319u, "RESPONSE_CONNECTION_LOST",                                                 \
        "the connection to the printer is gone",                                                             \
        "check its cable or network connection, then repeat")                                                \
    ROW(100009u, 100009u, SDK_ERROR_NO_REPLY, "RESPONSE_NO_REPLY",                                           \
        "the printer sent no reply to the language monitor",                                                 \
        "check that the printer is switched on and connected, then repeat with more time")                   \
    ROW(100103u, 100103u, 1460u, "RESPONSE_SEND_TIMEOUT",                                                    \
        "the time for handing the request to the printer ran out",                                           \
        "check that the printer is ready, then repeat with more time")                                       \
    ROW(100104u, 100104u, 1460u, "RESPONSE_READ_TIMEOUT",                                                    \
        "the time for reading the printer's reply ran out",                                                  \
        "check that the printer is ready, then repeat with more time")                                       \
    ROW(100113u, 100113u, 2u, "RESPONSE_FILE_NOT_FOUND",                                                     \
        "the language monitor does not find the file",                                                       \
        "check the name of the file, which must be reachable for the print spooler")                         \
    ROW(100114u, 100114u, 1392u, "RESPONSE_FILE_CORRUPT",                                                    \
        "the file is damaged or not for this printer",                                                       \
        "get the file anew, for this printer model, and repeat")                                             \
    ROW(1001u, 0xFFFFFFFFu, 31u, "RESPONSE_FAILED",                                                          \
        "the printer or the language monitor refused the request",                                           \
        "look at the text of the reply and at the printer's display")
// clang-format on
