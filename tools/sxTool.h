#pragma once

// The commands of sxtool; each returns the process's exit status.

/// Prints the library, its settings and its class tree.
int sxToolInfo(bool all);

/// Builds or loads the sample scene, runs it and prints what it did.
int sxToolDemo(int argc, char** argv);

/// Prints a scene file's header, tag table and directory.
int sxToolDump(const char* path);

/// Prints the node hierarchy of a scene file, indented.
int sxToolTree(const char* path);

/// Reads a scene in any readable format and writes it in the format of the
/// output's extension; a progress bar on a terminal's standard error.
int sxToolConvert(const char* in, const char* out);

/// Writes a scene's node graph as Graphviz text to standard output.
int sxToolDot(const char* path);

/// Prints the loader modules, their versions and extensions, and every
/// directory searched for them.
int sxToolPlugins();
