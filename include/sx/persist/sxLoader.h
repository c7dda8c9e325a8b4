#pragma once

#include <sx/object/sxPlugIn.h>

class sxBase;
class sxFile;
class sxType;
struct sxiLoaderDef;

/// Whole-file import and export. Scene files of the library's own format
/// are read and written here; other formats are handed to loader modules,
/// each an sxLoader that handles some file extensions. The layer also keeps
/// the native file types (which class is saved under which extension), a
/// save directory put before export paths, and the error of the last import
/// or export.
///
/// A loader module is a shared library named libsx<Name>Loader.so (or
/// sx<Name>Loader.so) that defines one static sxLoader as its plug-in
/// record:
///
///     class sxTextLoader : public sxLoader {
///      public:
///       sxTextLoader() : sxLoader("sxTextLoader.dll") {
///         setName("Text scene"); setRelease(1, 0, 0, "2026-11-24");
///         addExtension("sxt");
///       }
///       sxBase* import(const char* path) override;
///       bool exportScene(const sxBase* root, const char* path) override;
///     };
///     sxTextLoader theLoader;
///
/// At sxInit every module found in the plug-in directories is loaded once,
/// so that it registers its extensions, and unloaded again. Afterwards the
/// module is loaded when a file with one of its extensions is imported or
/// exported. Set SXCORE_DEBUG_PLUGINS=1 to see every directory tried and
/// why a module did not load, on standard error.
///
/// Threads may import and export at once, and edit the file search path and
/// the save directory meanwhile. The error code and message are kept per
/// thread: each describes the calling thread's last import or export.
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

  /// Constructs the module's record (see sxPlugIn) and joins the
  /// definition of its module name, which keeps the extensions for the
  /// whole run, also while the module is unloaded.
  explicit sxLoader(const char* moduleFileName);
  ~sxLoader() override;

  /// Reads a file of this loader's format: the new root object (its
  /// reference count 0), or null with getError and getErrorMessage set.
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

  /// Reads the scene that an open file (on disk or in memory) holds, as
  /// importFile reads a scene file: loads the plug-ins it names, reads the
  /// root object from entry 0 and everything it refers to, and closes the
  /// file. The new root (its reference count 0), or null with getError and
  /// a message that names `path`.
  static sxBase* readScene(sxFile& file, const char* path);

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

  /// Receives the part of a file done, from 0 to 1.
  using ProgressFunc = void (*)(double done, void* user);
  /// Progress of the calling thread's imports and exports: func is called
  /// now and then (every thousand entries or so) while a file is read or
  /// written. Null: none.
  static void setProgressFunc(ProgressFunc func, void* user);
  /// Hands done of total units to the calling thread's progress function,
  /// if any: readers and writers, the library's and the modules', call it.
  static void reportProgress(long long done, long long total);

  /// The extensions of this loader's module definition.
  int getNumExtensions() const;
  const char* getExtension(int i) const;  ///< null outside the range

  /// The loader module definitions found so far, in discovery order.
  static int getNumLoaders();
  static const char* getLoaderName(int def);  ///< its module name; null outside the range
  static int getNumLoaderExtensions(int def);
  static const char* getLoaderExtension(int def, int i);

  /// Discovers the loader modules (sxInit calls it once).
  static void initLoaders();
  static void cleanUpClass();

 protected:
  /// Adds ext (without the dot) to the module's definition unless it is
  /// there already, ignoring case. False for null or an empty extension.
  bool addExtension(const char* ext);
  static void setError(LOADER_ERROR code);
  /// Sets the error code and a message made like printf's, at once (for
  /// modules: name the file, and the line and column where they apply).
  /// Returns false, for `return fail(...);`.
  [[gnu::format(printf, 2, 3)]] static bool fail(LOADER_ERROR code, const char* format, ...);
  // Keeps a copy of msg (up to 511 characters). On a thread that has no
  // message yet, the call only creates an empty one and ignores msg.
  static void setErrorMessage(const char* msg);

 private:
  sxiLoaderDef* definition;  // shared by the loaders of one module name
};
