#pragma once

#include <cstddef>

#include <sx/containers/sxList.h>
#include <sx/sxExport.h>

class sxType;
class sxFile;
class sxEntry;

// The record of one module (the kernel library or a plug-in library). A
// module constructs exactly one record, as a static object, from its static
// initialisers, then registers its classes with it. The record counts the
// live objects of the module's classes, so that a module is unloaded only
// when nothing of it is in use. Records cannot be created on the heap.
class SX_API sxPlugIn {
 public:
  // With a module file name the record finds the loaded module and reports
  // "Loading plug-in:   NAME".
  explicit sxPlugIn(const char* moduleFileName = nullptr);
  virtual ~sxPlugIn();
  sxPlugIn(const sxPlugIn&) = delete;
  sxPlugIn& operator=(const sxPlugIn&) = delete;

  // Count live instances (only for modules loaded after sxInit or by load).
  virtual void ref();
  virtual void unRef();
  virtual void setCompany(const char* company);
  virtual void setName(const char* name);
  virtual void setRelease(int major, int minor, int build, const char* date);
  virtual void enableSaveWithFile(bool enable);
  // Unloads a module that this library loaded and whose objects are gone.
  virtual bool unload();

  const char* getName() const { return name; }
  const char* getCompany() const { return company; }
  const char* getDate() const { return date; }
  const char* getModuleName() const { return moduleName; }
  void* getModule() const { return module; }
  int getMajor() const { return major; }
  int getMinor() const { return minor; }
  int getBuild() const { return build; }
  unsigned getVersion() const;
  int getRefCount() const { return refCount; }
  bool isDynamic() const { return dynamic; }
  bool isLoadedHere() const { return loadedHere; }
  bool isSaveWithFileEnabled() const { return saveWithFile; }
  int getNumTypes() const { return types.getNum(); }
  sxType* getType(int i) const { return types.indexInRange(i) ? types[i] : nullptr; }

  // The record whose module name equals moduleName ignoring case (and the
  // platform's naming: "SXFOO.DLL" is also "LIBSXFOO.SO").
  static sxPlugIn* find(const char* moduleName);
  static sxPlugIn* find(void* module);
  static int getNum();
  static sxPlugIn* get(int i);  // null outside 0..getNum()-1
  // Loads a module by file name: an existing record of that module name is
  // returned at once; a module that is already in the process without a
  // record, or that cannot be loaded, gives null. Reports the attempt and a
  // failure on the message channel.
  static sxPlugIn* load(const char* fileName);
  // Unloads every module that can be unloaded (see unload).
  static void unloadAll();
  static void enableDynamicPlugIns(bool enable);
  static bool isDynamicPlugInsEnabled();
  // The module name of a path: the file name after the last '\' or '/',
  // upper-cased, without its first "-DBG". A new heap string (sxMemory).
  static char* getModuleName(const char* path);

  // Records cannot live on the heap: new yields null, delete does nothing.
  static void* operator new(std::size_t) noexcept { return nullptr; }
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*) noexcept {}
  static void operator delete(void*, void*) noexcept {}

  // The plug-in list of a scene file (entry "sxPlugIns"): the records
  // whose saveWithFile flag is set. Loading it loads those modules, but only
  // after enableDynamicPlugIns(true).
  static void savePlugIns(sxFile* file);
  static void loadPlugIns(sxFile* file);

  static void initClass();
  static void cleanUpClass();

 private:
  static void writePlugIn(sxPlugIn* plugIn, sxEntry* entry);
  // Reads one record; returns its module name (a new heap string), or null
  // for a damaged record.
  static char* readPlugIn(sxEntry* entry);
  // The loading step of load: the module file, its record or null.
  static sxPlugIn* loadModule(const char* fileName, const char* moduleName);
  friend class sxType;
  void addType(sxType* type);
  void removeType(sxType* type);

  sxTList<sxType*> types;
  int refCount;
  void* module;
  int major, minor, build;
  char* name;
  char* date;
  char* company;
  char* moduleName;
  bool dynamic;
  bool loadedHere;
  bool saveWithFile;
};
