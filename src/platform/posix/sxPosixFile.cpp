#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/sxPlatform.h"

int sxPlatform::fileOpen(const char* path, FileMode mode) {
  if (!path) return -1;
  int flags = O_CLOEXEC;
  switch (mode) {
    case FileMode::readOnly:
      flags |= O_RDONLY;
      break;
    case FileMode::readWrite:
      flags |= O_RDWR;
      break;
    case FileMode::create:
      flags |= O_RDWR | O_CREAT | O_TRUNC;
      break;
  }
  int fd;
  do fd = open(path, flags, S_IRUSR | S_IWUSR);
  while (fd < 0 && errno == EINTR);
  return fd;
}

void sxPlatform::fileClose(int fd) {
  if (fd >= 0) close(fd);
}

std::size_t sxPlatform::fileRead(int fd, void* buffer, std::size_t n) {
  std::size_t done = 0;
  while (done < n) {
    ssize_t r = read(fd, static_cast<char*>(buffer) + done, n - done);
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += std::size_t(r);
  }
  return done;
}

std::size_t sxPlatform::fileWrite(int fd, const void* buffer, std::size_t n) {
  std::size_t done = 0;
  while (done < n) {
    ssize_t r = write(fd, static_cast<const char*>(buffer) + done, n - done);
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += std::size_t(r);
  }
  return done;
}

bool sxPlatform::fileSeek(int fd, std::int64_t offset) {
  return offset >= 0 && lseek(fd, off_t(offset), SEEK_SET) == off_t(offset);
}

std::int64_t sxPlatform::fileSize(int fd) {
  struct stat st;
  if (fstat(fd, &st) != 0) return -1;
  return std::int64_t(st.st_size);
}

bool sxPlatform::fileMakeTemporary(const char* path, char* out, std::size_t size) {
  static const char suffix[] = ".XXXXXX";
  if (!path || !out) return false;
  std::size_t n = strlen(path);
  if (n + sizeof suffix > size) return false;
  memcpy(out, path, n);
  memcpy(out + n, suffix, sizeof suffix);
  int fd = mkostemp(out, O_CLOEXEC);
  if (fd < 0) return false;
  close(fd);
  return true;
}

bool sxPlatform::fileRename(const char* from, const char* to) {
  return from && to && rename(from, to) == 0;
}

bool sxPlatform::fileRemove(const char* path) {
  return path && unlink(path) == 0;
}
