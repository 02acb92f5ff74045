// LD_PRELOAD library that makes one file or socket call inside main fail. FAULT is the letter of a
// mode and the number of the call among those that the mode applies to:
//   f  the call fails; applies to all but writes to the console
//   w  the call fails; applies to writes to the console
//   s  the call, and every seventh one after it, transfers a single byte
//   i  a signal interrupts the call, and every seventh one after it
//   k  the process is killed instead of the call
//   m  the call is an allocation, and fails
// The number 0 injects no fault. FAULT_REPORT is a file to which the name of the failing call is
// appended, and after main the number of calls that the mode applied to.
#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

#include <atomic>
#include <cerrno>

namespace {

/// Arguments and results pass through as machine words of any type.
using Word = long;
using Words = Word (&)[7];
using Function = Word(Word, Word, Word, Word, Word, Word, Word);
using Main = int(int, char**, char**);
using Start = int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*);

/// The properties of a call. moves: its third argument is a number of bytes. takesPlace: it has its
/// effect even when it fails. waits: a signal can interrupt it.
enum Kind : unsigned { plain = 0, moves = 1, takesPlace = 2, waits = 4 };

char mode = 0;
long chosen = 0;
int report = -1;
Main* theMain = nullptr;
std::atomic<bool> inMain = false;
std::atomic<long> calls = 0;

template <class Type>
Type* original(char const* name) {
    return reinterpret_cast<Type*>(dlsym(RTLD_NEXT, name));
}

bool isDue(long call) {
    return mode == 's' || mode == 'i' ? chosen > 0 && (call - chosen) % 7 == 0 : call == chosen;
}

/// Whether the mode applies to the call.
bool counts(char const* name, unsigned kind, Words words) {
    bool const console = name[0] == 'w' && words[0] <= 2;
    return mode == 's'   ? (kind & moves) != 0 && words[2] > 1
           : mode == 'i' ? (kind & waits) != 0
                         : mode == 'k' || (mode != 'm' && console == (mode == 'w'));
}

Word pass(char const* name, unsigned kind, Word failure, int error, Words words) {
    bool const due = inMain && counts(name, kind, words) && isDue(++calls);
    if (due) {
        dprintf(report, "%s(%ld)\n", name, words[0]);
        if (mode == 'k') {
            raise(SIGKILL);
        }
        words[2] = mode == 's' ? 1 : words[2];
    }
    bool const fails = due && mode != 's';
    Word const result = !fails || (kind & takesPlace) != 0
                            ? original<Function>(name)(words[0], words[1], words[2], words[3],
                                                       words[4], words[5], words[6])
                            : failure;
    if (fails) {
        errno = mode == 'i' ? EINTR : error;
    }
    return fails ? failure : result;
}

int faultyMain(int argc, char** argv, char** environment) {
    char const* const fault = getenv("FAULT");
    mode = fault[0];
    chosen = atol(fault + 1);
    report = open(getenv("FAULT_REPORT"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    inMain = true;
    int const result = theMain(argc, argv, environment);
    inMain = false;
    dprintf(report, "%ld\n", calls.load());
    return result;
}

}  // namespace

extern "C" int __libc_start_main(Main* main, int argc, char** argv, void (*init)(), void (*fini)(),
                                 void (*loader)(), void* stack) {
    theMain = main;
    return original<Start>("__libc_start_main")(&faultyMain, argc, argv, init, fini, loader, stack);
}

/// Counts in its own mode only: other calls allocate, and so may dlsym.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* malloc(size_t size) {
    bool const fails = mode == 'm' && inMain && isDue(++calls);
    errno = fails ? ENOMEM : errno;
    return fails ? nullptr : __libc_malloc(size);
}

// Other C++ names, because the system's headers declare these functions with their own types.
#define CALL(name, kind, failure, error)                                         \
    extern "C" Function faulty_##name __asm__(#name);                            \
    Word faulty_##name(Word a, Word b, Word c, Word d, Word e, Word f, Word g) { \
        Word words[] = {a, b, c, d, e, f, g};                                    \
        return pass(#name, kind, failure, error, words);                         \
    }

// An interrupted connect continues in the background.
CALL(connect, mode == 'i' ? takesPlace | waits : plain, -1, ECONNREFUSED)

// clang-format off
CALL(open64, waits, -1, EMFILE)               CALL(openat64, waits, -1, EMFILE)
CALL(mkostemp64, waits, -1, ENOSPC)           CALL(read, moves | waits, -1, EIO)
CALL(write, moves | waits, -1, ENOSPC)        CALL(close, takesPlace | waits, -1, EIO)
CALL(lseek64, plain, -1, EIO)                 CALL(stat64, plain, -1, ENOMEM)
CALL(fstat64, plain, -1, EIO)                 CALL(fstatat64, plain, -1, ENOMEM)
CALL(fchmod, plain, -1, EPERM)                CALL(realpath, plain, 0, ENOMEM)
CALL(renameat, plain, -1, EIO)                CALL(renameat2, plain, -1, EIO)
CALL(unlink, plain, -1, EIO)                  CALL(mkdir, plain, -1, ENOSPC)
CALL(mkdirat, plain, -1, ENOSPC)              CALL(socket, plain, -1, EMFILE)
CALL(bind, plain, -1, EADDRINUSE)             CALL(listen, plain, -1, EADDRINUSE)
CALL(accept4, waits, -1, EMFILE)              CALL(poll, waits, -1, ENOMEM)
CALL(send, moves | waits, -1, ECONNRESET)     CALL(recv, moves | waits, -1, ECONNRESET)
CALL(fcntl64, plain, -1, ENOMEM)              CALL(shutdown, plain, -1, ENOTCONN)
CALL(setsockopt, plain, -1, ENOBUFS)          CALL(getsockname, plain, -1, ENOBUFS)
CALL(pthread_create, plain, EAGAIN, EAGAIN)
CALL(getaddrinfo, plain, EAI_MEMORY, ENOMEM)  CALL(getnameinfo, plain, EAI_MEMORY, ENOMEM)
