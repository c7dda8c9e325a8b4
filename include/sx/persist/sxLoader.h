#pragma once

#include <sx/object/sxPlugIn.h>

class sxBase;
class sxType;

// Whole-file import and export. Scene files of the library's own format
// are read and written here; other formats are handed to loader modules,
// each an sxLoader that handles some file extensions. The layer also keeps
// the native file types (which class is saved under which extension), a
// save directory put before export paths, and the error of the last import
// or export.
//
// Threads may import and export at once, and edit the file search path and
// the save directory meanwhile. The error code and message are kept per
// thread: each describes the calling thread's last import or export.
class SX_API sxLoader : public sxPlugIn {
 public:
  enum LOADER_ERROR {
    ERROR_NONE = 0,
    // import: neither a loader's format nor a readable scene file, or the
    // root object could not be made
    ERROR_OPEN = 1,
    // import: the file was not found; export: it could not be created
    ERROR_NOT_FOUND = 3,
    ERROR_NO_FILE_TYPE = 7,   // export: no file type for the root's class
    ERROR_WRITE = 8,          // export: the root could not be written
    ERROR_NO_EXTENSION = 9,   // import: the path has no extension
    ERROR_NOT_SUPPORTED = 10  // the loader has no export
  };

  // Reads a file of this loader's format.
  virtual sxBase* import(const char* path) = 0;
  // Writes root in this loader's format ("export" itself is a keyword). By
  // default a loader cannot export: error 10.
  virtual bool exportScene(const sxBase* root, const char* path);

  // Finds name on the file search path and reads it; the new root object,
  // or null (getError).
  static sxBase* importFile(const char* name);
  // Writes root and everything it refers to. A scene file is written to a
  // temporary file beside the target and renamed over it only when
  // complete, so a failed export leaves an existing file as it was.
  static bool exportFile(const sxBase* root, const char* name);

  // Registers the extension (without the dot) under which objects of type
  // (and derived classes) are saved. False when the class or the extension
  // (ignoring case) has one already.
  static bool addSolmaxFileType(sxType* type, const char* ext);
  static int getNumSolmaxFileTypes();
  static const char* getSolmaxFileType(int i);  // null outside the range

  // Put before every export path: the directory and a "/"; null: none.
  static void setSaveDirectory(const char* dir);
  // Valid until the next setSaveDirectory, on any thread.
  static const char* getSaveDirectory();

  static LOADER_ERROR getError();
  // What went wrong, naming the file (null before the thread's first
  // failure or setErrorMessage; valid until its next import or export).
  static const char* getErrorMessage();

  // Discovers the loader modules (sxInit calls it once).
  static void initLoaders();
  static void cleanUpClass();

 protected:
  static void setError(LOADER_ERROR code);
  // Keeps a copy of msg (up to 511 characters). On a thread that has no
  // message yet, the call only creates an empty one and ignores msg.
  static void setErrorMessage(const char* msg);

 private:
  // The loader that handles files with this extension.
  static sxLoader* findLoader(const char* ext);
};
