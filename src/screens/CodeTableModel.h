#pragma once

#include <QAbstractTableModel>

namespace brimsett {

class CodeSheet;

// The grid's view of a code sheet: cells as text (yes/no columns as check boxes), numbers
// to the right, the captions and tool tips in the header, changed rows' numbers in bold.
class CodeTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    CodeTableModel(CodeSheet& sheet, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The sheet's own changes of rows, told to the views.
    bool load(const QString& find);
    int addRow();
    void removeRows(QList<int> rows);
    bool save();

signals:
    // Any edit, read or save: whether unsaved edits exist may have changed.
    void edited();

private:
    CodeSheet& m_sheet;
};

}  // namespace brimsett
