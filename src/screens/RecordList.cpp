#include "screens/RecordList.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTreeWidget>

namespace brimsett::recordlist {

QTreeWidget* make(QWidget* parent, const QStringList& headers, int stretchColumn) {
    auto* list = new QTreeWidget(parent);
    list->setColumnCount(headers.size());
    list->setHeaderLabels(headers);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->header()->setSectionResizeMode(stretchColumn, QHeaderView::Stretch);
    list->header()->setStretchLastSection(false);
    return list;
}

void select(QTreeWidget* list, const QString& key) {
    const QSignalBlocker quiet(list);
    list->setCurrentItem(rowOf(list, key));
}

QTreeWidgetItem* rowOf(const QTreeWidget* list, const QString& key) {
    for (int i = 0; i < list->topLevelItemCount() && !key.isEmpty(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        if (item->data(0, kKeyRole).toString() == key) {
            return item;
        }
    }
    return nullptr;
}

bool showRow(QTreeWidget* list, const QString& key) {
    QTreeWidgetItem* item = rowOf(list, key);
    if (item == nullptr) {
        return false;
    }
    list->setCurrentItem(item);
    list->scrollToItem(item);
    return true;
}

void keepCurrent(QTreeWidget* list, const QString& key) {
    if (!showRow(list, key) && list->topLevelItemCount() > 0) {
        list->setCurrentItem(list->topLevelItem(0));
    }
}

QString currentKey(const QTreeWidget* list) {
    const QTreeWidgetItem* item = list ? list->currentItem() : nullptr;
    return item ? item->data(0, kKeyRole).toString() : QString();
}

void enableForRow(const QTreeWidget* list, std::initializer_list<QWidget*> buttons) {
    const bool chosen = list->currentItem() != nullptr;
    for (QWidget* button : buttons) {
        button->setEnabled(chosen);
    }
}

QLineEdit* sizedLine(QWidget* parent, int maxLength, int widthInChars) {
    auto* line = new QLineEdit(parent);
    line->setMaxLength(maxLength);
    if (widthInChars > 0) {
        const QFontMetrics metrics(line->font());
        line->setMaximumWidth(
            metrics.horizontalAdvance(QString(widthInChars + 2, QLatin1Char('W'))));
    }
    return line;
}

}  // namespace brimsett::recordlist
