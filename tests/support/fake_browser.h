// The browser's side in tests of single classes of this folder: it counts memory and references,
// records calls of page functions, and keeps what is to run on its thread. One at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "browsers/gecko/browser_functions.h"

namespace Vantrel::Web::Gecko {

class FakeBrowser {
 public:
  FakeBrowser();
  // Fails the test if memory or a reference of a page object is left.
  ~FakeBrowser();
  FakeBrowser(const FakeBrowser&) = delete;
  FakeBrowser& operator=(const FakeBrowser&) = delete;

  // A page object with no reference, which lives as long as this.
  NPObject* newObject();
  // Text as a browser gives it: counted, with no NUL behind it.
  NPVariant text(const std::string& value);
  static NPVariant number(int32_t value);
  static NPVariant number(double value);
  static NPVariant boolean(bool value);
  NPVariant object();

  // Runs what was handed to the browser's thread; the number of calls.
  int runAsyncCalls();
  // Forgets it, as a browser does whose instance is gone.
  void dropAsyncCalls() { asyncCalls_.clear(); }
  // What the browser is to hand to the function that waits first.
  void* waitingArgument() const { return asyncCalls_.front().second; }
  size_t waitingCalls() const { return asyncCalls_.size(); }

  // A page object with methods, whose calls are noted like those of functions, behind the name.
  NPObject* newObjectWithMethods(const std::vector<std::string>& names);
  // The object that the instance has created for the page.
  NPObject* scriptObject() const { return created_; }
  NPIdentifier identifier(const std::string& name);

  // What the browser tells of itself and of the page; null or a void variant for nothing.
  const char* userAgent = "Mozilla/5.0 Firefox/44.0";
  bool hasWindow = true;
  NPVariant location = {NPVariantType_Void, {}};
  NPVariant hostname = {NPVariantType_Void, {}};
  // Pages given to NPN_GetURLNotify, and its result.
  std::vector<std::string> requestedUrls;
  NPError urlResult = NPERR_NO_ERROR;

  // The page function: called with the texts of its arguments, returns its result.
  std::function<NPVariant(NPObject* function, const std::vector<std::string>& args)>
      onInvokeDefault;
  bool invokeResult = true;
  std::vector<std::vector<std::string>> invocations;
  int releasedVariants = 0;
  int retains = 0;
  int blocks = 0;  // of the browser's memory in use
  bool outOfMemory = false;
  // Given up on purpose at the end of a case.
  void expectReferencesLeft(int count) { expectedReferences_ = count; }
  NPP_t instance = {};

 private:
  int expectedReferences_ = 0;
  std::vector<std::pair<NPAsyncCallFunction, void*>> asyncCalls_;
  std::vector<std::unique_ptr<NPObject>> objects_;
  std::map<NPObject*, std::vector<std::string>> methods_;
  std::set<std::string> identifiers_;
  NPObject* created_ = nullptr;
  std::vector<std::vector<char>> texts_;
};

}  // namespace Vantrel::Web::Gecko
