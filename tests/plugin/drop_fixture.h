// Base of the test cases that drop files on the element: two files and a folder to drop, and what
// the page finds out afterwards.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/plugin/view_fixture.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"
#include "tools/user/file_drag_win.h"

namespace Vantrel::Web {

using ov::TempFolder;

using StandIn::FileList;

class DropTest : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    for (const char* const name : {"a.txt", "ö.txt"})
      TempFolder::write(folder_.path(name), "Hello");
    std::filesystem::create_directory(TempFolder::native(folder_.path("sub")));
  }

  std::string path(const std::string& name) const {
    std::string text = folder_.path(name);
    for (char& byte : text) byte = byte == '/' ? '\\' : byte;
    return text;
  }
  static std::string doubled(std::string text) {
    for (size_t at = 0; (at = text.find('\\', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }
  IDropTarget& target() const {
    return *static_cast<IDropTarget*>(GetPropW(child_, L"OleDropTargetInterface"));
  }
  std::string quoted(const std::string& name) const { return "\"" + doubled(path(name)) + "\""; }
  FileList listOf(std::initializer_list<const char*> names) const {
    std::vector<wchar_t> paths;
    for (const char* const name : names) {
      const std::wstring text = toWide(path(name));
      paths.insert(paths.end(), text.c_str(), text.c_str() + text.size() + 1);
    }
    return FileList(std::move(paths));
  }
  HRESULT drop(std::initializer_list<const char*> names) {
    FileList list = listOf(names);
    DWORD effect = DROPEFFECT_COPY;
    const HRESULT result = target().Drop(&list, 0, {}, &effect);
    asked_ = list.asked();
    return result;
  }
  bool isApproved(Instance& instance, const std::string& name) {
    return instance.call("readAsArrayBuffer", {text(path(name))}).value.text.rfind("data:", 0) == 0;
  }

  TempFolder folder_;
  int asked_ = 0;
};

}  // namespace Vantrel::Web
