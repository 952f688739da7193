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
    list->setCurrentItem(nullptr);
    for (int i = 0; i < list->topLevelItemCount() && !key.isEmpty(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        if (item->data(0, kKeyRole).toString() == key) {
            list->setCurrentItem(item);
            break;
        }
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
