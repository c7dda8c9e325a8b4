// The registry store on POSIX: a small text file with one `name=type:value`
// line per value, where type is "dword" (decimal, unsigned 32-bit) or "sz"
// (text with \\, \n and \r escaped). Value names match ignoring case, as in
// the registry they stand in for. Writes go to a temporary file that is
// renamed over the store, so a crash never leaves half a file.

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/sxPlatform.h"

namespace {

std::string storePath() {
  if (const char* p = getenv("SX_REGISTRY_FILE"); p && *p) return p;
  if (const char* x = getenv("XDG_CONFIG_HOME"); x && *x)
    return std::string(x) + "/Solmax/registry";
  if (const char* h = getenv("HOME"); h && *h) return std::string(h) + "/.config/Solmax/registry";
  return {};
}

bool readLines(const std::string& path, std::vector<std::string>& lines) {
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return false;
  std::string cur;
  int c;
  while ((c = fgetc(f)) != EOF) {
    if (c == '\n') {
      lines.push_back(cur);
      cur.clear();
    } else {
      cur.push_back(char(c));
    }
  }
  if (!cur.empty()) lines.push_back(cur);
  fclose(f);
  return true;
}

// Splits "name=type:value"; false for a malformed line.
bool parse(const std::string& line, std::string& name, std::string& type, std::string& value) {
  size_t eq = line.find('=');
  if (eq == std::string::npos || eq == 0) return false;
  size_t colon = line.find(':', eq + 1);
  if (colon == std::string::npos) return false;
  name = line.substr(0, eq);
  type = line.substr(eq + 1, colon - eq - 1);
  value = line.substr(colon + 1);
  return true;
}

bool unescape(const std::string& in, std::string& out) {
  out.clear();
  for (size_t i = 0; i < in.size(); ++i) {
    if (in[i] != '\\') {
      out.push_back(in[i]);
      continue;
    }
    if (++i >= in.size()) return false;
    switch (in[i]) {
      case '\\':
        out.push_back('\\');
        break;
      case 'n':
        out.push_back('\n');
        break;
      case 'r':
        out.push_back('\r');
        break;
      default:
        return false;
    }
  }
  return true;
}

std::string escape(const char* s, size_t n) {
  std::string out;
  for (size_t i = 0; i < n && s[i]; ++i) {
    switch (s[i]) {
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out.push_back(s[i]);
    }
  }
  return out;
}

bool validName(const char* name) {
  if (!name || !*name) return false;
  for (const char* p = name; *p; ++p)
    if (*p == '=' || *p == '\n' || *p == '\r') return false;
  return true;
}

bool makeParentDirs(const std::string& path) {
  for (size_t i = 1; i < path.size(); ++i) {
    if (path[i] != '/') continue;
    std::string dir = path.substr(0, i);
    if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST) return false;
  }
  return true;
}

thread_local std::string lastPath;

}  // namespace

const char* sxPlatform::registryPath() {
  lastPath = storePath();
  return lastPath.c_str();
}

bool sxPlatform::registryRead(const char* name, RegistryType& type, void* out, size_t size,
                              size_t& length) {
  if (!validName(name) || !out) return false;
  std::vector<std::string> lines;
  std::string path = storePath();
  if (path.empty() || !readLines(path, lines)) return false;
  std::string n, t, v;
  // The last line for a name wins, as a later write would have replaced it.
  const std::string* found = nullptr;
  std::string foundType, foundValue;
  for (const std::string& line : lines) {
    if (!parse(line, n, t, v) || strcasecmp(n.c_str(), name) != 0) continue;
    found = &line;
    foundType = t;
    foundValue = v;
  }
  if (!found) return false;
  if (foundType == "dword") {
    if (foundValue.empty() || foundValue.size() > 10) return false;
    char* end = nullptr;
    unsigned long long x = strtoull(foundValue.c_str(), &end, 10);
    if (*end || x > 0xFFFFFFFFull || foundValue[0] == '-' || foundValue[0] == '+') return false;
    std::uint32_t w = std::uint32_t(x);
    type = RegistryType::dword;
    length = sizeof w;
    memcpy(out, &w, size < sizeof w ? size : sizeof w);
    return size >= sizeof w;
  }
  if (foundType == "sz") {
    std::string text;
    if (!unescape(foundValue, text)) return false;
    type = RegistryType::string;
    length = text.size() + 1;
    if (length > size) return false;  // the value does not fit the caller's buffer
    memcpy(out, text.c_str(), length);
    return true;
  }
  return false;
}

bool sxPlatform::registryWrite(const char* name, RegistryType type, const void* data,
                               size_t length) {
  if (!validName(name) || !data) return false;
  std::string path = storePath();
  if (path.empty()) return false;
  std::string line = std::string(name) + "=";
  if (type == RegistryType::dword) {
    if (length != 4) return false;
    std::uint32_t w;
    memcpy(&w, data, 4);
    line += "dword:" + std::to_string(w);
  } else {
    line += "sz:" + escape(static_cast<const char*>(data), length);
  }
  std::vector<std::string> lines, kept;
  readLines(path, lines);  // a missing store starts empty
  std::string n, t, v;
  for (const std::string& l : lines)
    if (!(parse(l, n, t, v) && strcasecmp(n.c_str(), name) == 0)) kept.push_back(l);
  kept.push_back(line);
  if (!makeParentDirs(path)) return false;
  std::string tmp = path + ".tmp." + std::to_string(getpid());
  FILE* f = fopen(tmp.c_str(), "wb");
  if (!f) return false;
  bool ok = true;
  for (const std::string& l : kept) ok = ok && fprintf(f, "%s\n", l.c_str()) >= 0;
  ok = (fflush(f) == 0) && ok;
  ok = (fsync(fileno(f)) == 0) && ok;
  ok = (fclose(f) == 0) && ok;
  if (!ok || rename(tmp.c_str(), path.c_str()) != 0) {
    unlink(tmp.c_str());
    return false;
  }
  return true;
}
