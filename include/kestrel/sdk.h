/* The Kestrel SDK: select one installed printer by name, then ask and change what it knows. Plain C11, also
   valid as C++. Link the import library, or load the library and find each function by its name.

   CAVEATS

   Errors. Most functions return 1 for success and 0 for failure. After a failure the calling thread's
   last-error value (GetLastError) holds a code of sdk_errors.h, or one that the system gave and that is
   passed on unchanged. After a success it is 0 unless the function says otherwise. GetLastBadResponse and
   GetLastResponseNum leave the last-error value alone, so they can be called before it is read.

   Threads. All functions may be called from any thread, but each thread works on an object of its own, made
   on its first call and destroyed when it ends. What one thread selects or locks means nothing to another.
   Two threads, or two programs, that use the same printer wait for each other; nothing else is shared. An
   object takes about 130 KB.

   Blocking. A function with a time-out blocks for up to twice that time: once for its turn and once for the
   reply. Watchdogs should allow 2 x time-out + 250 ms. A time-out is in milliseconds; 0xFFFFFFFF waits
   without limit. Nothing can be called from the system's load and unload notices (DllMain, constructors).

   Fork. On systems that have fork(), a child process must not use what its parent selected: select the
   printer anew in the child, on a new thread, or start another program.

   Unloading. The object of the unloading thread is destroyed; those of other living threads are not. Let the
   threads that used the library end first.

   Text. Names and values are zero-terminated UTF-16 (kestrel_char). The printer's own language is 8-bit text
   in the system's ANSI code page: characters outside it reach the printer as the code page's default
   character. SendCmd passes bytes as they are.

   Buffers. Every pointer must stay valid for the whole call; nothing is kept after it. Where a function takes
   no buffer size, its documentation names the size that the buffer must have. Texts that are too long are cut
   and always terminated. A null pointer is accepted only where that is said. */
#pragma once

#include "sdk_device.h"
#include "sdk_errors.h"
#include "sdk_host.h"
#include "sdk_settings.h"
#include "sdk_types.h"

/* ---- The library ---- */

/* The version of this interface: 10. Never fails and makes no object. */
KESTREL_API uint32_t GetSDKVersion(void);

/* ---- Printer selection ---- */

/* Selects the printer that all further calls of this thread reach.

   printerName  name of an installed local printer, of which the first 259 characters count; null or empty
                takes the last printer in the spooler's list whose driver belongs to the product

   The first selection that succeeds on a thread also wakes the printer's language monitor and pings the
   printer, which takes up to 2 s when it does not answer; a failed ping is no failure.

   After a failure the requests of this thread still reach the printer that was selected before, if any.
   After a success the last-error value has no meaning.

   Errors
     unchanged                       no product configuration for this library among the printer drivers, or
                                     the first attempt to read it failed
     0                               no name was given and no installed printer belongs to the product
     SDK_ERROR_NETWORK_PRINTER_NAME  the name begins with two backslashes
     212                             this thread holds the lock of a printer
     1801                            no such printer, or its driver is not one of the product's
     SDK_ERROR_BIDI_DISABLED         the printer has bidirectional communication disabled
     others                          from the spooler (1722: it is not running) or from opening the channel to
                                     the language monitor */
KESTREL_API kestrel_bool SelectPrinter(const kestrel_char* printerName);

/* ---- Raw access ---- */

/* Sends one request in the printer's command language and reads the reply.

   request          the bytes to send, no terminator needed; at most 65,791
   requestLength    how many
   replyBuffer      receives the first bytes of the reply, not terminated; null when it is not wanted
   replyBufferSize  size of replyBuffer in bytes; a reply has at most 65,791
   replyLength      receives the number of bytes written to replyBuffer, 0 when no reply was read or
                    replyBuffer is null; may be null
   timeoutMs        time allowed for the exchange in milliseconds

   Success means that a reply came and that its response number is a good one. A bad reply is delivered as
   well, and can be had from GetLastBadResponse until the next request.

   Errors
     87                          request is null although requestLength is not 0; nothing was sent
     SDK_ERROR_CHANNEL_NOT_OPEN  no printer is selected on this thread
     SDK_ERROR_PORT_LIST         the printer is attached to a list of ports
     SDK_ERROR_SEND_INCOMPLETE   the request was too long, or no language monitor took it in time
     1460                        the time was used up before the reply could be waited for, or the printer
                                 reported a time-out
     SDK_ERROR_NO_REPLY          no reply came in time
     2, 22, 23, 31, 170, 1392, 4319   the printer's own verdict, by the response number of its reply */
KESTREL_API kestrel_bool SendCmd(const void* request, uint32_t requestLength, void* replyBuffer,
                                 uint32_t replyBufferSize, uint32_t* replyLength, uint32_t timeoutMs);

/* ---- The session with the printer ---- */

/* Takes the printer for this thread: until Unlock, this thread can select no other printer and the requests
   of other programs may be refused as busy.

   timeoutMs  time allowed for the exchange in milliseconds

   Errors
     SDK_ERROR_BAD_REPLY         the reply has no response number
     SDK_ERROR_UNEXPECTED_REPLY  the lock was not granted; GetLastResponseNum has the answer
     170                         another program holds the lock
     others                      as of SendCmd */
KESTREL_API kestrel_bool Lock(uint32_t timeoutMs);

/* Gives the printer back. Until the printer confirms it, it is asked again once a second. Whatever the
   outcome, this thread may select another printer afterwards.

   timeoutMs  milliseconds within which a new attempt is begun; each attempt is allowed the same time again

   When an attempt fails on a thread that holds the lock, what the language monitor is doing is cancelled, and
   the last-error value is that of the cancelling: 0 when it succeeded.

   Errors
     SDK_ERROR_CHANNEL_NOT_OPEN  no printer is selected on this thread
     1460                        no confirmation in time
     others                      as of SendCmd */
KESTREL_API kestrel_bool Unlock(uint32_t timeoutMs);

/* Cancels what the language monitor is doing for this printer, within 5 s. Success means that it answered.
   Errors are those of SendCmd. */
KESTREL_API kestrel_bool Cancel(void);

/* Allows the language monitor to answer requests from what it knows already (enable not 0), or makes it ask
   the printer each time; within 5 s. When it answers but does not comply, the result is 0 with the last-error
   value 0, and GetLastResponseNum has the answer. Other errors are those of SendCmd. */
KESTREL_API kestrel_bool EnableCache(kestrel_bool enable);

/* Reads the printer's status, after starting the status monitor if it does not run. A status that is not
   known yet is asked for again every 2 s, eight times in all, and in the end delivered as it is: the call
   takes 14 s then, and up to a minute when the printer does not answer.

   record  is cleared first
   size    its size in bytes, at least 1,052

   Errors
     87                   record is null or too small; nothing was sent
     SDK_ERROR_BAD_REPLY  the reply holds no status
     others               as of SendCmd, from the start of the status monitor (1722: the spooler is not
                          running), or SDK_ERROR_SEND_INCOMPLETE or SDK_ERROR_NO_REPLY because the
                          status monitor does not answer */
KESTREL_API kestrel_bool GetStatus(DeviceStatusRecord* record, uint32_t size);

/* ---- Diagnosis; both leave the last-error value alone ---- */

/* The text of the last reply that this thread's requests judged bad or could not understand; empty after a
   request that succeeded.

   buffer    receives the text, cut to capacity - 1 characters, and a terminator
   capacity  size of buffer in characters, not bytes; with 0 nothing is written */
KESTREL_API void GetLastBadResponse(kestrel_char* buffer, uint32_t capacity);

/* The response number of the last reply that this thread read: 0 when it had none, 100000 before any reply,
   100001 when the thread's object cannot be made (the last-error value then tells why). */
KESTREL_API uint32_t GetLastResponseNum(void);
