// Marks that our code is on the stack of a thread that serves a page, below a message loop that
// another runs, as a file dialog does and a page's function may. What ends meanwhile may be more
// than the instance: the browser may unload this library, to whose code the loop is to return. So
// each of these that is open when an instance ends keeps the module loaded until its own end.
//
// Lives on the stack of the entry that may let such a loop run, before all else there. Browser's
// thread; controls of several apartments have several of them.
#pragma once

namespace Vantrel::Web {

class ModalScope {
 public:
  ModalScope();
  // The module goes a moment later, see releaseModuleLater().
  ~ModalScope();
  ModalScope(const ModalScope&) = delete;
  ModalScope& operator=(const ModalScope&) = delete;

  // An instance ends, perhaps the last one: what is open keeps the module from now on.
  static void instanceEnds();

 private:
  ModalScope* next_ = nullptr;
  ModalScope* previous_ = nullptr;
  bool holdsModule_ = false;
};

}  // namespace Vantrel::Web
