// One plug-in instance of the Netscape front end: it reads the element's parameters, owns the core
// object and takes it down in a fixed order, and converts the page's calls for it.
//
// Made by NPP_New, kept in the browser's `pdata`, destroyed by NPP_Destroy; browser's thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/orvane_web_view.h"
#include "browsers/gecko/page_calls.h"
#include "browsers/gecko/script_methods.h"
#include "browsers/gecko/transfer_event_handler.h"
#include "browsers/shared/element_parameters.h"
#include "core/plugin.h"
#include "threads/one_shot_manager.h"

namespace Vantrel::Web::Gecko {

struct ovOrvaneWebScriptObject;

class ovOrvaneWebPlugin : public ovIOrvaneWebViewDelegate {
 public:
  // Starts the desktop client if none answers. Throws what the core and the windows throw.
  ovOrvaneWebPlugin(NPP instance, const ElementParameters& parameters);
  ~ovOrvaneWebPlugin() override;
  ovOrvaneWebPlugin(const ovOrvaneWebPlugin&) = delete;
  ovOrvaneWebPlugin& operator=(const ovOrvaneWebPlugin&) = delete;

  // The script object with a reference for the browser.
  NPObject* getScriptableObject();
  int16_t handleEvent(void* event);
  bool setWindow(NPWindow* window, NPP instance);

  // The stream of the element's picture.
  bool createStream(NPMIMEType type, NPStream* stream, NPBool seekable, uint16_t* stype);
  int32_t write(NPStream* stream, int32_t offset, int32_t length, void* buffer);
  bool destroyStream(NPStream* stream, NPReason reason);

  // What the view tells. Every drop approves its files; the rest is up to the drop mode.
  void doDrop(std::vector<std::string>& files) override;
  void doDropex(std::string& json) override;
  void doDragOver() override;
  void doDragLeave() override;

  // The page's properties that hold an object. Setting a value that is no object clears them.
  void setDropObserver(const NPVariant& value);
  void setEventHandler(const NPVariant& value);
  NPObject* getDropObserver() const { return dropObserver_; }
  NPObject* getEventHandler() const { return eventHandler_; }

  // The page's methods, with arguments that the table of methods has let pass. False refuses them
  // after all; then nothing was done.
  bool addToDownloadList(Arguments args, NPVariant* result);
  bool addToUploadList(Arguments args, NPVariant* result);
  bool clearDownloadList(Arguments args, NPVariant* result);
  bool clearUploadList(Arguments args, NPVariant* result);
  bool vantrelHttpRequest(Arguments args, NPVariant* result);
  bool vantrelHttpRequestAsync(Arguments args, NPVariant* result);
  bool displayAboutWindow(Arguments args, NPVariant* result);
  bool displayPreferencesWindow(Arguments args, NPVariant* result);
  bool displayTransferManager(Arguments args, NPVariant* result);
  bool handleDrop(Arguments args, NPVariant* result);
  bool initSession(Arguments args, NPVariant* result);
  bool queryBrowserEngine(Arguments args, NPVariant* result);
  bool queryBuildVersion(Arguments args, NPVariant* result);
  bool queryPluginVersion(Arguments args, NPVariant* result);
  bool queryVersion(Arguments args, NPVariant* result);
  bool queryVantrelVersion(Arguments args, NPVariant* result);
  bool runOpenFileDialog(Arguments args, NPVariant* result);
  bool runOpenFileDialogAsync(Arguments args, NPVariant* result);
  bool runOpenFolderDialogAsync(Arguments args, NPVariant* result);
  bool runOpenFolderDialog(Arguments args, NPVariant* result);
  bool runSaveFileDialog(Arguments args, NPVariant* result);
  bool runSaveFileDialogAsync(Arguments args, NPVariant* result);
  bool startDownload(Arguments args, NPVariant* result);
  bool startDownloadToPath(Arguments args, NPVariant* result);
  bool startListDownloadToPath(Arguments args, NPVariant* result);
  bool startListUploadToURL(Arguments args, NPVariant* result);
  bool readAsArrayBuffer(Arguments args, NPVariant* result);
  bool readChunkAsArrayBuffer(Arguments args, NPVariant* result);
  bool startUploadToURL(Arguments args, NPVariant* result);
  bool httpRequestImplementation(Arguments args, NPVariant* result);

  // Expires with the instance, for code that lets the page or a dialog work and then goes on.
  std::weak_ptr<bool> life() const { return lifeToken_; }

  std::unique_ptr<Plugin> core;

 private:
  void initialize(const ElementParameters& parameters);
  void createScriptObject();
  // False when the browser does not fetch the element's picture.
  bool requestImage();
  bool isImage(const NPStream& stream) const;
  // Sends an event that only a page with drop mode "callback" gets.
  void tellPage(PageEvent event, const std::string& payload);
  // Ends everything that initialize() made, as far as it came.
  void teardown() noexcept;

  NPP npp_;
  std::shared_ptr<bool> lifeToken_ = std::make_shared<bool>(true);
  std::unique_ptr<OneShotManager> oneShotManager_;
  std::unique_ptr<TransferEventHandler> transferEventHandler_;
  std::string imageUrl_;
  DropMode dropMode_ = DropMode::kNone;
  bool dropAllowDirectories_ = false;
  bool dropAllowMultiple_ = false;
  std::unique_ptr<ovOrvaneWebView> view_;
  std::vector<unsigned char> imageData_;  // what the browser's stream has brought so far
  // These three keep their references when the instance ends.
  ovOrvaneWebScriptObject* scriptObject_ = nullptr;
  NPObject* dropObserver_ = nullptr;
  NPObject* eventHandler_ = nullptr;
  bool eventsEnabled_ = false;
  bool transparent_ = false;
};

}  // namespace Vantrel::Web::Gecko
