#pragma once

#include <sx/object/sxBase.h>

// A rendering plug-in's drawing context. Every context is entered in the
// kernel's list while it exists, so that sxShutdown can close them all.
class SX_API sxRenderContext : public sxBase {
 public:
  SX_CLASS(sxRenderContext, sxBase)

  sxRenderContext();
  sxRenderContext(const sxRenderContext& source);
  ~sxRenderContext() override;

  // Releases the context's resources; plug-ins override it. The base
  // version only marks the context closed.
  virtual void close();
  bool isClosed() const { return closed; }

 private:
  bool closed = false;
};
