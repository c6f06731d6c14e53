// One of the library's two faces as a page's script sees it: an object named `plugin` in a script
// engine, whatever interface stands behind it. So one script runs against both.
//
// Thread of the page; ended by finish(), which reports every fault of the host behind it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/container/counting_container_win.h"
#include "tests/container/script_page_win.h"

namespace Vantrel::Web::Faces {

using Parameters = std::map<std::string, std::string>;

class Face {
 public:
  virtual ~Face() = default;
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  // The page's script, which knows the plug-in by this name.
  virtual Container::ScriptPage& page() = 0;
  // Runs messages, timers and posted calls until `done`; false when the time was over first.
  virtual bool pumpUntil(const std::function<bool()>& done) = 0;
  // Drops these files on the element; what the drop ended with.
  virtual HRESULT drop(const std::vector<std::wstring>& files) = 0;
  // Ends script and plug-in. All faults.
  virtual std::vector<std::string> finish() = 0;

 protected:
  Face() = default;
};

// Of the library below the test program's directory, with a page of the host "some.host".
std::unique_ptr<Face> makeNetscapeFace(const Parameters& parameters = {});
std::unique_ptr<Face> makeActiveXFace(const Parameters& parameters = {});

}  // namespace Vantrel::Web::Faces
