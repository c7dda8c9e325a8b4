#pragma once

#include <sx/object/sxPlugIn.h>

class sxBase;

// Whole-file import and export. Scene files of the library's own format are
// read and written here; other formats are handed to loader modules.
class SX_API sxLoader : public sxPlugIn {
 public:
  // Error codes of the last import or export.
  enum ERROR_CODE {
    ERROR_NONE = 0,
    ERROR_OPEN = 1,
    ERROR_NOT_FOUND = 3,
    ERROR_NO_FILE_TYPE = 7,
    ERROR_WRITE = 8,
    ERROR_NO_EXTENSION = 9,
    ERROR_NOT_SUPPORTED = 10
  };

  // Finds name on the search path and reads it; null on failure (getError).
  static sxBase* importFile(const char* name);
  static bool exportFile(const sxBase* root, const char* name);
  static int getError();
  // Discovers the loader modules (sxInit calls it once).
  static void initLoaders();
  static void cleanUpClass();

 protected:
  static void setError(int code);
};
