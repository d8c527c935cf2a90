/* Loads kerno.dll by its name, draws in many threads, lets go of the library while they live and
 * writes two files: loaded.exe KERNO_DLL FOLDER (names as the system has them). */
#include <kerno.h>
#include <stdio.h>
#include <string.h>
#include <windows.h>

enum { kThreads = 8, kSigns = 6 };

static __typeof__(&kerno_new) new_sign;
static __typeof__(&kerno_free) free_sign;
static __typeof__(&kerno_set_text) set_text;
static __typeof__(&kerno_set) set;
static __typeof__(&kerno_facts) facts_of;
static __typeof__(&kerno_write) write_file;
static __typeof__(&kerno_message) message;
static HANDLE drawn, let_go;
static double lengths[kThreads][kSigns];

static int Fails(const char* what) {
  fprintf(stderr, "%s: %s\n", what, message());
  return 1;
}

static KernoSign SignOf(const char* text, const char* face) {
  const KernoSign sign = new_sign();
  const int failed = set_text(sign, text) || set(sign, "face", face);
  return failed || set(sign, "cap-height", "40mm") ? 0 : sign;
}

static DWORD WINAPI Draw(void* place) {
  double* length = place;
  KernoFacts facts;
  for (int i = 0; i < kSigns; ++i) {
    const KernoSign sign = SignOf("切 Open Öffnung", i % 2 ? "IPAGothic" : "DejaVu Sans");
    if (set(sign, "fallback", "IPAGothic") || facts_of(sign, &facts)) return (DWORD)Fails("draw");
    length[i] = facts.length;
    if (free_sign(sign) || facts_of(sign, &facts) != KERNO_BAD_CALL) {
      return fprintf(stderr, "a freed sign answers\n"), 1;
    }
  }
  ReleaseSemaphore(drawn, 1, NULL);
  WaitForSingleObject(let_go, INFINITE);
  /* The text is this thread's, and still there. */
  if (!strstr(message(), " was freed")) return fprintf(stderr, "\"%s\"\n", message()), 1;
  return 0;
}

int wmain(int count, wchar_t** words) {
  HANDLE threads[kThreads];
  DWORD status = 0;
  HMODULE library = count == 3 ? LoadLibraryW(words[1]) : NULL;
  if (!library) return fprintf(stderr, "cannot be loaded: %lu\n", GetLastError()), 2;
#define TAKE(name, function) name = (__typeof__(name))(void*)GetProcAddress(library, function)
  TAKE(new_sign, "kerno_new");
  TAKE(free_sign, "kerno_free");
  TAKE(set_text, "kerno_set_text");
  TAKE(set, "kerno_set");
  TAKE(facts_of, "kerno_facts");
  TAKE(write_file, "kerno_write");
  TAKE(message, "kerno_message");
  drawn = CreateSemaphoreW(NULL, 0, kThreads, NULL);
  let_go = CreateEventW(NULL, TRUE, FALSE, NULL);
  for (int i = 0; i < kThreads; ++i) threads[i] = CreateThread(NULL, 0, Draw, lengths[i], 0, NULL);
  for (int i = 0; i < kThreads; ++i) {
    const HANDLE either[] = {drawn, threads[i]}; /* a thread that fails ends */
    if (WaitForMultipleObjects(2, either, FALSE, INFINITE) != WAIT_OBJECT_0) return Fails("threads");
  }
  if (!FreeLibrary(library) || GetModuleHandleW(L"kerno.dll") != library) {
    return fprintf(stderr, "the library is gone\n"), 3;
  }
  SetEvent(let_go);
  for (int i = 0; i < kThreads; ++i) {
    WaitForSingleObject(threads[i], INFINITE);
    if (!GetExitCodeThread(threads[i], &status) || status != 0) {
      return fprintf(stderr, "thread %d failed\n", i), 4;
    }
    if (memcmp(lengths[i], lengths[0], sizeof lengths[0]) != 0) {
      return fprintf(stderr, "thread %d draws otherwise\n", i), 5;
    }
  }
  for (int i = 0; i < 2; ++i) {
    char file[1024];
    wchar_t name[512];
    _snwprintf(name, 512, L"%ls\\切 %d.%ls", words[2], i, i ? L"svg" : L"dxf");
    WideCharToMultiByte(CP_UTF8, 0, name, -1, file, sizeof file, NULL, NULL);
    if (write_file(SignOf("Open", "DejaVu Sans"), file, NULL)) return Fails("write");
  }
  printf("%.3f\n", lengths[0][0]);
  return 0;
}
