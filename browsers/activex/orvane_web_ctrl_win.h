// The control: one instance of the ActiveX front end. It reads the element's parameters when the
// container loads its properties, owns the core object and takes it down in a fixed order, and
// converts the page's calls for it.
//
// The apartment's thread only, but for transferEventOccurred, which the poller's thread calls.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <memory>
#include <string>
#include <vector>

#include "browsers/activex/ole_control_win.h"
#include "browsers/activex/url_download_win.h"
#include "browsers/shared/drop_target_win.h"
#include "browsers/shared/element_parameters.h"
#include "browsers/shared/picture_win.h"
#include "core/plugin.h"
#include "dialogs/dialog_com_win.h"
#include "service/transfer_event_listener.h"
#include "threads/one_shot_manager.h"

namespace Vantrel::Web::ActiveX {

class COrvaneWebCtrl final : public OleControl,
                             public DragReceiver,
                             public IUrlDownloadDelegate,
                             public TransferEventListener {
 public:
  explicit COrvaneWebCtrl(IUnknown* outer);
  ~COrvaneWebCtrl() override;
  COrvaneWebCtrl(const COrvaneWebCtrl&) = delete;
  COrvaneWebCtrl& operator=(const COrvaneWebCtrl&) = delete;

  // Takes the element's parameters and starts the core; the first time only.
  void doPropExchange(PropertyExchange& exchange) override;
  void onResetState() override;
  void onSetClientSite() override;
  void onDraw(HDC dc, const RECT& bounds) override;
  void onCreate(CREATESTRUCTW& create) override;
  void* findInterface(REFIID id) override;

  // Drags over the control.
  HRESULT dragEnter(IDataObject* data) override;
  void dragOver() override {}
  void dragLeave() override {}
  HRESULT drop(IDataObject* data, const DWORD* effect) override;

  // Fetches the element's picture while the caller waits. Messages come through meanwhile: the
  // control may be gone afterwards.
  void loadPlugInImage();
  void didCompleteDownload(CUrlDownload* download, IXMLHTTPRequest* request) override;
  void didFailDownload(CUrlDownload* download, long status) override;
  void didRejectProtocol(CUrlDownload* download, const Url& url) override;

  // Poller's thread: posts the text to the page's handler. Lets no exception out.
  void transferEventOccurred(const std::string& text) override;

  // Expires with the control, for code that lets the page or a dialog work and then goes on.
  std::weak_ptr<bool> life() const { return lifeToken_; }
  Plugin& core() { return *core_; }

 private:
  // Takes the control down in its fixed order. Logs what it throws.
  void teardown() noexcept;

  std::shared_ptr<bool> lifeToken_ = std::make_shared<bool>(true);
  ComPointer<IDispatch> eventHandler_;  // the page's function
  std::unique_ptr<OneShotManager> oneShotManager_;
  ElementParameters parameters_;
  std::unique_ptr<Plugin> core_;
  bool needParameters_ = true;  // until the first exchange of properties
  std::wstring imageUrl_;
  DropMode dropMode_ = DropMode::kNone;
  bool dropAllowDirectories_ = false;
  bool dropAllowMultiple_ = false;
  std::vector<std::wstring> droppedFiles_;  // of the drop in progress
  bool dropPending_ = false;                // a drop waits for its processing
  std::unique_ptr<Picture> image_;
  std::unique_ptr<CUrlDownload> downloader_;
};

}  // namespace Vantrel::Web::ActiveX
