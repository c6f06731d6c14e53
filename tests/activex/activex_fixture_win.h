// Base of the test cases that drive the library's ActiveX face: the shipped library is loaded from
// the build, in a user profile of its own, and asked for its class objects as COM asks it. Each
// case ends with the library ready to be unloaded.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "browsers/activex/identifiers.h"
#include "dialogs/dialog_com_win.h"
#include "tests/host/scratch_profile.h"

namespace Vantrel::Web::ActiveX {

class ActiveXTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // What DllGetClassObject answers.
  HRESULT getClassObject(REFCLSID classId, REFIID id, void** object) const;
  HMODULE library() const { return library_; }
  // What an entry without arguments answers.
  HRESULT callEntry(const char* name) const;
  // What DllCanUnloadNow answers.
  HRESULT canUnloadNow() const;
  // A new control's interface; a failure is the test's.
  template <class Interface>
  void createControl(ComPointer<Interface>& control) const {
    createControl(__uuidof(Interface), control.putVoid());
  }

  bool logHas(std::string_view part) const { return logCount(part) != 0; }
  size_t logCount(std::string_view part) const;

  Host::ScratchProfile profile_;

 private:
  void createControl(REFIID id, void** object) const;

  HMODULE library_ = nullptr;
};

}  // namespace Vantrel::Web::ActiveX
