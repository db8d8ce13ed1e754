// Named objects: one file each, mapped by their users, alive as long as one of them is.
//
// Liveness. Every process holds one open file description of the folder's lock file. For each object it uses
// it has a shared lock on the byte of that file whose offset is the object's inode number. The kernel drops
// the locks with the process, however it ends. Creation, opening and last close run under the folder lock
// (byte 0). Whoever then gets an object's byte exclusively knows that nobody lives there: the file was left
// by a killed process and is removed, or this was the last close.
//
// A process opens a name once and shares the mapping among its handles. The object's own descriptor is closed
// once it is mapped.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "winport/handles/kernel_object.h"
#include "winport/handles/object_memory.h"

namespace winport {

// Makes the process's one object of a name (or of no name) from its memory.
using MakeObject = KernelObject* (*)(ObjectMemory&& memory);

// Opens or creates the object and returns a handle to it; the last-error value is 183 when it existed and 0
// when this call made it. Null on failure:
//   3 or 206  the name is not valid or too long       6    the name belongs to an object of another kind
//   5         the file is not this account's alone    112  the folder is full
//   1392      the file is not an object of this layout
//   1460      the folder lock was not to be had (a process is stopped in the middle of a creation)
HANDLE CreateOrOpenObject(const ObjectRequest& request, MakeObject make, uint32_t access = 0);

// Called by an object when its last handle is closed: the name dies if no other process uses it.
void ForgetName(KernelObject* object, const ObjectMemory& memory);

// A number that no other thread of the home has or had, held by this thread until it gives it back or its
// process ends; 0 with the last-error value when the folder cannot be used.
uint32_t TakeOwnerToken();
void GiveBackOwnerToken(uint32_t token);
// False once the thread behind a token is gone. Costs a system call.
bool IsOwnerAlive(uint32_t token);

}  // namespace winport
