// Preloaded into a 32-bit Wine that runs in QEMU's user mode, on a machine that cannot start 32-bit programs
// itself. It settles two differences between that emulator (7.2) and a kernel:
//   - The upper half of the address space cannot be mapped. Wine reserves it piece by piece at every start,
//   which
//     takes most of a minute of failing calls; and QEMU then hands out the page that Windows keeps its tick
//     in.
//   - A page fault arrives with the trap number -1 instead of 14. Wine takes it for an illegal instruction.
// No C library of that architecture is needed to build it.
enum {
    kNoSuchMemory = 17,  // EEXIST, as for MAP_FIXED_NOREPLACE
    kInvalid = 22,       // EINVAL
    kMapPrivate = 0x02,
    kMapFixed = 0x10,
    kMapAnonymous = 0x20,
    kMapNoReserve = 0x4000,
    kMapFixedNoReplace = 0x100000,
    kSystemCallMmap2 = 192,
    kSignalSegv = 11,
    kSigInfo = 4,  // SA_SIGINFO
    kPageBytes = 4096,
};
static const unsigned long kSharedUserData = 0x7ffe0000UL;
static const unsigned long kLimit = 0x7fff0000UL;

extern int* __errno_location(void);

static void* fail(int code) {
    *__errno_location() = code;
    return (void*)-1;
}

void* mmap64(void* address, unsigned long size, int protection, int flags, int file, long long offset) {
    const unsigned long place = (unsigned long)address;
    if (place >= kLimit && !(flags & kMapFixed)) return fail(kNoSuchMemory);
    if (offset % kPageBytes != 0) return fail(kInvalid);
    if (place >= kSharedUserData && place < kLimit) flags = (flags & ~kMapFixedNoReplace) | kMapFixed;

    const long call[] = {kSystemCallMmap2,           (long)place, (long)size, protection, flags, file,
                         (long)(offset / kPageBytes)};
    long result;
    __asm__ volatile(
        "push %%ebp\n push %%ebx\n"
        "mov 4(%%eax), %%ebx\n mov 8(%%eax), %%ecx\n mov 12(%%eax), %%edx\n"
        "mov 16(%%eax), %%esi\n mov 20(%%eax), %%edi\n mov 24(%%eax), %%ebp\n mov (%%eax), %%eax\n"
        "int $0x80\n"
        "pop %%ebx\n pop %%ebp"
        : "=a"(result)
        : "a"(call)
        : "memory", "ecx", "edx", "esi", "edi");
    return result < 0 && result > -kPageBytes ? fail((int)-result) : (void*)result;
}

void* mmap(void* address, unsigned long size, int protection, int flags, int file, long offset) {
    return mmap64(address, size, protection, flags, file, (unsigned long)offset);
}

__attribute__((constructor)) static void keep_shared_user_data(void) {
    mmap64((void*)kSharedUserData, kLimit - kSharedUserData, 0, kMapPrivate | kMapAnonymous | kMapNoReserve,
           -1, 0);
}

struct action {
    void (*handler)(int, int*, char*);
    unsigned long mask[32];
    int flags;
    void (*restorer)(void);
};
extern int __sigaction(int, const struct action*, struct action*);

static void (*page_fault_handler)(int, int*, char*);

static void with_trap_number(int signal, int* info, char* context) {
    enum {
        kRegisters = 20,
        kTrap = 12,
        kCode = 2,
        kNotMapped = 1,
        kNotAllowed = 2,
        kPageFault = 14,
        kProtection = 13
    };
    long* const registers = (long*)(context + kRegisters);
    if (registers[kTrap] == -1)
        registers[kTrap] = info[kCode] == kNotMapped || info[kCode] == kNotAllowed ? kPageFault : kProtection;
    page_fault_handler(signal, info, context);
}

int sigaction(int signal, const struct action* wanted, struct action* old) {
    if (signal != kSignalSegv || !wanted || !(wanted->flags & kSigInfo))
        return __sigaction(signal, wanted, old);
    struct action own = *wanted;
    page_fault_handler = wanted->handler;
    own.handler = with_trap_number;
    return __sigaction(signal, &own, old);
}
