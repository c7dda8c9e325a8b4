#pragma once

// The commands of sxtool; each returns the process's exit status.

/// Prints the library, its settings and its class tree.
int sxToolInfo(bool all);

/// Builds or loads the sample scene, runs it and prints what it did.
int sxToolDemo(int argc, char** argv);
