// The dialog that a copy shows itself in.
#pragma once

#include <string_view>

namespace sandrel {

/// All texts are UTF-8.
class clsCopyProgress {
 public:
  virtual ~clsCopyProgress() = default;

  /// Shows the dialog and returns; it lives on the messages that its user lets pass.
  virtual void Show() = 0;
  /// The file that is being copied.
  virtual void SetFile(std::string_view name) = 0;
  /// "'from' to 'to'", the folders of that file.
  virtual void SetFolder(std::string_view text) = 0;
  virtual void SetMessage(std::string_view text) = 0;
  /// 0 to 100.
  virtual void SetProgress(int percent) = 0;
  /// True when the user wants the copy to end.
  virtual bool CancelAnimate() const = 0;
  /// Takes the dialog away. Without it the dialog stays, whatever the user does.
  virtual void Close() = 0;
};

}  // namespace sandrel
