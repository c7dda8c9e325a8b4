#include <sx/object/sxMemory.h>

#include <functional>
#include <mutex>
#include <unordered_map>

#include "object/sxAttributeTable.h"

namespace sxiAttributeTable {

namespace {

using List = sxTList<sxBase*>;
using Table =
    std::unordered_map<const sxBase*, List*, std::hash<const sxBase*>, std::equal_to<const sxBase*>,
                       sxAllocator<std::pair<const sxBase* const, List*>>>;

// Made with the first entry and freed with the last, so that the table
// holds no memory while no object has attributes (and none at unload).
constinit Table* table = nullptr;

std::mutex& tableMutex() {
  // Never destroyed: objects may be destroyed after static destructors ran.
  static std::mutex* m = new std::mutex;
  return *m;
}

void dropIfEmpty() {
  if (!table->empty()) return;
  sxDelete(table);
  table = nullptr;
}

}  // namespace

List* find(const sxBase* obj) {
  std::lock_guard<std::mutex> lock(tableMutex());
  if (!table) return nullptr;
  auto it = table->find(obj);
  return it == table->end() ? nullptr : it->second;
}

List* findOrMake(const sxBase* obj) {
  std::lock_guard<std::mutex> lock(tableMutex());
  if (!table) table = sxNew<Table>();
  if (!table) return nullptr;
  List*& list = (*table)[obj];
  if (!list) list = sxNew<List>();
  if (!list) {
    table->erase(obj);
    dropIfEmpty();
  }
  return list;
}

List* take(const sxBase* obj) {
  std::lock_guard<std::mutex> lock(tableMutex());
  if (!table) return nullptr;
  auto it = table->find(obj);
  if (it == table->end()) return nullptr;
  List* list = it->second;
  table->erase(it);
  dropIfEmpty();
  return list;
}

}  // namespace sxiAttributeTable
