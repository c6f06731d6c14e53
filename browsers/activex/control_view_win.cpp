// What the control paints: its picture, and nothing without one or outside a page that takes drops.

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "runtime/ov_log.h"

namespace Vantrel::Web::ActiveX {

void COrvaneWebCtrl::onDraw(HDC dc, const RECT& bounds) {
  OV_DEBUG("COrvaneWebCtrl::OnDraw()");
  if (dc == nullptr || dropMode_ == DropMode::kNone || !image_) return;
  FillRect(dc, &bounds, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  image_->draw(dc, bounds);
}

void COrvaneWebCtrl::onCreate(CREATESTRUCTW& create) {
  OV_DEBUG("COrvaneWebCtrl::OnCreate()");
  // What lies behind shows through.
  if (!image_) create.dwExStyle |= WS_EX_TRANSPARENT;
}

}  // namespace Vantrel::Web::ActiveX
