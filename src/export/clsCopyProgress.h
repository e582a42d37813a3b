// The dialog that a copy shows itself in.
#pragma once

#include <string_view>

namespace sandrel {

class clsCopyProgress {
 public:
  virtual ~clsCopyProgress() = default;
  virtual void Show() = 0;
  virtual void SetFile(std::string_view name) = 0;
  virtual void SetFolder(std::string_view text) = 0;
  virtual void SetMessage(std::string_view text) = 0;
  virtual void SetProgress(int percent) = 0;
  /// True when the user wants the copy to end.
  virtual bool CancelAnimate() const = 0;
  virtual void Close() = 0;
};

}  // namespace sandrel
