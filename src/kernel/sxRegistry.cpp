#include <sx/kernel/sxKernel.h>

#include <cstdint>
#include <cstring>

#include "platform/sxPlatform.h"

using sxPlatform::RegistryType;

namespace {
bool readWord(const char* name, std::uint32_t& out) {
  RegistryType type;
  std::size_t length = 0;
  std::uint32_t w = 0;
  // The stored type is not checked: a 4-byte buffer takes whatever is there.
  if (!sxPlatform::registryRead(name, type, &w, sizeof w, length)) return false;
  if (length < sizeof w) return false;
  out = w;
  return true;
}

bool writeWord(const char* name, std::uint32_t w) {
  if (sxPlatform::registryWrite(name, RegistryType::dword, &w, sizeof w)) return true;
  sxMessage("Cannot write key <%s> to the registry.\n", name ? name : "");
  return false;
}
}  // namespace

bool sxReadRegistry(const char* name, int& out) {
  std::uint32_t w;
  if (!readWord(name, w)) return false;
  out = int(w);
  return true;
}

bool sxReadRegistry(const char* name, float& out) {
  std::uint32_t w;
  if (!readWord(name, w)) {
    sxMessage("Cannot read key <%s> from the registry.\n", name ? name : "");
    return false;
  }
  std::memcpy(&out, &w, sizeof out);
  return true;
}

bool sxReadRegistry(const char* name, char* out) {
  if (!out) return false;
  RegistryType type;
  std::size_t length = 0;
  return sxPlatform::registryRead(name, type, out, 256, length);
}

bool sxWriteRegistry(const char* name, int value) {
  return writeWord(name, std::uint32_t(value));
}

bool sxWriteRegistry(const char* name, float value) {
  std::uint32_t w;
  std::memcpy(&w, &value, sizeof w);
  return writeWord(name, w);
}

bool sxWriteRegistry(const char* name, const char* value) {
  if (value && sxPlatform::registryWrite(name, RegistryType::string, value, std::strlen(value) + 1))
    return true;
  sxMessage("Cannot write key <%s> to the registry.\n", name ? name : "");
  return false;
}
