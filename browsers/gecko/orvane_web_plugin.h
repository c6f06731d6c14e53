// One plug-in instance of the Netscape front end: it reads the element's parameters, owns the core
// object and takes it down in a fixed order, and converts the page's calls for it.
//
// Made by NPP_New, kept in the browser's `pdata`, destroyed by NPP_Destroy; browser's thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/orvane_web_view.h"
#include "browsers/gecko/page_calls.h"
#include "browsers/gecko/transfer_event_handler.h"
#include "browsers/gecko/view_delegate.h"
#include "core/plugin.h"
#include "threads/callback.h"
#include "threads/one_shot_manager.h"

namespace Vantrel::Web::Gecko {

struct ovOrvaneWebScriptObject;

// What the instance does with a drop.
enum class DropMode : int32_t { kNone = 0, kUpload = 1, kCallback = 2 };

class ovOrvaneWebPlugin : public ovIOrvaneWebViewDelegate {
 public:
  using Parameters = std::map<std::string, std::string>;

  // Starts the desktop client if none answers. Throws what the core and the windows throw.
  ovOrvaneWebPlugin(NPP instance, Parameters& pluginParameters);
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

  // The page's methods. False means that the arguments are wrong; then nothing was done.
  bool addToDownloadList(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool addToUploadList(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool clearDownloadList(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool clearUploadList(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool vantrelHttpRequest(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool vantrelHttpRequestAsync(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool displayAboutWindow(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool displayPreferencesWindow(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool displayTransferManager(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool handleDrop(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool initSession(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool queryBrowserEngine(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool queryBuildVersion(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool queryPluginVersion(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool queryVersion(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool queryVantrelVersion(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runOpenFileDialog(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runOpenFileDialogAsync(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runOpenFolderDialogAsync(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runOpenFolderDialog(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runSaveFileDialog(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool runSaveFileDialogAsync(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool startDownload(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool startDownloadToPath(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool startListDownloadToPath(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool startListUploadToURL(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool readAsArrayBuffer(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool readChunkAsArrayBuffer(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool startUploadToURL(const NPVariant* args, uint32_t argCount, NPVariant* result);
  bool httpRequestImplementation(const NPVariant* args, uint32_t argCount, NPVariant* result);

  std::unique_ptr<Plugin> core;

 private:
  void initialize(const Parameters& parameters);
  void createScriptObject();
  // Sends an event that only a page with drop mode "callback" gets.
  void tellPage(PageEvent event, const std::string& payload);
  // Ends everything that initialize() made, as far as it came.
  void teardown() noexcept;

  NPP npp_;
  // Expires with the instance, for code that calls a page function and then goes on.
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
