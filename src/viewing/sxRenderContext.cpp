#include <sx/containers/sxList.h>
#include <sx/kernel/sxKernel.h>
#include <sx/viewing/sxRenderContext.h>

#include "kernel/sxKernelInternal.h"
#include "object/sxModuleStatic.h"

SX_DEFINE_CLASS(sxRenderContext)

namespace {
constinit sxiModuleStatic<sxTList<sxRenderContext*>> renderContexts;
}

sxRenderContext::sxRenderContext() {
  renderContexts->add(this);
}

sxRenderContext::sxRenderContext(const sxRenderContext& source) : sxBase(source) {
  if (!isDisposable()) renderContexts->add(this);
}

sxRenderContext::~sxRenderContext() {
  renderContexts->checkRemoveOrdered(this);
}

void sxRenderContext::close() {
  closed = true;
}

const sxTList<sxRenderContext*>& sxGetRenderContexts() {
  return *renderContexts;
}

void sxiKernel::initRenderContexts() {}

void sxiKernel::closeRenderContexts() {
  for (int i = renderContexts->getNum() - 1; i >= 0; --i)
    if (i < renderContexts->getNum() && (*renderContexts)[i]) (*renderContexts)[i]->close();
}

void sxiKernel::cleanUpRenderContexts() {
  renderContexts->setSize(0);
}
