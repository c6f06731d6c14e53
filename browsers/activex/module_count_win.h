// What keeps the library in memory and this face of it started: living objects of ours, locks on
// class objects, and registrations under way. The face starts with the first and ends with the
// last of them, since the library may be unloaded from then on without another word. Any thread,
// but never under the loader's lock.
#pragma once

namespace Vantrel::Web::ActiveX {

// One reason to stay. Held as a member by every object that a container can hold.
class ModuleReference {
 public:
  ModuleReference() noexcept;
  ~ModuleReference();
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;
};

// IClassFactory::LockServer.
void lockModule() noexcept;
void unlockModule() noexcept;

// Whether no reason is left.
bool isModuleIdle() noexcept;

}  // namespace Vantrel::Web::ActiveX
