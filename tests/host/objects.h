// The browser's book of script objects. A reference belongs to one of two sides: the plug-in or the
// browser (the page and the test). The book keeps both sides apart, so that at the end it is known
// who holds what. Browser's thread only; the call log reports other threads.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"
#include "tests/host/faults.h"

namespace Vantrel::Web::Host {

class Objects {
 public:
  explicit Objects(Faults& faults);

  // NPN_CreateObject: made by the class of the plug-in, which gets the one reference.
  NPObject* createForPlugin(NPP owner, NPClass* objectClass);
  // An object of the browser's own with one reference of the browser. `label` names it in faults.
  void enter(NPObject* object, NPP owner, std::string label);

  // NPN_RetainObject and NPN_ReleaseObject: the plug-in takes or gives up a reference.
  NPObject* retainForPlugin(NPObject* object);
  void releaseForPlugin(NPObject* object);
  // The browser takes or gives up a reference of its own.
  void retain(NPObject* object);
  void release(NPObject* object);
  // The plug-in hands one of its references to the browser, as NPP_GetValue does.
  void takeOver(NPObject* object);

  bool isLive(const NPObject* object) const;
  // Faults and answers false when the object is not live.
  bool requireLive(const NPObject* object, const char* use);
  int pluginReferences(const NPObject* object) const;
  int browserReferences(const NPObject* object) const;
  // Live objects that NPN_CreateObject made for an instance.
  std::vector<NPObject*> createdFor(NPP owner) const;
  // References that the plug-in has taken (retained, created or been handed), ever.
  int references() const { return references_; }
  int live() const { return static_cast<int>(live_.size()); }
  // "label: plug-in n, browser m" for every live object.
  std::vector<std::string> describe() const;

  // The browser forgets `count` references that the plug-in keeps. Fewer there is a fault.
  void writeOff(NPObject* object, int count);
  // End of an instance: invalidates and deallocates what is left of its objects, whatever is held.
  void endInstance(NPP owner);

 private:
  struct Record {
    NPP owner;
    std::string label;
    bool created;
    int plugin;
    int browser;
  };

  void freeIfUnused(NPObject* object);

  Faults& faults_;
  std::map<NPObject*, Record> live_;
  int references_ = 0;
};

}  // namespace Vantrel::Web::Host
