// The dialog in which the user chooses a folder: from a tree, or by typing its path.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <string>

#include "config/clsFolderSource.h"

class QLabel;
class QLineEdit;
class QModelIndex;
class QPushButton;
class QTreeView;

namespace sandrel {

class clsFolderModel;

class frmFolderTreeview final : public QDialog {
 public:
  /// Shows the folders of `source`, with the first root chosen and open. `parent` may be null.
  frmFolderTreeview(std::unique_ptr<clsFolderSource> source, QWidget* parent);
  ~frmFolderTreeview() override;

  /// Sets the prompt (UTF-8); its & marks the key that leads to the text box.
  void SetLabel(const std::string& text);
  /// Chooses a folder, as if its path were typed.
  void SetFolder(const std::string& folder);

  /// Asked when the user presses OK. It may change the folder; when it says false, having told why,
  /// the dialog stays open.
  std::function<bool(std::string& folder)> Validate;

  /// After exec(): the chosen path in the source's form, which need not exist; empty when the user
  /// cancelled.
  const std::string& Folder() const { return m_folder; }

  void accept() override;

 private:
  void Arrange();
  void SelectNode(const QModelIndex& index);
  void FollowText();
  void ShowChoice();
  std::string Choice() const;

  std::unique_ptr<clsFolderSource> m_source;
  clsFolderModel* m_model;  // owned by Qt, as are the widgets
  QLabel* lblMsg;
  QLineEdit* txtFolder;
  QTreeView* ftvTreeview;
  QWidget* picContainer;  // the buttons
  QPushButton* cmdOK;
  QPushButton* cmdClose;
  bool m_typed = false;      // the text is not the path of the tree's current folder
  bool m_following = false;  // the tree moves because of the text
  std::string m_folder;
};

}  // namespace sandrel
