#include <optional>

#include "browsers/activex/identifiers.h"
#include "tests/container/control_library_win.h"
#include "tests/container/control_win.h"
#include "tests/container/dragged_files_win.h"
#include "tests/faces/face.h"
#include "tests/faces/library_path.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Faces {

namespace {

class ActiveXFace final : public Face {
 public:
  explicit ActiveXFace(const Parameters& parameters)
      : library_(Host::programDirectory() + kLibrary) {
    container_.emplace(library_);
    control_.emplace(*container_, ActiveX::kControlClassId,
                     Container::ControlStart{.parameters = parameters});
    page_.emplace(*container_, Container::Language::kJScript);
    page_->add("plugin", control_->unknown());
  }

  Container::ScriptPage& page() override { return *page_; }

  bool pumpUntil(const std::function<bool()>& done) override { return container_->pumpUntil(done); }

  HRESULT drop(const std::vector<std::wstring>& files) override {
    ComPointer<IOleInPlaceObjectWindowless> object;
    ComPointer<IDropTarget> target;
    control_->activate();
    HRESULT result = control_->query(object);
    if (SUCCEEDED(result)) result = object->GetDropTarget(target.put());
    return FAILED(result) ? result
                          : Container::dragAndDrop(*target.get(),
                                                   container_->book.make<Container::DraggedFiles>(
                                                       "dragged files", files));
  }

  std::vector<std::string> finish() override {
    page_.reset();
    control_.reset();
    std::vector<std::string> faults = container_->finish();
    container_.reset();
    Host::Faults left;
    library_.finish(left);
    for (std::string& fault : left.take()) faults.push_back(std::move(fault));
    return faults;
  }

 private:
  Container::ControlLibrary library_;
  std::optional<Container::CountingContainer> container_;
  std::optional<Container::Control> control_;
  std::optional<Container::ScriptPage> page_;
};

}  // namespace

std::unique_ptr<Face> makeActiveXFace(const Parameters& parameters) {
  return std::make_unique<ActiveXFace>(parameters);
}

}  // namespace Vantrel::Web::Faces
