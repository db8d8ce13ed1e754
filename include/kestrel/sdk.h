// The Kestrel SDK: select one installed printer by name, then ask and change what it knows. Plain C11, also
// valid as C++. Link the import library, or load the library and find each function by its name.
//
// CAVEATS
//
// Errors. Most functions return 1 for success and 0 for failure. After a failure the calling thread's
// last-error value holds a code of sdk_errors.h, or another one of the system that is passed on unchanged; 0
// where that is said. After a success it is 0 unless the function says otherwise. Programs without
// <windows.h> read it by KestrelLastError of sdk_last_error.h, which is included on its own.
// GetLastBadResponse and GetLastResponseNum leave the last-error value alone, so they can be called before
// it is read. What stands under "Errors" of a function are codes, and names of the groups of codes that
// sdk_errors.h explains.
//
// Threads. All functions may be called from any thread, but each thread works on an object of its own, made
// on its first call and destroyed when it ends. What one thread selects or locks means nothing to another.
// Two threads, or two programs, that use the same printer wait for each other; nothing else is shared. An
// object takes about 130 KB of the heap. A call takes up to 140 KB of the calling thread's stack: give a
// thread 256 KB.
//
// Blocking. What stands under "Blocks" is the longest that a call can take, but for the system's own calls
// and for programs that are stopped by a debugger in the middle of an exchange. A time-out is in
// milliseconds; 0xFFFFFFFF waits without limit. One exchange with the printer blocks for up to twice its
// time-out T: once for its turn and once for the reply; watchdogs should allow 250 ms more. A first
// exchange, and one with another time-out than the one before, announces the time-out to the language
// monitor with an exchange of its own, within the same time. Nothing can be called from the system's load
// and unload notices (DllMain, constructors).
//
// Other programs. A thread that selects a printer anew, or ends, withdraws the request that lies unread in
// the channel that it leaves, even if it is another program's: that one's call then fails after its time-out
// with SDK_ERROR_NO_REPLY. So repeat a query once that failed so. Never repeat a change unseen, such as a
// setting, a maintenance action or an upgrade: it may have been carried out; ask the printer first.
//
// Fork. On systems that have fork(), a child process must not use what its parent selected: select the
// printer anew in the child, on a new thread, or start another program.
//
// Unloading. The object of the unloading thread is destroyed; those of other living threads are not. Let the
// threads that used the library end first.
//
// Text. Names and values are zero-terminated UTF-16 (kestrel_char). The printer's own language is 8-bit text
// in the system's ANSI code page: characters outside it reach the printer as the code page's default
// character. SendCmd passes bytes as they are.
//
// Buffers. Every pointer must stay valid for the whole call; nothing is kept after it. Where a function
// takes no buffer size, its documentation names the size that the buffer must have. Texts that are too long
// are cut and always terminated. A null pointer is accepted only where that is said; elsewhere it fails with
// 87 and nothing is sent.
#pragma once

#include "sdk_device.h"
#include "sdk_errors.h"
#include "sdk_host.h"
#include "sdk_settings.h"
#include "sdk_types.h"

// --- The library ---

/// The version of this interface: 10. Makes no object.
/// Errors: none
/// Blocks not at all.
KESTREL_API uint32_t GetSDKVersion(void);

// --- Printer selection ---

/// Selects the printer that all further calls of this thread reach.
///
/// `printerName`: an installed local printer, of which the first 259 characters count; null or empty takes
/// the last printer in the spooler's list whose driver belongs to the product.
///
/// A selection that succeeds wakes the printer's language monitor and pings the printer, until one ping of
/// this thread has been answered; a failed ping is no failure. After a success the last-error value has no
/// meaning.
///
/// After a failure the requests of this thread still reach the printer that was selected before, if any; only
/// when the new printer's channel could not be opened is nothing selected, because the old one is closed by
/// then. The status monitor, however, is told the name of the printer that was refused, or an empty one if
/// the spooler does not know it or was not asked: after a failure select a printer anew before anything of
/// sdk_host.h, GetStatus or UpgradeFW.
///
/// Errors
///   unchanged                       no product configuration for this library among the printer drivers, or
///                                   the first attempt to read it in this process failed
///   0                               no name was given and no installed printer belongs to the product
///   SDK_ERROR_NETWORK_PRINTER_NAME  the name begins with two backslashes
///   212                             this thread holds the lock of a printer
///   1801                            no such printer, or its driver is not one of the product's
///   SDK_ERROR_BIDI_DISABLED         the printer has bidirectional communication disabled
///   1722, 1727, 1905                the spooler is not running, or the printer was deleted meanwhile
///   206, 1610                       from opening the channel: the port's name is too long, or another
///                                   program has opened it in a smaller size
///   object, system
/// Blocks 2 s for the ping, and as long as the spooler takes, which waits for the language monitor to wake.
KESTREL_API kestrel_bool SelectPrinter(const kestrel_char* printerName);

// --- Raw access ---

/// Sends one request in the printer's command language and reads the reply.
///
/// `request`: the bytes to send, no terminator needed; null when there are none.
/// `requestLength`: how many, at most 65,791.
/// `replyBuffer`: receives the first bytes of the reply, not terminated; null when it is not wanted.
/// `replyBufferSize`: size of replyBuffer in bytes; a reply has at most 65,791.
/// `replyLength`: receives the number of bytes written to replyBuffer, 0 when no reply was read or
/// replyBuffer is null; may be null.
/// `timeoutMs`: T, the time allowed for the exchange.
///
/// Success means that a reply came and that its response number is a good one. A bad reply is delivered as
/// well, and can be had from GetLastBadResponse until the next request.
///
/// Errors
///   87        request is null although requestLength is not 0; nothing was sent
///   exchange  SDK_ERROR_SEND_INCOMPLETE also for a request that is too long
/// Blocks 2 T.
KESTREL_API kestrel_bool SendCmd(const void* request, uint32_t requestLength, void* replyBuffer,
                                 uint32_t replyBufferSize, uint32_t* replyLength, uint32_t timeoutMs);

// --- The session with the printer ---

/// Takes the printer for this thread: until Unlock, this thread can select no printer and the requests of
/// other programs may be refused as busy. A thread that ends does not give it back.
///
/// `timeoutMs`: T, the time allowed for the exchange.
///
/// Errors
///   170                         another program holds the lock
///   SDK_ERROR_BAD_REPLY         the reply has no response number
///   SDK_ERROR_UNEXPECTED_REPLY  the lock was not granted, and GetLastResponseNum has the answer; or no
///                               whole reply
///   query
/// Blocks 2 T.
KESTREL_API kestrel_bool Lock(uint32_t timeoutMs);

/// Gives the printer back. Until the printer confirms it, it is asked again once a second. Whatever the
/// outcome, this thread may select another printer afterwards.
///
/// `timeoutMs`: T, the time within which a new attempt is begun; each attempt is an exchange with the same
/// time-out.
///
/// When an attempt fails on a thread that holds the lock, what the language monitor is doing is cancelled,
/// and the last-error value is that of the cancelling: 0 when it succeeded.
///
/// Errors
///   0      the attempt failed and Cancel succeeded
///   1460   no confirmation in time
///   query  SDK_ERROR_UNEXPECTED_REPLY when a reply is not whole; one with another number is asked for again
/// Blocks 3 T and 1 s; 10 s more when the lock was held, for Cancel.
KESTREL_API kestrel_bool Unlock(uint32_t timeoutMs);

/// Cancels what the language monitor is doing for this printer. Success means that it answered with a good
/// reply, of which nothing else is examined.
/// Errors: query
/// Blocks 10 s.
KESTREL_API kestrel_bool Cancel(void);

/// Allows the language monitor to answer requests from what it knows already, or makes it ask the printer
/// each time.
///
/// `enable`: 0 makes it ask, anything else allows it.
///
/// Errors
///   0      it answers but does not comply; GetLastResponseNum has the answer
///   query
/// Blocks 10 s.
KESTREL_API kestrel_bool EnableCache(kestrel_bool enable);

/// Reads the printer's status, after starting the status monitor if it does not run. A status that is not
/// known yet is asked for again every 2 s, and a failed query at once, eight queries in all; one that is not
/// known by then is delivered as it is.
///
/// `record`: is cleared first; the bytes are the language monitor's.
/// `size`: its size in bytes, at least 1,052.
///
/// GetLastResponseNum is 100000 until a reply has been read.
///
/// Errors
///   87                   record is null or size too small; nothing was sent
///   SDK_ERROR_BAD_REPLY  the last reply holds no block of bytes
///   query                of the last of the eight queries
///   monitor, start       the status monitor does not run and could not be started, or does not answer; then
///                        the printer is not asked
/// Blocks 98 s: 4 s for what the status monitor is told, eight queries of 10 s, seven pauses of 2 s; 35 s
/// more when the status monitor has to be started. It is 40 s beside a language monitor that does not run.
KESTREL_API kestrel_bool GetStatus(DeviceStatusRecord* record, uint32_t size);

// --- Diagnosis ---

/// The text of the last reply that this thread's requests judged bad or could not understand; empty after a
/// request that succeeded, and when there is none. The last-error value stays as it was.
///
/// `buffer`: receives the text, cut to capacity - 1 characters, and a terminator; may be null.
/// `capacity`: size of buffer in characters, not bytes; with 0 nothing is written.
///
/// Errors: none
/// Blocks not at all.
KESTREL_API void GetLastBadResponse(kestrel_char* buffer, uint32_t capacity);

/// The response number of the last reply that this thread read: 0 when it had none, 100000 before any reply
/// and since a GetStatus that has read none, 100001 when the thread's object cannot be made, which the
/// last-error value then explains. Else that stays as it was.
/// Errors: object
/// Blocks not at all.
KESTREL_API uint32_t GetLastResponseNum(void);
