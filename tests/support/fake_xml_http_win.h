// A request object of a test's own in place of the platform's. It notes every call with what it was
// given, in order, fails where the test says so, and counts the references that are left.
//
// One FakeXmlHttp at a time, on a thread with COM.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Vantrel::Web::TestSupport {

class FakeXmlHttp {
 public:
  // Registers the class object, which CoCreateInstance then finds before the platform's.
  FakeXmlHttp();
  // Fails the test if an object is left.
  ~FakeXmlHttp();
  FakeXmlHttp(const FakeXmlHttp&) = delete;
  FakeXmlHttp& operator=(const FakeXmlHttp&) = delete;

  // "open GET http://... synchronous", "send", "get_status" and so on.
  std::vector<std::string> calls;
  // Results by the name of the call; S_OK for those that are not here.
  std::map<std::string, HRESULT> results;
  long status = 200;
  // What the answer's stream holds; without `hasStream` there is none.
  std::string body;
  bool hasStream = true;
  // What happens while the request is under way.
  std::function<void()> onSend;
  int living = 0;

  // Notes a call; its result.
  HRESULT note(const std::string& name, const std::string& arguments = "");

 private:
  DWORD cookie_ = 0;
};

}  // namespace Vantrel::Web::TestSupport
