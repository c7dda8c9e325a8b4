#pragma once

#include <cstdio>

class sxBase;

/// Writes the node graph below root as a Graphviz digraph: one node per
/// scene-graph node (a shared instance once, with an edge from each of its
/// parents), labelled with its class and name, numbered in depth-first
/// order, so the same graph always gives the same text. An object that is
/// no node is written as a graph of one node. Walks an explicit work list,
/// so a graph of any depth takes no more stack than a flat one. False when
/// the text could not be written to out.
bool sxDotWrite(const sxBase* root, std::FILE* out);
