// The .sxt text loader: binary -> text -> binary is byte-identical for real
// scenes, hand edits with errors are reported by line and column and build
// nothing, and a failed export keeps the existing file.

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>

#include "support/sxReferenceScene.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"
#include "sxDemoScene.h"

namespace {

// Floats that only an exact printer keeps: a NaN with a payload, -0, the
// smallest denormal, infinity and values without a short decimal form.
sxRef<sxBase> awkwardNumbers() {
  sxRef<sxGroup> root(new sxGroup);
  root->setName("numbers \"quoted\"\n\ttabbed");
  const float nan = std::bit_cast<float>(0x7fc01234u);
  const float values[] = {nan,      -0.0f, std::numeric_limits<float>::denorm_min(),
                          INFINITY, 0.1f,  1.0f / 3.0f};
  auto* floats = new sxArray(6, sxArray::TYPE_FLOAT);
  std::memcpy(floats->getData(), values, sizeof values);
  auto* doubles = new sxArray(2, sxArray::TYPE_DOUBLE);
  const double d[] = {std::bit_cast<double>(0xfff8000000000abcull), 0.1};
  std::memcpy(doubles->getData(), d, sizeof d);
  for (sxArray* a : {floats, doubles}) {
    auto* holder = new sxTestHolder;
    holder->setArray(a);
    root->addAttribute(holder);
  }
  // One child under two parents: written once, shared again when read.
  sxRef<sxGroup> shared(new sxGroup);
  for (int i = 0; i < 2; ++i) {
    auto* parent = new sxGroup;
    parent->addChild(shared.get());
    root->addChild(parent);
  }
  return sxRef<sxBase>(root.get());
}

sxRef<sxBase> importedFile(const std::string& path) {
  return sxRef<sxBase>(sxLoader::importFile(path.c_str()));
}

}  // namespace

// For each scene: its scene file and the scene file of what its text reads
// back are the same bytes, and the text written again is the same text.
TEST(sxTextFormat, BinaryToTextToBinaryIsByteIdentical) {
  sxTempDir dir;
  sxDemoConfig demo;
  demo.objects = 60;
  const struct {
    const char* name;
    std::function<sxRef<sxBase>()> make;
  } scenes[] = {
      {"reference scene (sharing, cycles, every array type)",
       [&] {
         const std::string path = dir.file("reference.sx");
         return sxReference::writeSceneFile(path.c_str()) ? importedFile(path) : sxRef<sxBase>();
       }},
      {"every node kind",
       [] { return importedFile(SXCORE_SOURCE_DIR "/fuzz/corpus/nodes-le.sx"); }},
      {"demo scene", [&] { return sxRef<sxBase>(sxBuildDemoScene(demo).get()); }},
      {"awkward numbers and names", awkwardNumbers},
  };
  for (const auto& scene : scenes) {
    SCOPED_TRACE(scene.name);
    sxRef<sxBase> made = scene.make();
    ASSERT_TRUE(made);
    // A graph as a scene file gives it: one that was built, not read, may
    // still carry pending update flags that reading sets differently.
    const std::string original = dir.file("original.sx"), binary = dir.file("a.sx");
    ASSERT_TRUE(sxLoader::exportFile(made.get(), original.c_str()));
    sxRef<sxBase> root = importedFile(original);
    ASSERT_TRUE(root);
    const std::string text = dir.file("a.sxt"), again = dir.file("b.sx");
    const std::string textAgain = dir.file("b.sxt");
    ASSERT_TRUE(sxLoader::exportFile(root.get(), binary.c_str()));
    ASSERT_TRUE(sxLoader::exportFile(root.get(), text.c_str())) << sxLoader::getErrorMessage();
    sxRef<sxBase> back = importedFile(text);
    ASSERT_TRUE(back) << sxLoader::getErrorMessage();
    ASSERT_TRUE(sxLoader::exportFile(back.get(), again.c_str()));
    ASSERT_TRUE(sxLoader::exportFile(back.get(), textAgain.c_str()));
    EXPECT_EQ(sxReadBytes(again), sxReadBytes(binary));
    EXPECT_EQ(sxReadText(textAgain), sxReadText(text));
  }
}

TEST(sxTextFormat, SharedObjectsStayShared) {
  sxTempDir dir;
  const std::string path = dir.file("shared.sxt");
  sxRef<sxBase> root = awkwardNumbers();
  ASSERT_TRUE(sxLoader::exportFile(root.get(), path.c_str()));
  const std::string text = sxReadText(path);
  EXPECT_NE(text.find("  name \"numbers \\\"quoted\\\"\\n\\ttabbed\"\n"), std::string::npos);
  EXPECT_NE(text.find("floats [nan:7fc01234 -0 1e-45 inf 0.1 0.33333334]"), std::string::npos)
      << text;
  sxRef<sxBase> back = importedFile(path);
  ASSERT_TRUE(back && back->isOfType(sxGroup::getClassType()));
  auto* group = static_cast<sxGroup*>(back.get());
  ASSERT_EQ(group->getNumChildren(), 2);
  EXPECT_EQ(group->getChild(0)->getChild(0), group->getChild(1)->getChild(0));
}

// A hand edit with an error names the line and column and builds nothing.
TEST(sxTextFormat, ErrorsNameLineAndColumnAndBuildNothing) {
  const std::string good =
      "sxt 1\n"
      "entries 2\n"
      "tags sxGroup\n"
      "@0 sxGroup 1.2.0\n"
      "  name \"root\"\n"
      "  flags 0\n"
      "  attributes []\n"
      "  short 0\n"
      "  short 0\n"
      "  refs [@1]\n"
      "@1 sxGroup 1.2.0\n"
      "  name \"leaf\" flags 0 attributes [] short 0 short 0 int 0\n";
  const struct {
    const char* from;
    const char* to;
    const char* message;
  } edits[] = {
      {"  short 0\n  short 0", "  shrt 0\n  short 0", ":8:3: expected a value"},
      {"@1 sxGroup", "@1 sxGruop", ":11:4: unknown class sxGruop"},
      {"refs [@1]", "refs [@2]", ":10:9: reference @2 to no entry"},
      {"entries 2", "entries 3", ":13:1: the file ends after 2 of 3 entries"},
      {"entries 2", "entries 1", ":10:9: reference @1 to no entry"},
      {"\"leaf\"", "\"leaf", ":12:8: unterminated string"},
      {"refs [@1]\n", "refs [@1\n", ":11:4: expected a reference"},
      {"@1 sxGroup 1.2.0", "@2 sxGroup 1.2.0", ":11:1: expected entry @1, found '@2'"},
      {"  flags 0\n  attributes", "  flags 65536\n  attributes", ":6:9: '65536' is out of range"},
  };
  sxTempDir dir;
  const std::string path = dir.file("edited.sxt");
  sxWriteBytes(path, {good.begin(), good.end()});
  ASSERT_TRUE(importedFile(path)) << sxLoader::getErrorMessage();
  const int groups = sxGroup::getClassType()->getNum(true);
  for (const auto& edit : edits) {
    SCOPED_TRACE(edit.to);
    std::string text = good;
    text.replace(text.find(edit.from), std::strlen(edit.from), edit.to);
    sxWriteBytes(path, {text.begin(), text.end()});
    EXPECT_FALSE(sxLoader::importFile(path.c_str()));
    EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_OPEN);
    const char* message = sxLoader::getErrorMessage();
    ASSERT_TRUE(message);
    EXPECT_EQ(std::string(message).find(path + edit.message), 0u) << message;
    EXPECT_EQ(sxGroup::getClassType()->getNum(true), groups);
  }
}

TEST(sxTextFormat, FailedExportKeepsTheExistingFile) {
  sxTempDir dir;
  const std::string path = dir.file("kept.sxt");
  sxWriteBytes(path, {'o', 'l', 'd'});
  EXPECT_FALSE(sxLoader::exportFile(nullptr, path.c_str()));
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_WRITE);
  EXPECT_EQ(sxReadText(path), "old");
  EXPECT_EQ(dir.count(), 1);
}
