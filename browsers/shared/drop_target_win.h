// The object that the system tells of drags over a window.
//
// It lives apart from the window's owner, because the system may keep a reference for longer: it is
// deleted when its count falls below the 0 that it starts at, and an owner that goes takes itself
// out first. Counting is for any thread; the four drag calls come on the window's thread.
#pragma once

#include <windows.h>
#include <oleidl.h>

#include <atomic>
#include <memory>

namespace Vantrel::Web {

// Who takes the drags. What these throw is logged and answered with S_OK.
class DragReceiver {
 public:
  virtual ~DragReceiver() = default;
  virtual HRESULT dragEnter(IDataObject* data) = 0;
  virtual void dragOver() = 0;
  virtual void dragLeave() = 0;
  virtual HRESULT drop(IDataObject* data, const DWORD* effect) = 0;

 protected:
  DragReceiver() = default;
  DragReceiver(const DragReceiver&) = default;
  DragReceiver& operator=(const DragReceiver&) = default;
};

// The platform's interfaces have no virtual destructor; the count deletes this class as itself.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class OrvaneWebIDropTarget : public IDropTarget {
 public:
  explicit OrvaneWebIDropTarget(DragReceiver* receiver) : receiver_(receiver) {}
  virtual ~OrvaneWebIDropTarget() = default;
  OrvaneWebIDropTarget(const OrvaneWebIDropTarget&) = delete;
  OrvaneWebIDropTarget& operator=(const OrvaneWebIDropTarget&) = delete;

  // From now on every drag is answered with S_OK and nothing else.
  void forgetReceiver() { receiver_ = nullptr; }
  // Null once it has gone.
  DragReceiver* receiver() const { return receiver_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD keys, POINTL point,
                                      DWORD* effect) override;
  HRESULT STDMETHODCALLTYPE DragOver(DWORD keys, POINTL point, DWORD* effect) override;
  HRESULT STDMETHODCALLTYPE DragLeave() override;
  HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL point,
                                 DWORD* effect) override;

 private:
  std::atomic<int32_t> references_ = 0;
  DragReceiver* receiver_;
};

#pragma GCC diagnostic pop

// The owner's hold on its target: at its end the target forgets the receiver and loses the one
// reference that was never counted.
struct DropTargetEnd {
  void operator()(OrvaneWebIDropTarget* target) const {
    target->forgetReceiver();
    target->Release();
  }
};
using OwnedDropTarget = std::unique_ptr<OrvaneWebIDropTarget, DropTargetEnd>;

}  // namespace Vantrel::Web
