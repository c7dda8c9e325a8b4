#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <tuple>

TEST(sxKeyboard, ReleasesOnlyWhenCollectedOrderAndOverflow) {
  const int before = sxKeyboard::test();
  sxRef<sxKeyboard> keys(new sxKeyboard);
  EXPECT_EQ(sxKeyboard::test(), before + 1);
  sxRef<sxWindow> w(new sxWindow);
  EXPECT_FALSE(keys->set(w.get(), 'a', 0, false));
  EXPECT_EQ(keys->getCount(), 0);
  EXPECT_TRUE(keys->set(w.get(), 'a', 1, true));
  keys->collectKeyUpEvents(true);
  EXPECT_TRUE(keys->set(w.get(), 'a', 2, false));
  sxKeyboardData d{};
  ASSERT_TRUE(keys->sample(d));
  ASSERT_TRUE(keys->get(d));
  EXPECT_EQ(std::tuple(d.window, d.down, d.code, d.value), std::tuple(w.get(), true, int('a'), 1));
  ASSERT_TRUE(keys->get(d));
  EXPECT_EQ(std::tuple(d.down, d.value), std::tuple(false, 2));
  EXPECT_FALSE(keys->get(d));
  // A full queue keeps the newest 50.
  for (int i = 0; i < 60; ++i) keys->set(nullptr, i, 0, true);
  EXPECT_EQ(keys->getCount(), 50);
  ASSERT_TRUE(keys->get(d));
  EXPECT_EQ(d.code, 10);
}

TEST(sxMouse, NormalisesByTheWindowAndFiltersByTheViewport) {
  sxRef<sxMouse> mouse(new sxMouse);
  EXPECT_FALSE(mouse->test());
  sxRef<sxWindow> w(new sxWindow);
  w->setSize(640, 480);
  struct Case {
    sxWindow* window;
    int x, y;
    float nx, ny;
  } cases[] = {{w.get(), 0, 0, -1, -1},
               {w.get(), 640, 480, 1, 1},
               {w.get(), 160, 360, -0.5f, 0.5f},
               {nullptr, 0, 7, -1, 0}};
  sxMouseData d{};
  for (const Case& c : cases) {
    ASSERT_TRUE(mouse->set(c.window, c.x, c.y, 3u));
    ASSERT_TRUE(mouse->get(d, nullptr));
    EXPECT_EQ(std::tuple(d.x, d.y, d.nx, d.ny, d.buttons, d.window),
              std::tuple(short(c.x), short(c.y), c.nx, c.ny, 3u, c.window))
        << c.x << "," << c.y;
  }
  // Outside the camera's viewport: not taken, still first; inside: taken.
  sxRef<sxCamera> camera(new sxCamera);
  camera->setViewport(0, 99, 0, 99);
  mouse->set(w.get(), 100, 50, 0u);
  mouse->set(w.get(), 99, 0, 0u);
  EXPECT_FALSE(mouse->sample(d, camera.get()));
  EXPECT_FALSE(mouse->get(d, camera.get()));
  EXPECT_EQ(mouse->getCount(), 2);
  ASSERT_TRUE(mouse->get(d, nullptr));
  EXPECT_EQ(d.x, 100);
  ASSERT_TRUE(mouse->get(d, camera.get()));  // bounds included
  EXPECT_FALSE(mouse->test());
}
