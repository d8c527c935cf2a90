// A library to preload: the Nth call of a group that a program makes after main began fails, once
// or from then on, is done by half, or ends the program by SIGKILL.
//
// System calls are caught at the border of the kernel: a seccomp filter turns each of them into a
// SIGSYS, whose handler makes the call, or not, in the program's place. So nothing slips by,
// neither what the C library does within itself (its streams, its own folders) nor what other
// libraries do. Allocations and new threads are caught by their symbols, in front of a sanitizer's
// own, too.
//
// What to do stands in the environment, what happened in the file FAULT_LOG (struct Log):
//   FAULT_GROUP   open, read, write, look, name, keep, map, net, thread, alloc, or file: the first
//                 seven as one count
//   FAULT_AT      which call of the group, from 1; 0 counts only
//   FAULT_DO      a number: fail with that errno; "short": half of the bytes; "kill"; "stacks":
//   note
//                 for each call of the group the stack that it comes from (0: see the last lines)
//   FAULT_ON      set: all later calls of the group fail, too
//   FAULT_ASIDE   folders and files by ":"; calls on what lies below them are counted apart
//   FAULT_OF      "aside": those alone are counted; else all others. An allocation is of both
//   FAULT_NAMED   set: as on a file system that knows no files without a name
// Not counted: calls of a sanitizer and messages (descriptor 2). Counted, but never failed, as the
// log tells: memory asked for while Fontconfig is at work, which waits for ever on its own lock
// when it gets none, and within FreeType's TT_New_Context (2.12), whose caller then reads at null.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <link.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <ucontext.h>
#include <unistd.h>

#if !defined(__x86_64__) || !defined(__linux__)
#error "the registers of a system call are those of x86-64 Linux"
#endif

enum Group { kOpen, kRead, kWrite, kLook, kName, kKeep, kMap, kNet, kThread, kAlloc, kGroups };
static const char* const kGroupNames[kGroups] = {"open", "read", "write", "look",   "name",
                                                 "keep", "map",  "net",   "thread", "alloc"};
// Of several groups counted as one.
static const unsigned kFileGroups = (1u << kMap) * 2 - 1;

// Where the path of a call stands among its arguments: a name, a descriptor, or a folder's
// descriptor with a name.
enum Target { kNone, kPath, kDescriptor, kFolderAndPath };

struct Call {
  int number;
  enum Group group;
  enum Target target;
  const char* name;
};

#define CALL(name, group, target) \
  { SYS_##name, group, target, #name }
static const struct Call kCalls[] = {
    CALL(open, kOpen, kPath),
    CALL(openat, kOpen, kFolderAndPath),
    CALL(creat, kOpen, kPath),
    CALL(read, kRead, kDescriptor),
    CALL(pread64, kRead, kDescriptor),
    CALL(readv, kRead, kDescriptor),
    CALL(write, kWrite, kDescriptor),
    CALL(pwrite64, kWrite, kDescriptor),
    CALL(writev, kWrite, kDescriptor),
    CALL(copy_file_range, kWrite, kDescriptor),
    CALL(sendfile, kWrite, kDescriptor),
    CALL(stat, kLook, kPath),
    CALL(lstat, kLook, kPath),
    CALL(fstat, kLook, kDescriptor),
    CALL(newfstatat, kLook, kFolderAndPath),
    CALL(statx, kLook, kFolderAndPath),
    CALL(access, kLook, kPath),
    CALL(faccessat, kLook, kFolderAndPath),
    CALL(faccessat2, kLook, kFolderAndPath),
    CALL(readlink, kLook, kPath),
    CALL(readlinkat, kLook, kFolderAndPath),
    CALL(getdents64, kLook, kDescriptor),
    CALL(statfs, kLook, kPath),
    CALL(fstatfs, kLook, kDescriptor),
    CALL(lseek, kLook, kDescriptor),
    CALL(mkdir, kName, kPath),
    CALL(mkdirat, kName, kFolderAndPath),
    CALL(rename, kName, kPath),
    CALL(renameat, kName, kFolderAndPath),
    CALL(renameat2, kName, kFolderAndPath),
    CALL(link, kName, kPath),
    CALL(linkat, kName, kFolderAndPath),
    CALL(unlink, kName, kPath),
    CALL(unlinkat, kName, kFolderAndPath),
    CALL(rmdir, kName, kPath),
    CALL(symlink, kName, kPath),
    CALL(chmod, kName, kPath),
    CALL(fchmod, kName, kDescriptor),
    CALL(fchmodat, kName, kFolderAndPath),
    CALL(fchown, kName, kDescriptor),
    CALL(utimensat, kName, kFolderAndPath),
    CALL(ftruncate, kKeep, kDescriptor),
    CALL(fsync, kKeep, kDescriptor),
    CALL(fdatasync, kKeep, kDescriptor),
    CALL(close, kKeep, kDescriptor),
    CALL(fcntl, kKeep, kDescriptor),
    CALL(flock, kKeep, kDescriptor),
    CALL(mmap, kMap, kNone),
    CALL(socket, kNet, kNone),
    CALL(connect, kNet, kNone),
    CALL(sendto, kNet, kNone),
    CALL(sendmsg, kNet, kNone),
    CALL(recvfrom, kNet, kNone),
    CALL(recvmsg, kNet, kNone),
    CALL(poll, kNet, kNone),
    CALL(getsockopt, kNet, kNone),
    CALL(getsockname, kNet, kNone),
};
enum { kCallCount = sizeof kCalls / sizeof kCalls[0], kStacks = 1 << 20, kDescriptors = 1024 };

// Shared with whoever reads the file, so that it holds what happened even after a kill.
struct Log {
  _Atomic uint64_t counted[2][kGroups];  // all calls, those aside second
  _Atomic uint64_t number;               // those of the wanted group
  _Atomic uint64_t hit;                  // that failed
  _Atomic uint64_t kept;                 // that were due and were let go
  char what[32];                         // the first that failed
  char path[480];
  _Atomic uint64_t stacks[kStacks];  // of each call of the group, for "stacks"
};

static struct Log* log_file;
static unsigned wanted_groups;
static uint64_t wanted_at;
static int wanted_error;
static bool does_short, does_kill, notes_stacks, goes_on, of_aside, without_unnamed;
static const char* aside;
static char descriptor_aside[kDescriptors];
// Libraries whose calls are not like others.
enum Library { kAddressSanitizer, kUndefinedSanitizer, kFontconfig, kFreeType, kLibraries };
static const char* const kLibraryNames[kLibraries] = {"libasan", "libubsan", "libfontconfig",
                                                      "libfreetype"};
static struct { uintptr_t begin, end; } code_of[kLibraries];

static bool is_in(uintptr_t address, enum Library library) {
  return address >= code_of[library].begin && address < code_of[library].end;
}

// The one system call that the filter lets through: the address behind it is known to it.
long faults_call(long number, long a, long b, long c, long d, long e, long f);
extern const char faults_call_end[];
__asm__(
    ".text\n.globl faults_call\n.type faults_call, @function\nfaults_call:\n"
    "mov %rdi, %rax\nmov %rsi, %rdi\nmov %rdx, %rsi\nmov %rcx, %rdx\nmov %r8, %r10\n"
    "mov %r9, %r8\nmov 8(%rsp), %r9\nsyscall\n"
    ".globl faults_call_end\nfaults_call_end:\nret\n.size faults_call, .-faults_call\n");

static bool starts_aside(const char* path) {
  for (const char* from = aside; from && *from;) {
    const char* end = strchrnul(from, ':');
    const size_t length = (size_t)(end - from);
    if (strncmp(path, from, length) == 0 && (path[length] == '/' || !path[length])) return true;
    from = *end ? end + 1 : end;
  }
  return false;
}

static const char* path_of(const struct Call* call, const long* args) {
  if (call->target == kPath) return (const char*)args[0];
  return call->target == kFolderAndPath ? (const char*)args[1] : NULL;
}

static bool is_aside(const struct Call* call, const long* args) {
  const long descriptor = args[0];
  const char* const path = path_of(call, args);
  if (path && *path && (*path == '/' || call->target == kPath || (int)descriptor == AT_FDCWD)) {
    return starts_aside(path);
  }
  const long of = call->number == SYS_mmap ? args[4] : descriptor;
  const bool has_descriptor = call->target != kNone || call->number == SYS_mmap;
  return has_descriptor && of >= 0 && of < kDescriptors && descriptor_aside[of];
}

// The path in the log, for descriptors as the kernel knows it.
static void note(const struct Call* call, const long* args) {
  strcpy(log_file->what, call->name);
  const char* const path = path_of(call, args);
  if (path && *path) {
    strncpy(log_file->path, path, sizeof log_file->path - 1);
  } else if (call->target != kNone) {
    char self[40] = "/proc/self/fd/", digits[12];
    size_t length = strlen(self);
    int count = 0;
    for (long rest = args[0]; rest > 0 || count == 0; rest /= 10) {
      digits[count++] = (char)('0' + rest % 10);
    }
    while (count > 0) self[length++] = digits[--count];
    faults_call(SYS_readlink, (long)self, (long)log_file->path, sizeof log_file->path - 1, 0, 0, 0);
  }
}

static uint64_t stack_hash(void** frames, int count) {
  uint64_t hash = 14695981039346656037u;
  for (int i = 0; i < count; ++i) hash = (hash ^ (uintptr_t)frames[i]) * 1099511628211u;
  return hash;
}

static bool library_would_fail(void) {
  void* frames[64];
  const int saved = errno;
  const int count = backtrace(frames, 64);
  errno = saved;
  for (int i = 0; i < count; ++i) {
    const uintptr_t address = (uintptr_t)frames[i];
    if (is_in(address, kFontconfig)) return true;
    Dl_info symbol;
    if (is_in(address, kFreeType) && dladdr(frames[i], &symbol) && symbol.dli_sname &&
        strcmp(symbol.dli_sname, "TT_New_Context") == 0) {
      return true;
    }
  }
  return false;
}

// Whether the call that is being made is to fail. Counts it.
static bool is_due(enum Group group, bool is_of_aside) {
  if (!log_file) return false;
  atomic_fetch_add(&log_file->counted[is_of_aside][group], 1);
  if (!(wanted_groups & 1u << group) || is_of_aside != of_aside) return false;
  const uint64_t number = atomic_fetch_add(&log_file->number, 1) + 1;
  if (notes_stacks && number <= kStacks) {
    void* frames[32];
    const int saved = errno;
    log_file->stacks[number - 1] = stack_hash(frames, backtrace(frames, 32));
    if (group == kAlloc && library_would_fail()) log_file->stacks[number - 1] = 0;
    errno = saved;
  }
  return wanted_at && (number == wanted_at || (goes_on && number > wanted_at));
}

// Whether a call of the group that is due does not fail after all.
static bool is_let_go(enum Group group) {
  if ((group != kAlloc && group != kMap) || !library_would_fail()) return false;
  atomic_fetch_add(&log_file->kept, 1);
  return true;
}

static void kill_now(void) {
  atomic_fetch_add(&log_file->hit, 1);
  faults_call(SYS_kill, faults_call(SYS_getpid, 0, 0, 0, 0, 0, 0), SIGKILL, 0, 0, 0, 0);
}

// Half of what is asked for.
static long half_done(const struct Call* call, const long* args) {
  struct iovec piece;
  switch (call->number) {
    case SYS_read:
    case SYS_pread64:
    case SYS_write:
    case SYS_pwrite64:
    case SYS_sendto:
    case SYS_recvfrom:
      return faults_call(call->number, args[0], args[1], (args[2] + 1) / 2, args[3], args[4],
                         args[5]);
    case SYS_readv:
    case SYS_writev:
      piece = *(const struct iovec*)args[1];
      piece.iov_len = (piece.iov_len + 1) / 2;
      return faults_call(call->number, args[0], (long)&piece, 1, 0, 0, 0);
    default:
      return faults_call(call->number, args[0], args[1], args[2], args[3], args[4], args[5]);
  }
}

static long answer(const struct Call* call, const long* args) {
  const bool message = call->target == kDescriptor && args[0] == STDERR_FILENO;
  if (!message && is_due(call->group, is_aside(call, args)) && !is_let_go(call->group)) {
    if (log_file->what[0] == 0) note(call, args);
    if (does_kill) kill_now();
    atomic_fetch_add(&log_file->hit, 1);
    if (does_short) return half_done(call, args);
    // A descriptor is gone even when its closing failed.
    if (call->number == SYS_close) faults_call(SYS_close, args[0], 0, 0, 0, 0, 0);
    return -wanted_error;
  }
  if (without_unnamed && call->number == SYS_openat && (args[2] & O_TMPFILE) == O_TMPFILE) {
    return -EOPNOTSUPP;
  }
  const long done = faults_call(call->number, args[0], args[1], args[2], args[3], args[4], args[5]);
  if (call->group == kOpen && done >= 0 && done < kDescriptors) {
    descriptor_aside[done] = is_aside(call, args);
  }
  return done;
}

// As the kernel changes the set of signals held back; this one's own never belongs to it.
static long change_mask(ucontext_t* context, const long* args) {
  const uint64_t own = 1ull << (SIGSYS - 1);
  uint64_t* const mask = (uint64_t*)&context->uc_sigmask;
  const uint64_t before = *mask;
  if (args[1]) {
    uint64_t set;
    memcpy(&set, (const void*)args[1], sizeof set);
    set &= ~own;
    if (args[0] == SIG_BLOCK) *mask |= set;
    if (args[0] == SIG_UNBLOCK) *mask &= ~set;
    if (args[0] == SIG_SETMASK) *mask = set;
  }
  if (args[2]) memcpy((void*)args[2], &before, sizeof before);
  return 0;
}

static void on_system_call(int signal, siginfo_t* info, void* data) {
  (void)signal;
  const int saved = errno;
  ucontext_t* const context = data;
  greg_t* const registers = context->uc_mcontext.gregs;
  const long args[6] = {registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                        registers[REG_R10], registers[REG_R8],  registers[REG_R9]};
  const uintptr_t from = (uintptr_t)registers[REG_RIP];
  const int number = info->si_syscall;
  if (number == SYS_rt_sigprocmask) {
    registers[REG_RAX] = change_mask(context, args);
  } else if (is_in(from, kAddressSanitizer) || is_in(from, kUndefinedSanitizer)) {
    registers[REG_RAX] = faults_call(number, args[0], args[1], args[2], args[3], args[4], args[5]);
  } else {
    const struct Call* call = kCalls;
    while (call->number != number) ++call;
    registers[REG_RAX] = answer(call, args);
  }
  errno = saved;
}

static int find_libraries(struct dl_phdr_info* info, size_t size, void* data) {
  (void)size, (void)data;
  for (int library = 0; library < kLibraries; ++library) {
    if (!strstr(info->dlpi_name, kLibraryNames[library])) continue;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
      const ElfW(Phdr)* const part = &info->dlpi_phdr[i];
      if (part->p_type != PT_LOAD || !(part->p_flags & PF_X)) continue;
      code_of[library].begin = info->dlpi_addr + part->p_vaddr;
      code_of[library].end = code_of[library].begin + part->p_memsz;
    }
  }
  return 0;
}

static void must(bool done) {
  if (!done) abort();
}

static void install_filter(void) {
  struct sock_filter filter[2 * kCallCount + 16];
  unsigned short length = 0;
#define ADD(...) filter[length++] = (struct sock_filter)__VA_ARGS__
  const uint64_t own = (uintptr_t)faults_call_end;
  const uint32_t address = offsetof(struct seccomp_data, instruction_pointer);
  ADD(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, arch)));
  ADD(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 1, 0));
  ADD(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  ADD(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, address));
  ADD(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, (uint32_t)own, 0, 3));
  ADD(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, address + 4));
  ADD(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, (uint32_t)(own >> 32), 0, 1));
  ADD(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  ADD(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, nr)));
  for (int i = 0; i <= kCallCount; ++i) {
    const int number = i < kCallCount ? kCalls[i].number : SYS_rt_sigprocmask;
    ADD(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, (uint32_t)number, 0, 1));
    ADD(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP));
  }
  ADD(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
#undef ADD
  const struct sock_fprog program = {length, filter};
  must(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0);
  must(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0);
}

static void read_wishes(void) {
  const char *const group = getenv("FAULT_GROUP"), *const at = getenv("FAULT_AT");
  const char *const what = getenv("FAULT_DO"), *const of = getenv("FAULT_OF");
  for (int i = 0; group && i < kGroups; ++i) {
    if (strcmp(group, kGroupNames[i]) == 0) wanted_groups = 1u << i;
  }
  if (group && strcmp(group, "file") == 0) wanted_groups = kFileGroups;
  must(wanted_groups != 0);
  wanted_at = at ? strtoull(at, NULL, 10) : 0;
  wanted_error = what ? atoi(what) : 0;
  does_short = what && strcmp(what, "short") == 0;
  does_kill = what && strcmp(what, "kill") == 0;
  notes_stacks = what && strcmp(what, "stacks") == 0;
  goes_on = getenv("FAULT_ON") != NULL;
  of_aside = of && strcmp(of, "aside") == 0;
  without_unnamed = getenv("FAULT_NAMED") != NULL;
  aside = getenv("FAULT_ASIDE");
}

static void begin(void) {
  const char* const name = getenv("FAULT_LOG");
  if (!name) return;
  const int file = open(name, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  must(file >= 0 && ftruncate(file, sizeof(struct Log)) == 0);
  struct Log* const shared =
      mmap(NULL, sizeof(struct Log), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  must(shared != MAP_FAILED);
  close(file);
  read_wishes();
  dl_iterate_phdr(find_libraries, NULL);
  void* frames[4];
  backtrace(frames, 4);  // loads what it needs
  struct sigaction action = {.sa_sigaction = on_system_call, .sa_flags = SA_SIGINFO | SA_NODEFER};
  must(sigaction(SIGSYS, &action, NULL) == 0);
  log_file = shared;
  install_filter();
}

// ---- main ------------------------------------------------------------------------------------

typedef int Main(int, char**, char**);
static Main* real_main;

static int counted_main(int argc, char** argv, char** environment) {
  begin();
  return real_main(argc, argv, environment);
}

int __libc_start_main(Main* main, int argc, char** argv, void (*init)(void), void (*fini)(void),
                      void (*ld_fini)(void), void* stack_end) {
  typedef int Start(Main*, int, char**, void (*)(void), void (*)(void), void (*)(void), void*);
  Start* const start = (Start*)dlsym(RTLD_NEXT, "__libc_start_main");
  real_main = main;
  return start(counted_main, argc, argv, init, fini, ld_fini, stack_end);
}

// ---- threads and allocations -----------------------------------------------------------------

static bool symbol_fails(enum Group group, const char* name) {
  if (!is_due(group, of_aside) || is_let_go(group)) return false;
  if (log_file->what[0] == 0) strcpy(log_file->what, name);
  atomic_fetch_add(&log_file->hit, 1);
  return true;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* data) {
  typedef int Create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  if (symbol_fails(kThread, "pthread_create")) return EAGAIN;
  return ((Create*)dlsym(RTLD_NEXT, "pthread_create"))(thread, attributes, run, data);
}

// What finding the next allocator may itself allocate; never given back.
static char early[1 << 16];
static size_t early_used;

static void* early_memory(size_t size) {
  void* const memory = early + early_used;
  early_used += (size + 15) / 16 * 16;
  must(early_used <= sizeof early);
  return memory;
}

static __thread bool within;  // an allocation that another one makes is not counted

static bool allocation_fails(const char* name) {
  if (!log_file || within) return false;
  within = true;
  const bool fails = symbol_fails(kAlloc, name);
  within = false;
  if (fails) errno = ENOMEM;
  return fails;
}

static void* next(const char* name, void** known) {
  static __thread bool looking;
  if (!*known && !looking) {
    looking = true;
    *known = dlsym(RTLD_NEXT, name);
    looking = false;
  }
  return *known;
}

// A function of the allocator: the next one of that name, when this one is not to fail.
#define ALLOCATOR(name, parameters, arguments, size)                        \
  void* name parameters {                                                   \
    static void* known;                                                     \
    if (allocation_fails(#name)) return NULL;                               \
    void*(*const real)parameters = (void*(*)parameters)next(#name, &known); \
    if (!real) return early_memory(size);                                   \
    const bool before = within;                                             \
    within = true;                                                          \
    void* const made = real arguments;                                      \
    within = before;                                                        \
    return made;                                                            \
  }

ALLOCATOR(malloc, (size_t size), (size), size)
ALLOCATOR(calloc, (size_t count, size_t size), (count, size), count* size)
ALLOCATOR(realloc, (void* memory, size_t size), (memory, size), size)
ALLOCATOR(aligned_alloc, (size_t alignment, size_t size), (alignment, size), size)
ALLOCATOR(memalign, (size_t alignment, size_t size), (alignment, size), size)

int posix_memalign(void** memory, size_t alignment, size_t size) {
  static void* known;
  if (allocation_fails("posix_memalign")) return ENOMEM;
  return ((int (*)(void**, size_t, size_t))next("posix_memalign", &known))(memory, alignment, size);
}

// A sanitizer's operator new does not come by malloc. This one fails as it should, by exception.
__attribute__((weak)) void _ZSt17__throw_bad_allocv(void);  // std::__throw_bad_alloc()
typedef void Handler(void);
__attribute__((weak)) Handler* _ZSt15get_new_handlerv(void);  // std::get_new_handler()

static void no_memory(void) {
  Handler* const handler = _ZSt15get_new_handlerv ? _ZSt15get_new_handlerv() : NULL;
  if (handler) handler();
  _ZSt17__throw_bad_allocv();
}

#define OPERATOR_NEW(name, parameters, arguments)                           \
  void* name parameters;                                                    \
  void* name parameters {                                                   \
    static void* known;                                                     \
    if (allocation_fails("operator new")) no_memory();                      \
    void*(*const real)parameters = (void*(*)parameters)next(#name, &known); \
    const bool before = within;                                             \
    within = true;                                                          \
    void* const made = real arguments;                                      \
    within = before;                                                        \
    return made;                                                            \
  }

OPERATOR_NEW(_Znwm, (size_t size), (size))
OPERATOR_NEW(_Znam, (size_t size), (size))
OPERATOR_NEW(_ZnwmSt11align_val_t, (size_t size, size_t alignment), (size, alignment))
OPERATOR_NEW(_ZnamSt11align_val_t, (size_t size, size_t alignment), (size, alignment))
