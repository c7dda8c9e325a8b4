#include <sx/containers/sxList.h>
#include <sx/kernel/sxKernel.h>
#include <sx/viewing/sxRenderContext.h>

#include "object/sxModuleStatic.h"
#include "viewing/sxRenderContextList.h"

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

void sxiRenderContexts::close() {
  for (int i = renderContexts->getNum() - 1; i >= 0; --i)
    if (i < renderContexts->getNum() && (*renderContexts)[i]) (*renderContexts)[i]->close();
}

void sxiRenderContexts::cleanUp() {
  renderContexts->setSize(0);
}
