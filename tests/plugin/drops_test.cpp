// Drops on the element, by calls of its window's target.
#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <utility>

#include "tests/plugin/drop_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;

TEST_F(DropTest, WithoutADropModeNothingIsTakenOrAskedFor) {
  Instance instance(host(), {{"drop-allow-multiple", "true"}});
  setWindow(instance);
  EXPECT_EQ(drop({"a.txt"}), S_OK);
  EXPECT_EQ(asked_, 0);
  EXPECT_FALSE(isApproved(instance, "a.txt"));
}

TEST_F(DropTest, ACallbackDropTellsTheHandlerAndApproves) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"ö.txt"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_THAT(handler->calls[0].arguments,
              ElementsAre(text("drop"), text("[\"" + doubled(path("ö.txt")) + "\"]")));
  EXPECT_EQ(handler->calls[1].arguments.at(0), text("dropex"));
  EXPECT_THAT(handler->calls[1].arguments.at(1).text,
              testing::HasSubstr("\"name\":\"" + doubled(path("ö.txt")) +
                                 R"(","size":5,"type":"text/plain"}]}})"));
  EXPECT_TRUE(isApproved(instance, "ö.txt"));
  target().DragOver(0, {}, nullptr);
  target().DragLeave();
  ASSERT_EQ(handler->calls.size(), 4u);
  EXPECT_THAT(handler->calls[2].arguments, ElementsAre(text("dragover"), text("")));
  EXPECT_THAT(handler->calls[3].arguments, ElementsAre(text("dragleave"), text("")));
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, AFileDroppedOnOnePageIsReadOnAnother) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  Instance other(host());
  EXPECT_FALSE(isApproved(other, "a.txt"));
  EXPECT_EQ(drop({"a.txt"}), S_OK);
  EXPECT_TRUE(isApproved(other, "a.txt"));
  EXPECT_FALSE(isApproved(other, "ö.txt"));
}

TEST_F(DropTest, ASecondItemThatIsNotAllowedMakesTheWholeDropNothing) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  EXPECT_EQ(drop({"a.txt", "ö.txt"}), S_OK);
  EXPECT_FALSE(isApproved(instance, "a.txt"));
  EXPECT_FALSE(isApproved(instance, "ö.txt"));
}

TEST_F(DropTest, ADirectoryThatIsNotAllowedIsLeftOut) {
  Instance instance(host(), {{"drop-mode", "callback"}, {"drop-allow-multiple", "true"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"sub", "gone.txt", "a.txt"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_EQ(handler->calls[0].arguments.at(1), text("[\"" + doubled(path("a.txt")) + "\"]"));
  EXPECT_TRUE(logHas("ERR stat failed for file " + path("gone.txt") + "\r\n"));
  EXPECT_EQ(drop({"sub"}), S_OK);
  EXPECT_EQ(handler->calls.size(), 2u);
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, AnAllowedDirectoryIsTold) {
  Instance instance(host(), {{"drop-mode", "callback"}, {"drop-allow-directories", "true"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(drop({"sub"}), S_OK);
  ASSERT_EQ(handler->calls.size(), 2u);
  EXPECT_THAT(handler->calls[1].arguments.at(1).text,
              testing::HasSubstr(R"("size":0,"type":"text/directory")"));
  instance.set("eventHandler", Value::null());
}

TEST_F(DropTest, WhatIsNoFilesOrNoDropIsInvalid) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  DWORD effect = 0;
  FileList nothing = listOf({});
  EXPECT_EQ(target().Drop(nullptr, 0, {}, &effect), E_INVALIDARG);
  EXPECT_EQ(target().Drop(&nothing, 0, {}, nullptr), E_INVALIDARG);
  EXPECT_EQ(target().Drop(&nothing, 0, {}, &effect), E_INVALIDARG);
}

// Data of another process, which is fetched by a call that lets this thread's windows work.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class ForeignList : public FileList {
 public:
  ForeignList(FileList& list, std::function<void()> meanwhile)
      : FileList({}), list_(list), meanwhile_(std::move(meanwhile)) {}
  HRESULT STDMETHODCALLTYPE GetData(FORMATETC* format, STGMEDIUM* medium) override {
    meanwhile_();
    return list_.GetData(format, medium);
  }

 private:
  FileList& list_;
  std::function<void()> meanwhile_;
};
#pragma GCC diagnostic pop

TEST_F(DropTest, TheInstanceMayEndWhileTheFilesAreFetched) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  const Host::PageReference handler = host().page.makeFunction("handler");
  instance.set("eventHandler", handler.value());
  FileList files = listOf({"a.txt"});
  ForeignList list(files, [&] { instance.end({.objects = {{handler.get(), 1}}}); });
  DWORD effect = DROPEFFECT_COPY;
  EXPECT_EQ(target().Drop(&list, 0, {}, &effect), S_OK);
  EXPECT_EQ(files.asked(), 1);
  EXPECT_TRUE(handler->calls.empty());
  Instance other(host());
  EXPECT_FALSE(isApproved(other, "a.txt"));
}

TEST_F(DropTest, TheWindowMayGoWhileTheFilesAreFetched) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  FileList files = listOf({"a.txt"});
  ForeignList list(files, [this] { DestroyWindow(child_); });
  DWORD effect = DROPEFFECT_COPY;
  EXPECT_EQ(target().Drop(&list, 0, {}, &effect), S_OK);
  EXPECT_EQ(files.asked(), 1);
  EXPECT_FALSE(isApproved(instance, "a.txt"));
}

TEST_F(DropTest, TheObserverMayGoWhereItIsAskedForItsMethod) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  Host::PageReference observer = host().page.makeObject("observer", {"onDrop"});
  bool called = false;
  observer->onMethodAsked = [&] { instance.set("dropObserver", Value::null()); };
  observer->onCall = [&](const Host::PageCall&) { called = true; };
  instance.set("dropObserver", observer.value());
  observer.drop();
  EXPECT_EQ(drop({"a.txt"}), S_OK);
  EXPECT_TRUE(called);
}

TEST_F(DropTest, TheObserverMayEndTheInstanceWhereItIsAskedForItsMethod) {
  Instance instance(host(), {{"drop-mode", "callback"}});
  setWindow(instance);
  const Host::PageReference observer = host().page.makeObject("observer", {"onDrop"});
  observer->onMethodAsked = [&] { EXPECT_EQ(instance.destroy(), NPERR_NO_ERROR); };
  instance.set("dropObserver", observer.value());
  EXPECT_EQ(drop({"a.txt"}), S_OK);
  EXPECT_TRUE(observer->calls.empty());
  instance.settle({.objects = {{observer.get(), 1}}});
}

TEST_F(DropTest, ATargetThatOutlivesItsViewAnswersAndDoesNothing) {
  std::optional<Instance> instance(std::in_place, host(),
                                   std::vector<Host::Parameter>{{"drop-mode", "callback"}});
  setWindow(*instance);
  IDropTarget* const kept = &target();
  void* same = nullptr;
  ASSERT_EQ(kept->QueryInterface(IID_IDropTarget, &same), S_OK);
  EXPECT_EQ(same, kept);
  EXPECT_EQ(kept->QueryInterface(IID_IDataObject, &same), E_NOINTERFACE);
  EXPECT_EQ(same, nullptr);
  EXPECT_EQ(kept->QueryInterface(IID_IDropTarget, nullptr), E_POINTER);
  instance.reset();
  FileList list = listOf({"a.txt"});
  DWORD effect = 0;
  EXPECT_EQ(kept->Drop(&list, 0, {}, &effect), S_OK);
  EXPECT_EQ(kept->DragOver(0, {}, &effect), S_OK);
  EXPECT_EQ(list.asked(), 0);
  // What was held last lives on at a count of none, and goes with one release more.
  EXPECT_EQ(kept->AddRef(), 1U);
  EXPECT_EQ(kept->Release(), 0U);
  EXPECT_EQ(kept->DragLeave(), S_OK);
  EXPECT_EQ(kept->Release(), static_cast<ULONG>(-1));
}

}  // namespace
}  // namespace Vantrel::Web
