// The platform-free front of what an instance shows inside its element. Owned by the instance,
// made at the first window the browser gives; browser's thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

// What the view tells the instance that owns it. Browser's thread only.
class ovIOrvaneWebViewDelegate {
 public:
  // Files were dropped, UTF-8 paths; the list is emptied.
  virtual void doDrop(std::vector<std::string>& files) = 0;
  // The same drop as dataTransfer JSON, which is emptied.
  virtual void doDropex(std::string& json) = 0;
  virtual void doDragOver() = 0;
  virtual void doDragLeave() = 0;
  virtual ~ovIOrvaneWebViewDelegate() = default;

 protected:
  ovIOrvaneWebViewDelegate() = default;
  ovIOrvaneWebViewDelegate(const ovIOrvaneWebViewDelegate&) = default;
  ovIOrvaneWebViewDelegate& operator=(const ovIOrvaneWebViewDelegate&) = default;
};

// What a platform does for the view.
class ovIOrvaneWebViewImpl {
 public:
  virtual ~ovIOrvaneWebViewImpl() = default;
  virtual bool init(NPWindow* window, NPP instance, bool dropEnabled, bool allowDirectories,
                    bool allowMultiple) = 0;
  virtual void destroy() = 0;
  virtual void setImage(const unsigned char* data, uint32_t length) = 0;
  // Who is told of drags and drops; it outlives the view.
  virtual void setDelegate(ovIOrvaneWebViewDelegate* delegate) = 0;
  virtual void handleDrop(const NPVariant* arguments) = 0;
  virtual int16_t handleEvent(void* event) = 0;
  virtual void markSession(bool value) = 0;
  virtual void updateWindow(NPWindow* window) = 0;
  virtual void setBrowserHost(const std::string& text) = 0;
  virtual void setTransparent(bool flag) = 0;
};

// Every operation does nothing without an implementation; init is then false, handleEvent -1.
class ovOrvaneWebView {
 public:
  explicit ovOrvaneWebView(std::unique_ptr<ovIOrvaneWebViewImpl> implementation);
  ~ovOrvaneWebView();
  ovOrvaneWebView(const ovOrvaneWebView&) = delete;
  ovOrvaneWebView& operator=(const ovOrvaneWebView&) = delete;

  bool init(NPWindow* window, NPP instance, bool dropEnabled, bool allowDirectories,
            bool allowMultiple);
  void setImage(const unsigned char* data, uint32_t length);
  void setDelegate(ovIOrvaneWebViewDelegate* delegate);
  void handleDrop(const NPVariant* arguments);
  int16_t handleEvent(void* event);
  void markSession(bool value);
  void updateWindow(NPWindow* window);
  void setBrowserHost(const std::string& text);
  void setTransparent(bool flag);

 private:
  std::unique_ptr<ovIOrvaneWebViewImpl> impl_;
};

// The platform's view; null where there is none.
std::unique_ptr<ovIOrvaneWebViewImpl> newOrvaneWebViewImpl();

}  // namespace Vantrel::Web::Gecko
