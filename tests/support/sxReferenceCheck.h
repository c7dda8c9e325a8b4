#pragma once

#include <sx/sxCore.h>

#include <string>

namespace sxReference {

// Collects the failures of a reference check, one line each.
class Report {
 public:
  explicit Report(std::string& out) : out(out) {}
  void check(bool ok, const char* what) {
    if (ok) return;
    ++failures;
    out += what;
    out += '\n';
  }
  void check(bool ok, const std::string& what) { check(ok, what.c_str()); }
  int failures = 0;

 private:
  std::string& out;
};

// Opens a reference file for reading and tells whether it came from a
// machine of the other byte order; false, noted, when it does not open.
inline bool openReference(sxFile& file, const char* path, bool& swapped, Report& r) {
  bool ok = file.open(path, "r");
  r.check(ok, std::string(path) + " does not open");
  if (ok) swapped = file.isByteSwapped();
  return ok;
}

// The first entry of that tag with its data loaded; null, noted, when
// there is none or it cannot be read.
inline sxEntry* loadReference(sxFile& file, const char* tag, Report& r) {
  sxEntry* e = file.findEntry(tag);
  bool ok = e && file.readEntry(e) && e->getData();
  r.check(ok, std::string(tag) + " entry missing");
  return ok ? e : nullptr;
}

}  // namespace sxReference
