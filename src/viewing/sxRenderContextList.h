#pragma once

// The list of render contexts, which shutdown closes, last first.
namespace sxiRenderContexts {
void close();
void cleanUp();
}  // namespace sxiRenderContexts
