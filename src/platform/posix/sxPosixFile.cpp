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
  static const char unique[] = ".XXXXXX";
  if (!path || !out) return false;
  // The unique part goes before the extension, so that whoever writes the
  // file still sees its format in the name.
  const char* base = strrchr(path, '/');
  base = base ? base + 1 : path;
  const char* dot = strrchr(base, '.');
  std::size_t n = strlen(path);
  std::size_t keep = dot && dot != base ? std::size_t(dot - path) : n;
  if (n + sizeof unique > size) return false;
  memcpy(out, path, keep);
  memcpy(out + keep, unique, sizeof unique - 1);
  memcpy(out + keep + sizeof unique - 1, path + keep, n - keep + 1);
  int fd = mkostemps(out, int(n - keep), O_CLOEXEC);
  if (fd < 0) return false;
  // The finished file replaces `path`: it gets the mode that file has, or
  // that of a new file.
  struct stat old;
  mode_t mode;
  if (stat(path, &old) == 0) {
    mode = old.st_mode & 07777;
  } else {
    mode_t mask = umask(022);
    umask(mask);
    mode = 0666 & ~mask;
  }
  fchmod(fd, mode);
  close(fd);
  return true;
}

bool sxPlatform::fileRename(const char* from, const char* to) {
  return from && to && rename(from, to) == 0;
}

bool sxPlatform::fileRemove(const char* path) {
  return path && unlink(path) == 0;
}
