#pragma once

// Round trips through files in a fresh directory, for tests.

#include <gtest/gtest.h>
#include <sx/object/sxRef.h>
#include <sx/persist/sxLoader.h>

#include <string>

#include "support/sxTestFiles.h"

// root exported to a file and imported again; null when either fails or
// what came back is no T.
template <class T>
sxRef<T> sxThroughFile(sxBase* root) {
  sxTempDir dir;
  const std::string path = dir.file("through.sx");
  sxRef<sxBase> back;
  if (sxLoader::exportFile(root, path.c_str())) back = sxLoader::importFile(path.c_str());
  if (!back || !back->isOfType(T::getClassType())) return {};
  return sxRef<T>(static_cast<T*>(back.get()));
}

// The root of a file that fill writes by hand, imported; null when it is
// not read. A file that cannot be written fails the test.
template <class Fill>
sxRef<sxBase> sxImportWritten(Fill fill) {
  sxTempDir dir;
  const std::string path = dir.file("written.sx");
  if (!sxWriteFile(path, fill)) {
    ADD_FAILURE() << "cannot write " << path;
    return {};
  }
  return sxRef<sxBase>(sxLoader::importFile(path.c_str()));
}
