// Drags from the platform: DoDragDrop with the mouse moved and let go as a user does. What reaches
// the page, in which order, and what the page may do with it afterwards.
#include <gmock/gmock.h>

#include <ctime>
#include <optional>
#include <utility>

#include "tests/plugin/drop_fixture.h"

namespace Vantrel::Web {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// Where a drag begins, which is a window of the page and takes nothing.
constexpr POINT kOutside = {150, 150};
// The middle of the element.
constexpr POINT kInside = {30, 30};

class DragTest : public DropTest {
 protected:
  void SetUp() override {
    profile_.writeServiceUrl(server_.url() + "\n" + "the-key");
    DropTest::SetUp();
    observer_.emplace(host().page.makeObject("observer", {"onDrop"}));
    handler_.emplace(host().page.makeFunction("handler"));
    (*observer_)->onCall = [this](const Host::PageCall& call) {
      told_.push_back(call.method + " " + call.arguments.at(0).text);
    };
    (*handler_)->onCall = [this](const Host::PageCall& call) {
      told_.push_back(call.arguments.at(0).text + " " + call.arguments.at(1).text);
    };
  }
  void TearDown() override {
    observer_.reset();
    handler_.reset();
    DropTest::TearDown();
  }

  // An element with a page that listens to all it can.
  void show(const std::vector<Host::Parameter>& parameters) {
    instance_.emplace(host(), parameters);
    instance_->set("dropObserver", observer_->value());
    instance_->set("eventHandler", handler_->value());
    setWindow(*instance_);
  }
  void end() {
    instance_->set("dropObserver", Value::null());
    instance_->set("eventHandler", Value::null());
    instance_.reset();
  }
  // A drag of these from the page through the places, where the last is where they are let go.
  HRESULT drag(std::initializer_list<const char*> names, std::vector<POINT> places) {
    FileList list = listOf(names);
    const HRESULT result = StandIn::dragWithMouse(list, kOutside, std::move(places));
    asked_ = list.asked();
    return result;
  }
  // What the page was told but for the movements of the mouse.
  std::vector<std::string> drops() const {
    std::vector<std::string> found;
    for (const std::string& text : told_) {
      if (text != "dragover ") found.push_back(text);
    }
    return found;
  }
  // How the document of dropped files tells one of them.
  std::string entry(const std::string& name, const std::string& size, const std::string& type) {
    struct _stat64 status = {};
    EXPECT_EQ(_wstat64(toWide(path(name)).c_str(), &status), 0);
    return "{\"lastModifiedDate\":\"" + std::string(std::ctime(&status.st_mtime)).substr(0, 24) +
           "\",\"name\":" + quoted(name) + ",\"size\":" + size + ",\"type\":\"" + type + "\"}";
  }
  // How the observer is told of one.
  std::string listed(const std::string& name) const {
    std::string text = doubled(path(name));
    for (size_t at = 0; (at = text.find(':', at)) != std::string::npos; at += 2) {
      text.insert(at, 1, '\\');
    }
    return text;
  }

  ScriptedServer server_;
  std::optional<Instance> instance_;
  std::optional<Host::PageReference> observer_;
  std::optional<Host::PageReference> handler_;
  std::vector<std::string> told_;
};

TEST_F(DragTest, ACallbackDropReachesObserverAndEventsInThisOrder) {
  show({{"drop-mode", "callback"}});
  EXPECT_EQ(drag({"ö.txt"}, {kOutside, kInside}), DRAGDROP_S_DROP);
  EXPECT_EQ(asked_, 1);
  EXPECT_EQ(told_.at(0), "dragover ");
  EXPECT_THAT(drops(), ElementsAre("onDrop " + listed("ö.txt"), "drop [" + quoted("ö.txt") + "]",
                                   "dropex {\"dataTransfer\":{\"files\":[" +
                                       entry("ö.txt", "5", "text/plain") + "]}}"));
  EXPECT_TRUE(isApproved(*instance_, "ö.txt"));
  end();
}

TEST_F(DragTest, SeveralFilesAndAFolderComeInTheirOrderWhereTheElementAllowsThem) {
  show({{"drop-mode", "callback"},
        {"drop-allow-multiple", "true"},
        {"drop-allow-directories", "true"}});
  EXPECT_EQ(drag({"ö.txt", "sub", "a.txt"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_THAT(
      drops(),
      ElementsAre("onDrop " + listed("ö.txt") + ":" + listed("sub") + ":" + listed("a.txt"),
                  "drop [" + quoted("ö.txt") + "," + quoted("sub") + "," + quoted("a.txt") + "]",
                  "dropex {\"dataTransfer\":{\"files\":[" + entry("ö.txt", "5", "text/plain") +
                      "," + entry("sub", "0", "text/directory") + "," +
                      entry("a.txt", "5", "text/plain") + "]}}"));
  EXPECT_TRUE(isApproved(*instance_, "a.txt"));
  EXPECT_TRUE(isApproved(*instance_, "ö.txt"));
  end();
}

TEST_F(DragTest, OtherWordsThanTrueAllowNothing) {
  show({{"drop-mode", "callback"},
        {"drop-allow-multiple", "TRUE"},
        {"drop-allow-directories", "TRUE"}});
  EXPECT_EQ(drag({"a.txt", "ö.txt"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_EQ(drag({"sub"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_THAT(drops(), IsEmpty());
  EXPECT_FALSE(isApproved(*instance_, "a.txt"));
  end();
}

TEST_F(DragTest, ADragThatLeavesIsToldAndDropsNothing) {
  show({{"drop-mode", "callback"}});
  EXPECT_EQ(drag({"a.txt"}, {kInside, kOutside}), DRAGDROP_S_DROP);
  EXPECT_EQ(asked_, 0);
  EXPECT_EQ(told_.at(0), "dragover ");
  EXPECT_EQ(told_.back(), "dragleave ");
  EXPECT_THAT(drops(), ElementsAre("dragleave "));
  EXPECT_FALSE(isApproved(*instance_, "a.txt"));
  end();
}

TEST_F(DragTest, WithoutADropModeTheDataIsNotTouchedAndThePageHearsNothing) {
  for (const char* const mode : {"", "Callback"}) {
    show({{"drop-mode", mode}, {"drop-allow-multiple", "true"}});
    EXPECT_EQ(drag({"a.txt"}, {kOutside, kInside}), DRAGDROP_S_DROP);
    EXPECT_EQ(asked_, 0);
    EXPECT_THAT(told_, IsEmpty());
    EXPECT_TRUE(logHas("ovOrvaneWebPlugin::doDragOver()"));
    EXPECT_FALSE(isApproved(*instance_, "a.txt"));
    end();
  }
}

TEST_F(DragTest, TheObserverMayRemoveTheElementInTheMidstOfTheDrop) {
  show({{"drop-mode", "callback"}});
  (*observer_)->onCall = [this](const Host::PageCall&) {
    told_.emplace_back("onDrop");
    EXPECT_EQ(instance_->destroy(), NPERR_NO_ERROR);
  };
  EXPECT_EQ(drag({"a.txt"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_THAT(drops(), ElementsAre("onDrop"));
  instance_->settle({.objects = {{observer_->get(), 1}, {handler_->get(), 1}}});
  instance_.reset();
}

TEST_F(DragTest, TheObserverMayLetTheLibraryGoInTheMidstOfTheDrop) {
  show({{"drop-mode", "callback"}});
  (*observer_)->onCall = [this](const Host::PageCall&) {
    told_.emplace_back("onDrop");
    EXPECT_EQ(instance_->destroy(), NPERR_NO_ERROR);
    instance_->settle(
        {.objects = {{observer_->get(), 1}, {handler_->get(), 1}}, .running = observer_->get()});
    host().unload();
    EXPECT_TRUE(host().mapped());
  };
  EXPECT_EQ(drag({"a.txt"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_THAT(drops(), ElementsAre("onDrop"));
  EXPECT_TRUE(host().pumpUntil([this] { return !host().mapped(); }));
  instance_.reset();
}

TEST_F(DragTest, AnUploadDropIsSentAtOnceAndApprovedAndNotTold) {
  show({{"drop-mode", "upload"},
        {"drop-allow-multiple", "true"},
        {"drop-upload-url", "fasp://remote/incoming"}});
  EXPECT_EQ(drag({"a.txt", "ö.txt"}, {kInside}), DRAGDROP_S_DROP);
  EXPECT_THAT(told_, IsEmpty());
  ASSERT_EQ(server_.requests(kTransfersPath).size(), 1U);
  const auto slashes = [](std::string text) {
    for (char& byte : text) byte = byte == '\\' ? '/' : byte;
    return text;
  };
  EXPECT_THAT(
      messageBody(server_.requests(kTransfersPath)[0]),
      testing::HasSubstr("<src>file://" + slashes(path("a.txt")) + "</src><src>file://" +
                         slashes(path("ö.txt")) + "</src><dest>fasp://remote/incoming</dest>"));
  EXPECT_TRUE(isApproved(*instance_, "a.txt"));
  EXPECT_TRUE(isApproved(*instance_, "ö.txt"));
  end();
}

TEST_F(DragTest, AnUploadDropWithoutAnAddressHasNoDestination) {
  show({{"drop-mode", "upload"}});
  EXPECT_EQ(drag({"a.txt"}, {kInside}), DRAGDROP_S_DROP);
  ASSERT_EQ(server_.requests(kTransfersPath).size(), 1U);
  const std::string body = messageBody(server_.requests(kTransfersPath)[0]);
  EXPECT_THAT(body, testing::HasSubstr("<src>file://"));
  EXPECT_THAT(body, Not(testing::HasSubstr("<dest>")));
  end();
}

}  // namespace
}  // namespace Vantrel::Web
