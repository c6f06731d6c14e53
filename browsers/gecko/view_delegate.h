// What the view tells the instance that owns it. Browser's thread only.
#pragma once

#include <string>
#include <vector>

namespace Vantrel::Web::Gecko {

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

}  // namespace Vantrel::Web::Gecko
