#pragma once

#include <sx/object/sxBase.h>

/// An output window. Window plug-ins give it its behaviour and override
/// getSize with the real window's; the kernel's window keeps the size it
/// was given.
class SX_API sxWindow : public sxBase {
 public:
  SX_CLASS(sxWindow, sxBase)
  sxWindow() = default;

  /// The drawable size in pixels (0 by 0 until set).
  virtual void getSize(int& width, int& height) const {
    width = this->width;
    height = this->height;
  }
  virtual void setSize(int w, int h) {
    width = w;
    height = h;
  }

 private:
  int width = 0;
  int height = 0;
};
