// Which forms are loaded, by identity.
#pragma once

#include <set>

namespace sandrel {

class clsControlsWorks {
 public:
  /// True from a form's Load to its Unload; the null form never is.
  static bool IsLoaded(const void* form) { return Forms().contains(form); }

  static void Load(const void* form) {
    if (form != nullptr) Forms().insert(form);
  }
  static void Unload(const void* form) { Forms().erase(form); }

 private:
  static std::set<const void*>& Forms() {
    static std::set<const void*> forms;
    return forms;
  }
};

}  // namespace sandrel
