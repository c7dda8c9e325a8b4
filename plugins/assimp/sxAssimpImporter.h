#pragma once

#include <sx/object/sxPlugIn.h>

#include <string>

class sxBase;

/// The plug-in record of the module that links Assimp
/// (libsxAssimpImport.so). The loader module stays small and is loaded at
/// every start-up to list its extensions; it loads this one, which brings
/// Assimp (about 10 MB that cannot be unloaded again), only for the first
/// model imported.
class sxAssimpImporter : public sxPlugIn {
 public:
  /// The module name the loader loads it by.
  static constexpr const char* moduleFile = "sxAssimpImport.dll";
  /// The record's name, which tells the loader that the record is one.
  static constexpr const char* recordName = "Assimp importer";

  using sxPlugIn::sxPlugIn;
  /// The model at path as a node graph (reference count 0), or null with
  /// the reason in error. Throws nothing.
  virtual sxBase* importModel(const char* path, std::string& error) = 0;
};
