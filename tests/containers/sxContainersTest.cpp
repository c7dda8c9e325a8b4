#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <tuple>
#include <vector>

// Arrays in files, shared and of every element type, are covered by the
// reference scene of the byte-order test.
namespace {

using Bytes = std::vector<unsigned char>;

// Element bytes that differ in every position, so that a swap or shift shows.
void fill(sxArray* a) {
  auto* p = static_cast<unsigned char*>(a->getData());
  for (unsigned i = 0; i < a->getSize(); ++i) p[i] = static_cast<unsigned char>(i * 13 + 1);
}

// The first n element bytes (all of them by default).
Bytes bytes(const sxArray& a, unsigned n = ~0u) {
  auto* p = static_cast<const unsigned char*>(a.getData());
  return Bytes(p, p + std::min(n, a.getSize()));
}

using It = sxIterator;

template <class Iterator>
std::vector<int> run(Iterator&& it, int updates) {
  std::vector<int> out;
  for (int i = 0; i < updates; ++i) out.push_back(it.update());
  return out;
}

// A reset iterator over items that each last `each` updates or seconds.
It make(int items, It::CYCLE cycle, It::DIRECTION direction, It::MODE mode = It::FRAMES,
        float each = 1) {
  It it;
  it.setMode(mode);
  it.setCycle(cycle);
  it.setDirection(direction);
  if (mode == It::FRAMES)
    it.setItemFrameCount(int(each));
  else
    it.setItemTime(each);
  it.setNumItems(items);
  it.reset();
  return it;
}

using Values = std::vector<std::intptr_t>;

void* P(std::intptr_t v) {
  return reinterpret_cast<void*>(v);
}

Values values(const sxList& l) {
  Values out;
  for (int i = 0; i < l.getNum(); ++i) out.push_back(reinterpret_cast<std::intptr_t>(l[i]));
  return out;
}

sxRef<sxQueue> makeQueue(int capacity, sxQueue::MODE mode) {
  sxRef<sxQueue> q(new sxQueue(sizeof(int), capacity));
  q->setMode(mode);
  return q;
}

// Puts each value and returns how many went in.
int put(sxQueue& q, std::initializer_list<int> values) {
  int n = 0;
  for (int v : values) n += q.put(&v);
  return n;
}

std::vector<int> drain(sxQueue& q) {
  std::vector<int> out;
  int v;
  while (q.get(&v)) out.push_back(v);
  return out;
}

}  // namespace

TEST(Array, CreationCopiesReferenceCountsTypedViewsAndGrowableArrays) {
  sxRef<sxArray> g(sxCreateArray("sxVec3GArray", 4));
  ASSERT_NE(g, nullptr);
  ASSERT_EQ((std::tuple{g->getType(), g->isGrowable(), g->getNum()}),
            (std::tuple{sxArray::TYPE_VEC3, true, 4}))
      << "the allocated count";
  EXPECT_EQ(static_cast<sxGrowableArray*>(g.get())->getNum(), 0);
  EXPECT_EQ(bytes(*g), Bytes(48, 0)) << "zeroed elements";
  EXPECT_FALSE(sxCreateArray("sxVec5Array", 3) || sxCreateArray(nullptr, 3));
  EXPECT_EQ(sxArray::getElemSize(sxArray::DATA_TYPE(9)), 0);
  std::size_t before = sxMemory::getSize();
  auto* a = new sxArray(5, sxArray::TYPE_VEC2);
  fill(a);
  a->ref();
  a->ref();
  sxArray copy(*a);
  EXPECT_TRUE(copy.getRefCount() == 0 && copy.getData() != a->getData()) << "own elements";
  EXPECT_EQ(bytes(copy), bytes(*a));
  sxArray assigned(1, sxArray::TYPE_INT);
  assigned.ref();
  assigned = *a;
  EXPECT_EQ((std::tuple{assigned.getRefCount(), assigned.getType()}),
            (std::tuple{1, sxArray::TYPE_VEC2}))
      << "assignment keeps the count";
  a->enableDynamic(true);
  EXPECT_EQ(a->getType(), sxArray::TYPE_VEC2) << "the dynamic bit is not part of the type";
  a->unRef();
  EXPECT_EQ(a->getRefCount(), 1);
  a->unRef();
  copy.setSize(0);
  assigned.setSize(0);
  EXPECT_EQ(sxMemory::getSize(), before) << "the last unRef freed the array";
  sxRef<sxArray> c(sxCreateArrayCopy("sxIntGArray", nullptr));
  ASSERT_TRUE(c && c->getNum() == 0);
  sxArray source(3, sxArray::TYPE_FLOAT);
  fill(&source);
  c = sxCreateArrayCopy("sxDoubleArray", &source);
  EXPECT_EQ(bytes(*c, 12), bytes(source)) << "all of a smaller source";
  c = sxCreateArrayCopy("sxUShortArray", &source);
  EXPECT_EQ((std::tuple{c->getType(), c->getNum()}), (std::tuple{sxArray::TYPE_USHORT, 3}));
  EXPECT_EQ(bytes(*c), bytes(source, 6)) << "as many bytes as fit";
  // Typed views of arrays of their own element type only.
  sxTArray<sxVec3> vectors(g.get());
  EXPECT_EQ((std::tuple{vectors.isValid(), vectors.getNum()}), (std::tuple{true, 4}));
  vectors[3] = sxVec3(1.0f, 2.0f, 3.0f);
  EXPECT_EQ(static_cast<float*>(g->getData())[11], 3.0f);
  sxArray colours(2, sxArray::TYPE_UBYTEVEC4);
  sxTArray<sxUByteVec4> rgba(&colours);
  rgba[1] = sxUByteVec4(1, 2, 3, 4);
  EXPECT_EQ(static_cast<unsigned char*>(colours.getData())[7], 4);
  EXPECT_FALSE(sxTArray<sxUByteVec3>(&colours).isValid());
  sxTArray<float> wrong(g.get());
  EXPECT_EQ((std::tuple{wrong.isValid(), wrong.getNum()}), (std::tuple{false, 0}));
  // Growable arrays: grow, index and the short move.
  sxGrowableArray ints(sxArray::TYPE_INT);
  ints.grow(0);
  EXPECT_EQ(ints.sxArray::getNum(), 1) << "grow(0) leaves capacity 1";
  ints.grow(6);
  EXPECT_EQ(ints.getSize(), 24u);
  int* p = static_cast<int*>(ints.getData());
  for (int i = 0; i < 6; ++i) p[i] = 0x01010101 * (i + 1);
  ints.setNum(5);
  int third = 0x03030303, fourth = 0x04040404, fifth = 0x05050505, sixth = 0x06060606;
  EXPECT_EQ(ints.getIndex(&third), 2);
  EXPECT_EQ(ints.getIndex(&sixth), -1) << "only used elements are searched";
  // Removing element 2 of 5 moves numUsed - 2 - 1 = 2 bytes, not elements.
  ints.removeElem(&third);
  EXPECT_EQ((std::tuple{ints.getNum(), p[2], p[3]}), (std::tuple{4, 0x03030404, fourth}));
  ints.removeElem(&fourth);  // the last used element: only the count changes
  EXPECT_EQ((std::tuple{ints.getNum(), p[3]}), (std::tuple{3, fourth}));
  ints.removeElem(&fifth);  // not in use: nothing changes
  EXPECT_EQ(ints.getNum(), 3);
  ints.grow(2);
  EXPECT_EQ((std::tuple{ints.getSize(), static_cast<int*>(ints.getData())[1]}),
            (std::tuple{8u, 0x02020202}))
      << "grow shrinks to the exact size";
  ints.reset();
  EXPECT_EQ(ints.getIndex(&fifth), -1);
  // A growable array reads with all its elements in use.
  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  sxArray doubles(4, sxArray::TYPE_DOUBLE);
  fill(&doubles);
  doubles.write(e);
  e->reset();
  sxGrowableArray back(4, sxArray::TYPE_DOUBLE);
  back.read(e);
  EXPECT_EQ(back.getNum(), 4);
  EXPECT_EQ(bytes(back), bytes(doubles));
}

TEST(sxIterator, CyclesFrameCountsPausingAndSharedTotals) {
  EXPECT_EQ(run(make(3, It::LOOP, It::FORWARD), 4), (std::vector<int>{0, 1, 2, 0}));
  EXPECT_EQ(run(make(3, It::SWING, It::FORWARD), 6), (std::vector<int>{0, 1, 2, 1, 0, 1}));
  EXPECT_EQ(run(make(3, It::ONCE, It::BACKWARD), 3), (std::vector<int>{2, 1, -1}));
  EXPECT_EQ(run(make(2, It::ONCE, It::FORWARD), 3), (std::vector<int>{0, 1, -1}));
  EXPECT_EQ(run(make(1, It::SWING, It::FORWARD), 3), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(run(make(3, It::LOOP, It::BACKWARD), 4), (std::vector<int>{2, 1, 0, 2}));
  // Items of no duration step once per update instead of spinning, in
  // either mode; long ones hold.
  EXPECT_EQ(run(make(3, It::LOOP, It::FORWARD, It::FRAMES, 0), 4), (std::vector<int>{0, 1, 2, 0}));
  EXPECT_EQ(run(make(3, It::ONCE, It::FORWARD, It::TIME, 0), 4), (std::vector<int>{0, 1, 2, -1}));
  EXPECT_EQ(run(make(2, It::LOOP, It::FORWARD, It::TIME, 1000), 3), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(It().update(), -1) << "no items: current stays";
  // Frame counts per item, and pausing.
  It it = make(3, It::LOOP, It::FORWARD);
  it.setItemFrameCount(1, 3);  // item 1 lasts three updates
  EXPECT_EQ(run(it, 6), (std::vector<int>{0, 1, 1, 1, 2, 0}));
  it.pause();
  EXPECT_EQ(run(it, 2), (std::vector<int>{0, 0}));
  it.resume();
  EXPECT_EQ(it.update(), 1);
  // Totals are shared by the items.
  It shared;
  shared.setNumItems(4);
  shared.setTime(2.0f);
  EXPECT_EQ(std::tuple(shared.getItemTime(3), shared.getItemTime(4)), std::tuple(0.5f, 0.0f));
  shared.setItemTime(0.25f);
  EXPECT_EQ(std::tuple(shared.getTime(), shared.getItemTime(0)), std::tuple(0.0f, 0.25f));
  shared.setItemTime(6, 1.0f);  // grows the per-item array
  EXPECT_FLOAT_EQ(shared.getItemTime(6), 1.0f);
  shared.setMode(It::FRAMES);
  shared.setFrameCount(10);
  EXPECT_EQ(shared.getItemFrameCount(0), 2);  // 10 / 4, integer division
  shared.setNumItems(3);
  EXPECT_EQ(shared.getItemFrameCount(2), 3);
  It copy(shared);
  copy.setItemFrameCount(0, 9);
  EXPECT_EQ(std::tuple(shared.getItemFrameCount(0), copy.getItemFrameCount(0)), std::tuple(3, 9))
      << "copies own their arrays";
}

TEST(IteratorPersistence, RecordsRoundTripAndDamagedOnesStayInBounds) {
  It it;
  it.setNumItems(3);
  it.setItemTime(0.25f);
  it.setMode(It::FRAMES);
  it.setCycle(It::SWING);
  it.setDirection(It::BACKWARD);
  it.setFrameCount(9);
  it.setItemFrameCount(1, 7);  // set individually: not kept by a file
  it.update();
  it.pause();
  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  it.write(e);
  // bytes paused, cycle, mode, direction; ints current, step; two floats;
  // 3 item times; 2 ints; 3 frame counts; the item count.
  EXPECT_EQ((std::tuple{e->getDataSize(), int(e->getData()[1])}),
            (std::tuple{4 + 8 + 8 + 4 + 12 + 8 + 4 + 12 + 4, int(It::SWING)}));
  e->reset();
  It back;
  back.read(e);
  EXPECT_EQ(std::tuple(back.isPaused(), back.getCycle(), back.getMode(), back.getDirection()),
            std::tuple(true, It::SWING, It::FRAMES, It::BACKWARD));
  EXPECT_EQ(std::tuple(back.getNumItems(), back.getSelectedItem(), back.getFrameCount(),
                       back.getItemTime(2)),
            std::tuple(3, 2, 9, 0.25f));
  EXPECT_EQ(back.getItemFrameCount(1), 3) << "refilled from the total";
  EXPECT_EQ(e->getCursor(), e->getDataSize());
  // A damaged record: far more item times than the entry holds.
  sxEntry* d = f.newEntry(f.newTag("T"));
  for (int i = 0; i < 4; ++i) d->writeByte(0);
  for (int v : {0, 1}) d->writeInt(v);
  for (float v : {0.0f, 1.0f}) d->writeFloat(v);
  d->writeInt(0x7FFFFFFF);
  d->writeFloat(2.0f);
  d->reset();
  It damaged;
  damaged.read(d);
  EXPECT_EQ(std::tuple(damaged.getItemTime(0), damaged.getItemTime(1)), std::tuple(2.0f, 0.0f));
}

TEST(sxList, SearchesFindTheHighestIndexAndRemovalsKeepOrWaiveOrder) {
  sxList l;
  EXPECT_EQ(l.getCapacity(), 0);
  for (std::intptr_t v : {10, 20, 30, 40, 20, 60}) l.add(P(v));
  EXPECT_EQ(l.getCapacity(), 8) << "two slots at first, then doubling";
  EXPECT_EQ(l.getIndex(P(20)), 4);
  EXPECT_TRUE(l.checkRemove(P(20)));
  EXPECT_EQ(values(l), (Values{10, 20, 30, 40, 60})) << "the last element moves into the hole";
  EXPECT_EQ(l.getIndex(P(20)), 1);
  EXPECT_FALSE(l.checkRemove(P(99)) || l.addUnique(P(30)));
  EXPECT_TRUE(l.checkRemoveOrdered(P(20)) && l.checkReplace(P(40), P(41)));
  EXPECT_FALSE(l.checkReplace(P(40), P(42)));
  EXPECT_EQ(values(l), (Values{10, 30, 41, 60}));
  EXPECT_FALSE(l.checkRemoveOrderedIndex(l.getNum()) || l.checkRemoveIndex(-1));
  EXPECT_EQ(l.checkRemoveLast(), P(60));
  sxList empty;
  EXPECT_EQ((std::tuple{empty.checkRemoveLast(), empty.getNum()}), (std::tuple<void*, int>{}))
      << "the count word stays intact";
}

TEST(sxList, InsertSetAndSetSizeChangeTheCountAndCopiesCompare) {
  sxList l;
  EXPECT_TRUE(l.insert(10, P(7)) && l.getNum() == 11 && l[10] == P(7));
  EXPECT_TRUE(l.insert(0, P(1)) && l.getNum() == 12 && l[11] == P(7));
  EXPECT_FALSE(l.insert(-1, P(1)));
  EXPECT_TRUE(l.insert(1, P(2)) && l[12] == P(7));
  EXPECT_TRUE(l.set(20, P(6)) && l.set(0, P(0)));
  EXPECT_EQ(l.getNum(), 21);
  sxList big(0);
  EXPECT_TRUE(big.set(20, P(9)) && big.getCapacity() == 21) << "from capacity 0: just enough";
  sxList gap;
  for (int i = 1; i <= 6; ++i) gap.add(P(i));
  for (int i = 0; i < 3; ++i) gap.checkRemoveLast();
  EXPECT_TRUE(gap.insert(5, P(9)) && gap.set(8, P(8)));
  EXPECT_EQ(values(gap), (Values{1, 2, 3, 0, 0, 9, 0, 0, 8})) << "skipped slots: null, not old";
  // setSize cuts; copies assign and compare.
  l.setSize(0);
  for (int i = 1; i <= 6; ++i) l.add(P(i));
  l.setSize(3);
  EXPECT_EQ(l.getCapacity(), 3);
  EXPECT_EQ(values(l), (Values{1, 2, 3}));
  sxList copy(l);
  EXPECT_TRUE(copy == l);
  copy.add(P(4));
  EXPECT_TRUE(copy != l);
  sxList target;
  for (int i = 0; i < 10; ++i) target.add(P(100));
  int capacity = target.getCapacity();
  target = l;
  EXPECT_TRUE(target == l);
  EXPECT_EQ(target.getCapacity(), capacity);  // never shrinks
  l.setSize(0);
  EXPECT_EQ(std::tuple(l.getNum(), l.getCapacity()), std::tuple(0, 0));
}

TEST(sxList, ArenaListsKeepTheirArenaAndTypedListsConvert) {
  sxArena arena(1024);
  sxList l(4, &arena);
  ASSERT_TRUE(l.isArenaList() && l.getArena() == &arena);
  Values expected;
  for (int i = 1; i <= 20; ++i) expected.push_back(l.add(P(i)) + 1);
  EXPECT_EQ(values(l), expected) << "add returns the new index";
  EXPECT_TRUE(arena.inRange(&l[0]));
  l.setSize(0);
  EXPECT_EQ(l.getArena(), &arena);
  l.add(P(5));
  l.setSize(1);  // arena lists never shrink their storage
  EXPECT_GE(l.getCapacity(), 2);
  l.checkRemoveLast();
  EXPECT_EQ(l.checkRemoveLast(), nullptr);
  EXPECT_TRUE(l.isArenaList());
  // Typed lists of integers, negative ones too. (The class registry keeps
  // its init functions, and the file search path its names, in typed lists.)
  sxTList<int> ints;
  for (int v : {-5, 7}) ints.add(v);
  EXPECT_EQ(ints.getIndex(7), 1);
  EXPECT_EQ(std::accumulate(ints.begin(), ints.end(), 0), 2);
}

TEST(sxStack, GrowsByDoublingCountsEveryChangeAndIsBounded) {
  sxStack s(0);
  EXPECT_EQ(std::tuple(s.getCapacity(), s.isEmpty()), std::tuple(1, true));
  short id = s.getID();
  EXPECT_TRUE(s.push(P(1)) && s.push(P(2)));
  EXPECT_EQ(std::tuple(s.getCapacity(), s.getNum(), s.getTop()), std::tuple(2, 2, P(2)));
  s.setTop(P(3));
  EXPECT_EQ((std::tuple{s.pop(), s.pop(), s.pop(), s.getTopIndex()}),
            (std::tuple<void*, void*, void*, int>{P(3), P(1), nullptr, -1}))
      << "popping an empty stack is harmless";
  s.setTop(P(9));  // empty: no data
  EXPECT_EQ(s.getTop(), nullptr);
  s.reset();
  EXPECT_EQ(short(s.getID() - id), 8);  // two pushes, setTop, three pops, setTop, reset
  for (int i = 0; i < 70000; ++i) s.reset();
  EXPECT_EQ(std::uint16_t(s.getID() - id), std::uint16_t(70008)) << "the counter wraps";
  for (int i = 0; i < sxStack::maxElements; ++i) ASSERT_TRUE(s.push(P(i + 1)));
  EXPECT_FALSE(s.push(P(1)));
  EXPECT_EQ(std::tuple(s.getNum(), s.getTop()),
            std::tuple(sxStack::maxElements, P(sxStack::maxElements)));
  sxStack copy(s);
  EXPECT_EQ(std::tuple(copy.getNum(), copy.get(100)), std::tuple(s.getNum(), P(101)));
}

// Growing queues, which double and keep their order across the wrap, are
// tested between two threads (threads/sxThreadQueueTest).
TEST(sxQueue, BoundedAndOverwritingQueuesAndTheirCopies) {
  sxRef<sxQueue> q = makeQueue(4, sxQueue::BOUNDED);
  EXPECT_EQ((std::tuple{put(*q, {1, 2, 3, 4}), q->getCount()}), (std::tuple{3, 3}));
  EXPECT_EQ(drain(*q), (std::vector<int>{1, 2, 3}));
  EXPECT_FALSE(q->put(nullptr));
  int v = 0;
  EXPECT_FALSE(q->get(&v) || q->get(nullptr));
  // Wrapping around the buffer keeps the order.
  for (int round = 0; round < 5; ++round) {
    put(*q, {0, 1, 2});
    EXPECT_EQ(drain(*q), (std::vector<int>{0, 1, 2}));
  }
  // Overwriting queues hold all four and drop the oldest.
  q = makeQueue(4, sxQueue::OVERWRITE);
  EXPECT_EQ((std::tuple{put(*q, {1, 2, 3, 4, 5}), q->getCount()}), (std::tuple{5, 4}));
  EXPECT_TRUE(q->sample(&v) && v == 2) << "the oldest, 1, is dropped";
  EXPECT_EQ(put(*q, {6}), 1);
  EXPECT_EQ(drain(*q), (std::vector<int>{3, 4, 5, 6}));
  // Copies hold the source's records, oldest first.
  q = makeQueue(3, sxQueue::OVERWRITE);
  put(*q, {1, 2, 3, 4, 5});  // holds 3 4 5, wrapped
  sxQueue copy(*q);
  EXPECT_EQ(std::tuple(copy.getMode(), copy.getCapacity()), std::tuple(sxQueue::OVERWRITE, 3));
  EXPECT_EQ(drain(copy), (std::vector<int>{3, 4, 5}));
  EXPECT_EQ(q->getCount(), 3);  // the source is untouched
  sxQueue assigned(8, 1);
  assigned = *q;
  EXPECT_EQ(std::tuple(assigned.getElementSize(), drain(assigned)),
            std::tuple(int(sizeof(int)), std::vector<int>{3, 4, 5}));
  q->reset();
  EXPECT_EQ((std::tuple{q->getCount(), q->sample(&v)}), (std::tuple{0, false}));
  sxQueue tiny(0, 0);
  EXPECT_EQ(std::tuple(tiny.getElementSize(), tiny.getCapacity()), std::tuple(1, 1));
}
