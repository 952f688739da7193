#include "screens/CodeTableModel.h"

#include "claims/CodeSheet.h"

#include <QFont>

#include <algorithm>

namespace brimsett {

namespace {

const QString kYes = QStringLiteral("1");

}  // namespace

CodeTableModel::CodeTableModel(CodeSheet& sheet, QObject* parent)
    : QAbstractTableModel(parent), m_sheet(sheet) {}

int CodeTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_sheet.rowCount();
}

int CodeTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_sheet.table().columns.size());
}

QVariant CodeTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const CodeColumn& column = m_sheet.table().columns.at(index.column());
    const QString& text = m_sheet.cell(index.row(), index.column());
    if (column.kind == CodeColumn::Kind::YesNo) {
        if (role == Qt::CheckStateRole) {
            return text == kYes ? Qt::Checked : Qt::Unchecked;
        }
        return {};
    }
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return text;
        case Qt::TextAlignmentRole:
            return column.isNumber() ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
        case Qt::ToolTipRole:
            // A long description is cut short in its column; the whole of it shows on hover.
            return text.size() > column.width ? QVariant(text) : QVariant();
        default:
            return {};
    }
}

bool CodeTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid()) {
        return false;
    }
    const bool yesNo = m_sheet.table().columns.at(index.column()).kind == CodeColumn::Kind::YesNo;
    QString typed;
    if (yesNo && role == Qt::CheckStateRole) {
        typed = value.value<Qt::CheckState>() == Qt::Checked ? kYes : QStringLiteral("0");
    } else if (!yesNo && role == Qt::EditRole) {
        typed = value.toString();
    } else {
        return false;
    }
    if (m_sheet.setCell(index.row(), index.column(), typed)) {
        emit dataChanged(index, index);
        emit headerDataChanged(Qt::Vertical, index.row(), index.row());
        emit edited();
    }
    return true;
}

Qt::ItemFlags CodeTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags base = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return m_sheet.table().columns.at(index.column()).kind == CodeColumn::Kind::YesNo
               ? base | Qt::ItemIsUserCheckable
               : base | Qt::ItemIsEditable;
}

QVariant CodeTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical) {
        if (role == Qt::DisplayRole) {
            return section + 1;
        }
        if (section >= m_sheet.rowCount() || !m_sheet.isChanged(section)) {
            return {};
        }
        if (role == Qt::FontRole) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        if (role == Qt::ToolTipRole) {
            return m_sheet.isNew(section) ? QStringLiteral("New, not saved yet")
                                          : QStringLiteral("Changed, not saved yet");
        }
        return {};
    }
    const CodeColumn& column = m_sheet.table().columns.at(section);
    switch (role) {
        case Qt::DisplayRole:
            return column.caption;
        case Qt::ToolTipRole:
            return column.hint.isEmpty() ? QVariant() : QVariant(column.hint);
        default:
            return {};
    }
}

bool CodeTableModel::load(const QString& find) {
    beginResetModel();
    const bool read = m_sheet.load(find);
    endResetModel();
    emit edited();
    return read;
}

int CodeTableModel::addRow() {
    const int row = m_sheet.rowCount();
    beginInsertRows({}, row, row);
    m_sheet.addRow();
    endInsertRows();
    emit edited();
    return row;
}

void CodeTableModel::removeRows(QList<int> rows) {
    // From the bottom up, so that the rows still to go keep their numbers.
    std::sort(rows.begin(), rows.end(), std::greater<>());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    for (const int row : std::as_const(rows)) {
        beginRemoveRows({}, row, row);
        m_sheet.removeRow(row);
        endRemoveRows();
    }
    // Rows below a removed one are numbered anew.
    emit headerDataChanged(Qt::Vertical, 0, std::max(0, m_sheet.rowCount() - 1));
    emit edited();
}

bool CodeTableModel::save() {
    // A successful save reads the rows again.
    beginResetModel();
    const bool saved = m_sheet.save();
    endResetModel();
    emit edited();
    return saved;
}

}  // namespace brimsett
