// The least that a series has to do: reads the files of a folder into memory and writes the same
// bytes to as many files in another one, each whole or not at all and flushed to the disk.
//
// usage: write_files FROM TO COUNT    (FROM holds files 00001 to COUNT, without endings)
// Prints the seconds that the writing took.
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

static void fail(const char* what) {
  perror(what);
  exit(1);
}

static double seconds(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

static char* load(const char* name, size_t* size) {
  struct stat info;
  int fd = open(name, O_RDONLY);
  if (fd < 0 || fstat(fd, &info) != 0) fail(name);
  char* bytes = malloc((size_t)info.st_size + 1);
  if (!bytes || read(fd, bytes, (size_t)info.st_size) != info.st_size) fail(name);
  close(fd);
  *size = (size_t)info.st_size;
  return bytes;
}

static void store(int folder, const char* name, const char* bytes, size_t size) {
  char self[64];
  int fd = openat(folder, ".", O_TMPFILE | O_WRONLY, 0666);
  if (fd < 0) fail("open");
  if (write(fd, bytes, size) != (ssize_t)size) fail("write");
  if (fsync(fd) != 0) fail("fsync");
  snprintf(self, sizeof self, "/proc/self/fd/%d", fd);
  if (linkat(AT_FDCWD, self, folder, name, AT_SYMLINK_FOLLOW) != 0) fail(name);
  if (close(fd) != 0) fail("close");
}

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const long count = atol(argv[3]);
  char** bytes = calloc((size_t)count, sizeof *bytes);
  size_t* sizes = calloc((size_t)count, sizeof *sizes);
  char name[4096];
  for (long i = 0; i < count; ++i) {
    snprintf(name, sizeof name, "%s/%05ld", argv[1], i + 1);
    bytes[i] = load(name, &sizes[i]);
  }
  const double start = seconds();
  if (mkdir(argv[2], 0777) != 0) fail(argv[2]);
  const int folder = open(argv[2], O_PATH | O_DIRECTORY);
  for (long i = 0; i < count; ++i) {
    snprintf(name, sizeof name, "%05ld", i + 1);
    store(folder, name, bytes[i], sizes[i]);
  }
  printf("%.3f\n", seconds() - start);
  return 0;
}
