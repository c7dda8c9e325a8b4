#include "sxDotWriter.h"

#include <sx/nodes/sxGroup.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxLoader.h>
#include <sx/viewing/sxStyle.h>

#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

// How a node kind is drawn, beyond the default box; a node takes the entry
// of its nearest class in this table.
struct Shape {
  const char* className;
  const char* attributes;
};
constexpr Shape shapes[] = {
    {"sxSwitch", "shape=diamond"},
    {"sxStyle", "shape=ellipse"},
    {"sxTransform", "style=rounded"},
    {"sxGeometry", "style=filled, fillcolor=\"#e8e8e8\""},
};

const char* shapeOf(const sxType* type) {
  for (; type; type = type->getParent())
    for (const Shape& s : shapes)
      if (std::strcmp(type->getName(), s.className) == 0) return s.attributes;
  return nullptr;
}

// The length of the UTF-8 sequence at p (0 when it is not one), so that
// names from a damaged file cannot make the text invalid for Graphviz.
std::size_t utf8Length(const unsigned char* p) {
  const unsigned char c = p[0];
  std::size_t n = c < 0x80                ? 1
                  : c >= 0xC2 && c < 0xE0 ? 2
                  : c >= 0xE0 && c < 0xF0 ? 3
                  : c >= 0xF0 && c < 0xF5 ? 4
                                          : 0;
  for (std::size_t i = 1; i < n; ++i)
    if ((p[i] & 0xC0) != 0x80) return 0;
  return n;
}

// Appends text for a quoted label: quotes and backslashes escaped, a line
// break as Graphviz's \n, other control characters and bytes that are not
// UTF-8 as '?'.
void appendEscaped(std::string& out, const char* text) {
  const auto* p = reinterpret_cast<const unsigned char*>(text);
  while (*p) {
    if (*p == '"' || *p == '\\') {
      out += '\\';
      out += char(*p++);
    } else if (*p == '\n') {
      out += "\\n";
      ++p;
    } else if (*p < 0x20 || *p == 0x7F) {
      if (*p != '\r') out += '?';
      ++p;
    } else if (std::size_t n = utf8Length(p)) {
      out.append(reinterpret_cast<const char*>(p), n);
      p += n;
    } else {
      out += '?';
      ++p;
    }
  }
}

// The trait classes of a style, on one line: a style is drawn with what it
// applies. Long lists are cut.
void appendTraits(std::string& label, const sxStyle* style) {
  constexpr int shown = 4;
  std::vector<const sxBase*> traits;
  for (const sxBase* t : style->getVisualTraits()) traits.push_back(t);
  for (const sxBase* t : style->getAudioTraits()) traits.push_back(t);
  for (const sxBase* t : style->getTravTraits()) traits.push_back(t);
  if (traits.empty()) return;
  label += "\\n[";
  for (std::size_t i = 0; i < traits.size() && i < shown; ++i) {
    if (i) label += ", ";
    appendEscaped(label, traits[i]->getType()->getName());
  }
  if (traits.size() > shown) label += ", +" + std::to_string(traits.size() - shown);
  label += ']';
}

// One node statement: its id, its label (class, then name) and its shape.
std::string nodeLine(std::size_t id, const sxBase* obj) {
  std::string line = "  n" + std::to_string(id) + " [label=\"";
  appendEscaped(line, obj->getType()->getName());
  if (const char* name = obj->getName(); name && *name) {
    line += "\\n";
    appendEscaped(line, name);
  }
  if (obj->isOfType(sxStyle::getClassType())) appendTraits(line, static_cast<const sxStyle*>(obj));
  line += '"';
  if (const char* shape = shapeOf(obj->getType())) (line += ", ") += shape;
  line += "];\n";
  return line;
}

}  // namespace

bool sxDotWrite(const sxBase* root, std::FILE* out) {
  if (!root || !out) return false;
  std::fputs(
      "digraph \"scene\" {\n"
      "  ordering=out;\n"
      "  node [shape=box, fontname=\"Helvetica\", fontsize=10];\n"
      "  edge [arrowsize=0.6];\n",
      out);
  if (!root->isOfType(sxGroup::getClassType())) {
    std::fputs(nodeLine(0, root).c_str(), out);
  } else {
    // Numbers in pre-order, children in order; a shared instance takes the
    // number of its first visit.
    std::unordered_map<const sxGroup*, std::size_t> ids;
    std::vector<const sxGroup*> order;
    std::vector<const sxGroup*> todo{static_cast<const sxGroup*>(root)};
    while (!todo.empty()) {
      const sxGroup* g = todo.back();
      todo.pop_back();
      if (!ids.emplace(g, order.size()).second) continue;
      order.push_back(g);
      for (int i = g->getNumChildren() - 1; i >= 0; --i)
        if (!ids.count(g->getChild(i))) todo.push_back(g->getChild(i));
    }
    std::string edges;
    for (std::size_t id = 0; id < order.size(); ++id) {
      if ((id & 4095) == 4095) sxLoader::reportProgress((long long)id, (long long)order.size());
      const sxGroup* g = order[id];
      edges = nodeLine(id, g);
      for (int i = 0; i < g->getNumChildren(); ++i)
        edges +=
            "  n" + std::to_string(id) + " -> n" + std::to_string(ids.at(g->getChild(i))) + ";\n";
      std::fputs(edges.c_str(), out);
    }
  }
  std::fputs("}\n", out);
  return !std::ferror(out);
}
