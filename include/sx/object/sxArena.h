#pragma once

#include <cstdint>

#include <sx/object/sxMemory.h>

// A region allocator for short-lived objects: pieces are carved out of large
// blocks one after another (8-byte aligned pointer bumps) and are all dropped
// at once by reset() or by destroying the arena. Objects created in an arena
// must never be deleted, unRef'd to zero or freed one by one, and their
// destructors are not run. An arena belongs to one thread at a time.
class SX_API sxArena : public sxMemory {
 public:
  // Every block starts with this 16-byte header; the space handed out
  // follows it. End and next-free are offsets from the block's own start.
  struct Block {
    std::uint32_t end;       // start + end is the end mark (arena size)
    std::uint32_t nextFree;  // start + nextFree is the next piece
    Block* next;             // next block of the chain, or null
  };
  static_assert(sizeof(Block) == 16, "block header must stay 16 bytes");

  sxArena();                        // block size defaultSize
  explicit sxArena(unsigned size);  // block size max(size, 64)
  // A copy is a second handle on the same blocks: it is not listed and does
  // not free them, so the original must outlive it. Assignment drops the
  // target's own blocks and makes it such a handle.
  sxArena(const sxArena& other);
  sxArena& operator=(const sxArena& other);
  ~sxArena() override;

  // n rounded up to a multiple of 8; null only when the heap is exhausted.
  // The common case (a small request that fits the block its size class
  // last used) is an inline pointer bump.
  void* malloc(unsigned n) {
    unsigned r = (n + 7u) & ~7u;
    if (r - 8u < 8u * numHints) {
      Block* b = hints[r / 8u - 1u];
      if (b && std::int64_t(b->end) - std::int64_t(b->nextFree) > std::int64_t(r)) {
        void* p = reinterpret_cast<char*>(b) + b->nextFree;
        b->nextFree += r;
        return p;
      }
    }
    return mallocSlow(n);
  }
  void reset();
  bool inRange(const void* p) const;
  // Position in the arena list (searched from the end), -1 when absent.
  int getIndex() const;
  unsigned getBlockSize() const { return size; }
  int getNumBlocks() const;

  // The arena list: destroyed arenas leave a null entry so that the indices
  // of the others stay valid.
  static int getNum();
  static sxArena* get(int i);
  static void setDefaultSize(int size);
  static unsigned getDefaultSize();
  // Frees the arena list itself (module unload).
  static void cleanUpClass();

 private:
  static constexpr int numHints = 17;  // requests of 8..136 bytes, one hint each
  void* mallocSlow(unsigned n);
  Block* newBlock(unsigned bytes);
  void initHints();
  void freeBlocks();

  unsigned size;
  Block* blocks;
  // First block that may still fit a request of (i + 1) * 8 bytes. Blocks
  // only fill up between resets, so a hint never has to move backwards and
  // the walk for the first fitting block costs O(1) amortised.
  Block* hints[numHints];
  bool listed;      // in the arena list (copies are not)
  bool ownsBlocks;  // frees the blocks when destroyed (copies do not)
};
