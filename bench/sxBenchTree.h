#pragma once

// The workload of the graph benchmarks: a tree of named groups, branching
// 10, built bottom-up as the file reader and the loaders build (each
// sub-tree finished before it is attached). Depth 6 gives 1,111,111 nodes,
// depth 5 111,111.

#include <sx/nodes/sxGroup.h>

#include <array>
#include <cstdio>

namespace sxbench {

inline constexpr int branching = 10;

inline long treeSize(int depth) {
  long n = 1, level = 1;
  for (int d = 0; d < depth; ++d) n += level *= branching;
  return n;
}

// "g" and the decimal number, without the cost of snprintf, which would
// otherwise be a tenth of what the build measures.
inline std::array<char, 16> nodeName(long n) {
  std::array<char, 16> name{};
  char digits[20];
  int k = 0;
  do digits[k++] = char('0' + n % 10);
  while ((n /= 10) > 0);
  name[0] = 'g';
  for (int i = 0; i < k; ++i) name[std::size_t(i) + 1] = digits[k - 1 - i];
  return name;
}

// Builds the tree below a new root; make(index) creates each node.
template <class Make>
sxGroup* buildTree(int depth, Make&& make, long& counter) {
  sxGroup* node = make(counter);
  node->setName(nodeName(counter++).data());
  if (depth > 0)
    for (int i = 0; i < branching; ++i) node->addChild(buildTree(depth - 1, make, counter));
  return node;
}

inline sxGroup* buildGroupTree(int depth) {
  long counter = 0;
  return buildTree(
      depth, [](long) { return new sxGroup; }, counter);
}

// Resident memory of the process, in bytes.
inline long residentBytes() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return resident * 4096;
}

}  // namespace sxbench
