#pragma once

#include <QDialog>
#include <QStringList>

class QListWidget;

namespace brimsett {

// "Manage Codes": the list of code tables; Enter (or a double click) opens the chosen one's
// editor, typing a title's first letters moves to it, Esc closes. Other lists of setup
// windows ("Appointment Setup") are the same window under their own title.
class frmManageCodes : public QDialog {
    Q_OBJECT

public:
    frmManageCodes(const QStringList& titles, QWidget* parent = nullptr,
                   const QString& title = QStringLiteral("Manage Codes"));

    // Opens the editor in that place of the list.
    void choose(int index);

signals:
    void chosen(int index);

private:
    QListWidget* m_list = nullptr;
};

}  // namespace brimsett
