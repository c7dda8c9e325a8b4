// The loader module of .sxt files, the text twin of scene files.

#include <sx/sxCore.h>

#include <cstdio>
#include <memory>
#include <new>

#include "sxTextFormat.h"

namespace {

class sxTextLoader : public sxLoader {
 public:
  sxTextLoader() : sxLoader("sxTextLoader.dll") {
    setName("Text scene");
    setCompany("sxCore");
    setRelease(1, 0, 0, "2026-11-24");
    addExtension("sxt");
    // It makes no classes, so scene files need not name it.
    enableSaveWithFile(false);
  }
  sxBase* import(const char* path) override;
  bool exportScene(const sxBase* root, const char* path) override;
};

sxTextLoader theLoader;

// The whole file, or false.
bool readAll(const char* path, std::unique_ptr<char[]>& text, std::size_t& length) {
  std::FILE* f = std::fopen(path, "rb");
  if (!f) return false;
  bool ok = std::fseek(f, 0, SEEK_END) == 0;
  const long size = ok ? std::ftell(f) : -1;
  ok = size >= 0 && std::fseek(f, 0, SEEK_SET) == 0;
  if (ok) {
    length = std::size_t(size);
    text.reset(new (std::nothrow) char[length ? length : 1]);
    ok = text && std::fread(text.get(), 1, length, f) == length;
  }
  std::fclose(f);
  return ok;
}

sxBase* sxTextLoader::import(const char* path) {
  std::unique_ptr<char[]> text;
  std::size_t length = 0;
  if (!readAll(path, text, length)) {
    fail(ERROR_NOT_FOUND, "%s: the file cannot be read", path);
    return nullptr;
  }
  sxFile file;
  if (!file.createInMemory(path)) {
    fail(ERROR_OPEN, "%s: out of memory", path);
    return nullptr;
  }
  sxText::Error error;
  if (!sxText::parse(text.get(), length, file, error)) {
    file.close();
    fail(ERROR_OPEN, "%s:%d:%d: %s", path, error.line, error.column, error.what.c_str());
    return nullptr;
  }
  text.reset();
  return readScene(file, path);
}

bool sxTextLoader::exportScene(const sxBase* root, const char* path) {
  std::FILE* f = std::fopen(path, "wb");
  if (!f) return fail(ERROR_NOT_FOUND, "%s: the file cannot be created", path);
  std::string error;
  const bool written = sxText::print(root, f, error);
  const bool closed = std::fclose(f) == 0;
  if (!written) return fail(ERROR_WRITE, "%s: %s", path, error.c_str());
  if (!closed) return fail(ERROR_WRITE, "%s: the file could not be written", path);
  return true;
}

}  // namespace
