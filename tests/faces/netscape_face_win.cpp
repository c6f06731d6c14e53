#include <windows.h>
#include <ole2.h>

#include <optional>

#include "tests/container/dragged_files_win.h"
#include "tests/faces/face.h"
#include "tests/faces/library_path.h"
#include "tests/faces/netscape_bridge_win.h"
#include "tests/host/counting_host.h"
#include "tests/host/instance.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Faces {

namespace {

constexpr uint32_t kWidth = 100;
constexpr uint32_t kHeight = 50;

std::vector<Host::Parameter> listOf(const Parameters& parameters) {
  std::vector<Host::Parameter> list;
  for (const auto& [name, value] : parameters) list.emplace_back(name, value);
  return list;
}

class NetscapeFace final : public Face {
 public:
  explicit NetscapeFace(const Parameters& parameters) : host_(Host::programDirectory() + kLibrary) {
    host_.initialize();
    host_.getEntryPoints();
    instance_.emplace(host_, listOf(parameters));
    NPWindow window{};
    window.window = container_.window();
    window.width = kWidth;
    window.height = kHeight;
    window.type = NPWindowTypeWindow;
    host_.plugin().setwindow(instance_->npp(), &window);
    bridge_ = &container_.book.make<NetscapeBridge>("script object", host_, *instance_);
    page_.emplace(container_, Container::Language::kJScript);
    page_->add("plugin", static_cast<IDispatch*>(bridge_));
  }

  Container::ScriptPage& page() override { return *page_; }

  bool pumpUntil(const std::function<bool()>& done) override {
    return host_.pumpUntil([&] {
      container_.pumpOnce();
      return done();
    });
  }

  HRESULT drop(const std::vector<std::wstring>& files) override {
    auto* const target =
        static_cast<IDropTarget*>(GetPropW(container_.window(), L"OleDropTargetInterface"));
    return target == nullptr
               ? E_UNEXPECTED
               : Container::dragAndDrop(*target, container_.book.make<Container::DraggedFiles>(
                                                     "dragged files", files));
  }

  std::vector<std::string> finish() override {
    page_.reset();
    instance_->destroy();
    instance_->settle(bridge_->held());
    bridge_->drop();
    instance_.reset();
    std::vector<std::string> faults = container_.finish();
    for (std::string& fault : host_.finish()) faults.push_back(std::move(fault));
    return faults;
  }

 private:
  Host::CountingHost host_;
  Container::CountingContainer container_;
  std::optional<Host::Instance> instance_;
  NetscapeBridge* bridge_ = nullptr;
  std::optional<Container::ScriptPage> page_;
};

}  // namespace

std::unique_ptr<Face> makeNetscapeFace(const Parameters& parameters) {
  return std::make_unique<NetscapeFace>(parameters);
}

}  // namespace Vantrel::Web::Faces
