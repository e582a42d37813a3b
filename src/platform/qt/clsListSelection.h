// The selection of a list as Qt's classes know it.
#pragma once

#include <QItemSelectionModel>

#include "platform/controls/ListView.h"

namespace sandrel {

class clsListModel;

/// The rows' own flags and focus are the truth: what Qt selects is written to them. Qt's selection,
/// a list of runs that gets slow with thousands, only mirrors them for assistive tools, and only
/// while the runs are few. List and model must outlive it.
class clsListSelection : public QItemSelectionModel {
  Q_OBJECT

 public:
  clsListSelection(ListView& list, clsListModel& model, QObject* parent);

  /// Takes over the list's selected rows and its row with the focus.
  void Mirror();

  void select(const QModelIndex& index, SelectionFlags command) override;
  void select(const QItemSelection& selection, SelectionFlags command) override;
  void setCurrentIndex(const QModelIndex& index, SelectionFlags command) override;
  void clear() override;
  void reset() override;

 private:
  QItemSelection Runs() const;

  ListView& m_list;
  clsListModel& m_model;
  bool m_mirroring = false;
};

}  // namespace sandrel
