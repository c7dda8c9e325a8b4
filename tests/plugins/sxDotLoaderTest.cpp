#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>

#include "support/sxTestFiles.h"

namespace {

class sxDotLoaderTest : public testing::Test {
 protected:
  // Exports root to a .dot file and gives its text.
  std::string exportText(const sxBase* root) {
    EXPECT_TRUE(sxLoader::exportFile(root, path.c_str())) << sxLoader::getErrorMessage();
    return sxReadText(path);
  }

  static int count(const std::string& text, const std::string& what) {
    int n = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
  }

  sxTempDir dir;
  const std::string path = dir.file("graph.DOT");
};

}  // namespace

// Nodes are numbered in depth-first order; a shared instance is one node
// with an edge from each parent; names are escaped for Graphviz (quotes,
// backslashes, line breaks, bytes that are no UTF-8) and a node without a
// name shows its class only.
TEST_F(sxDotLoaderTest, SharedInstanceOnceNamesEscapedDepthFirstIds) {
  sxRef<sxGroup> root = new sxGroup;
  root->setName("top");
  auto* a = new sxSwitch;
  auto* b = new sxGroup;
  auto* shared = new sxGroup;
  b->setName("two\nlines\\ \"quoted\" \xFF");
  shared->setName("shared");
  ASSERT_TRUE(root->addChild(a) && root->addChild(b) && a->addChild(shared) && b->addChild(shared));
  // A style lists its traits (audio before traversal ones), four at most.
  auto* style = new sxStyle;
  style->setName("look");
  ASSERT_TRUE(style->addTrait(new sxCull) && style->addTrait(new sxPrune) &&
              style->addTrait(new sxSort) && style->addTrait(new sxColliderMask) &&
              style->addTrait(new sxAudioLevelScale) && root->addChild(style));

  const std::string text = exportText(root.get());
  EXPECT_EQ(text.rfind("digraph \"scene\" {\n", 0), 0u) << text;
  EXPECT_NE(text.find("n0 [label=\"sxGroup\\ntop\"]"), std::string::npos) << text;
  EXPECT_NE(text.find("n1 [label=\"sxSwitch\", shape=diamond]"), std::string::npos) << text;
  EXPECT_NE(text.find("n2 [label=\"sxGroup\\nshared\"]"), std::string::npos) << text;
  EXPECT_NE(text.find("n3 [label=\"sxGroup\\ntwo\\nlines\\\\ \\\"quoted\\\" ?\"]"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("n4 [label=\"sxStyle\\nlook\\n[sxAudioLevelScale, sxCull, sxPrune, "
                      "sxSort, +1]\", shape=ellipse]"),
            std::string::npos)
      << text;
  EXPECT_EQ(count(text, "label="), 5) << text;
  for (const char* edge : {"n0 -> n1;", "n0 -> n3;", "n0 -> n4;", "n1 -> n2;", "n3 -> n2;"})
    EXPECT_EQ(count(text, edge), 1) << edge << "\n" << text;
  EXPECT_EQ(count(text, "->"), 5) << text;
  EXPECT_EQ(text.substr(text.size() - 2), "}\n");
}

// A chain 10,000 levels deep is written without running out of stack.
TEST_F(sxDotLoaderTest, DeepChainExports) {
  constexpr int depth = 10000;
  sxRef<sxGroup> root = new sxGroup;
  sxGroup* bottom = root.get();
  for (int i = 0; i < depth; ++i) {
    auto* next = new sxGroup;
    ASSERT_TRUE(bottom->addChild(next));
    bottom = next;
  }
  const std::string text = exportText(root.get());
  EXPECT_EQ(count(text, "->"), depth);
  EXPECT_NE(text.find("n9999 -> n10000;"), std::string::npos);
}

// The module writes only: reading a .dot file fails with a reason naming
// the file, and nothing is made.
TEST_F(sxDotLoaderTest, ImportIsRefused) {
  sxRef<sxGroup> root = new sxGroup;
  exportText(root.get());
  EXPECT_EQ(sxLoader::importFile(path.c_str()), nullptr);
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_OPEN);
  ASSERT_NE(sxLoader::getErrorMessage(), nullptr);
  EXPECT_NE(std::string(sxLoader::getErrorMessage()).find(path), std::string::npos)
      << sxLoader::getErrorMessage();
}
