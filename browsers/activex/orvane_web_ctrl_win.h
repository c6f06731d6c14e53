// The control: one instance of the ActiveX front end. It reads the element's parameters when the
// container loads its properties, owns the core object and takes it down in a fixed order, and
// converts the page's calls for it.
//
// The apartment's thread only, but for transferEventOccurred, which the poller's thread calls.
#pragma once

#include <windows.h>
#include <ole2.h>
#include <shellapi.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "browsers/activex/callbacks_win.h"
#include "browsers/activex/deliveries_win.h"
#include "browsers/activex/dispatch_part_win.h"
#include "browsers/activex/dispatch_table_win.h"
#include "browsers/activex/ole_control_win.h"
#include "browsers/activex/url_download_win.h"
#include "browsers/shared/drop_target_win.h"
#include "browsers/shared/element_parameters.h"
#include "browsers/shared/picture_win.h"
#include "core/plugin.h"
#include "dialogs/dialog_com_win.h"
#include "dialogs/native_dialogs.h"
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
  IDropTarget* dropTarget() override { return dropTarget_.get(); }
  void* findInterface(REFIID id) override;

  // Before a script's call: starts a control that no container has loaded, as one made by its
  // program id, and settles the page's host where a start is still under way.
  void startIfNeeded();

  // Drags over the control.
  HRESULT dragEnter(IDataObject* data) override;
  void dragOver() override {}
  void dragLeave() override {}
  HRESULT drop(IDataObject* data, const DWORD* effect) override;

  // What became of the picture.
  void didCompleteDownload(CUrlDownload* download, IXMLHTTPRequest* request) override;
  void didFailDownload(CUrlDownload* download, long status) override;
  void didRejectProtocol(CUrlDownload* download, const Url& url) override;

  // Poller's thread: posts the text to the page's handler. Lets no exception out.
  void transferEventOccurred(const std::string& text) override;

  // The page's properties.
  MethodText getName() const { return core_->name; }
  void setName(const wchar_t* name);
  void setEventHandler(IDispatch* handler);
  // Null without one. What calls it holds a reference meanwhile.
  IDispatch* eventHandler() const { return eventHandler_.get(); }

  // The page's methods.
  MethodText startDownload(const DispatchArguments& args);
  MethodText startDownloadToPath(const DispatchArguments& args);
  MethodText startUploadToURL(const DispatchArguments& args);
  MethodText startListDownloadToPath(const DispatchArguments& args);
  MethodText startListUploadToURL(const DispatchArguments& args);
  MethodText addToDownloadList(const DispatchArguments& args);
  MethodText addToUploadList(const DispatchArguments& args);
  MethodText clearDownloadList(const DispatchArguments& args);
  MethodText clearUploadList(const DispatchArguments& args);
  MethodText displayTransferManager(const DispatchArguments& args);
  MethodText displayAboutWindow(const DispatchArguments& args);
  MethodText displayPreferencesWindow(const DispatchArguments& args);
  MethodText queryVersion(const DispatchArguments& args);
  MethodText queryBrowserEngine(const DispatchArguments& args);
  MethodText queryBuildVersion(const DispatchArguments& args);
  MethodText queryPluginVersion(const DispatchArguments& args);
  MethodText queryVantrelVersion(const DispatchArguments& args);
  MethodText runOpenFileDialog(const DispatchArguments& args);
  MethodText runOpenFolderDialog(const DispatchArguments& args);
  MethodText runSaveFileDialog(const DispatchArguments& args);
  MethodText runOpenFileDialogAsync(const DispatchArguments& args);
  MethodText runOpenFolderDialogAsync(const DispatchArguments& args);
  MethodText runSaveFileDialogAsync(const DispatchArguments& args);
  MethodText initSession(const DispatchArguments& args);
  MethodText vantrelHttpRequest(const DispatchArguments& args);
  MethodText vantrelHttpRequestAsync(const DispatchArguments& args);
  MethodText httpRequestImplementation(const DispatchArguments& args);
  MethodText handleDrop(const DispatchArguments& args);
  MethodText readAsArrayBuffer(const DispatchArguments& args);
  MethodText readChunkAsArrayBuffer(const DispatchArguments& args);

  // The page's function for a dialog's answer, from the call to the answer; one a callback.
  void holdForDialog(const Callback* callback, IDispatch* function);
  ComPointer<IDispatch> takeFromDialog(const Callback* callback);

  // Expires with the control, for code that may outlive it.
  std::weak_ptr<bool> life() const { return lifeToken_; }
  Plugin& core() { return *core_; }

 private:
  // Keeps the site for the time of a start, whatever the page does to it meanwhile.
  class StartSite {
   public:
    explicit StartSite(COrvaneWebCtrl& control);
    ~StartSite();
    StartSite(const StartSite&) = delete;
    StartSite& operator=(const StartSite&) = delete;

   private:
    COrvaneWebCtrl& control_;
    bool owner_ = false;  // one inside another's time leaves all to that
  };

  void readParameters(PropertyExchange& exchange);
  // The parameter's text, logged; empty for one that is no text.
  std::string readParameter(PropertyExchange& exchange, const char* name);
  // Fetches the element's picture while the caller waits. Messages come through meanwhile.
  void loadPlugInImage();
  void initPlugin();
  void startCore();
  // Asks for the page's host, unless it is known.
  void settleHost();
  // Whether a drag of these may go on.
  bool validateDrop(HDROP files) const;
  // What was dropped is approved and told, or uploaded.
  void processDrop();
  // False if it cannot be told as a text.
  bool tellDrop(const std::vector<std::string>& paths, const std::string& json);
  // Takes the control down in its fixed order. Logs what it throws.
  void teardown() noexcept;
  HWND window() { return inPlace().window(); }
  MethodText schedule(std::unique_ptr<NativeDialog> dialog, IDispatch* function, DialogKind kind);

  std::shared_ptr<bool> lifeToken_ = std::make_shared<bool>(true);
  DispatchPart dispatch_;
  Deliveries deliveries_;
  std::map<const Callback*, ComPointer<IDispatch>> dialogFunctions_;
  OwnedDropTarget dropTarget_;
  ComPointer<IDispatch> eventHandler_;  // the page's function
  std::unique_ptr<OneShotManager> oneShotManager_;
  ElementParameters parameters_;
  std::unique_ptr<Plugin> core_;
  bool needParameters_ = true;            // until the first exchange of properties
  ComPointer<IOleClientSite> startSite_;  // the one that the start under way began in
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
