#pragma once

#include <QApplication>

namespace brimsett {

// The program's application object. The screens catch a database refusal in each slot
// themselves (`guarded`); what still escapes while a click or a key is handled ends up here,
// as a last resort, instead of ending the program: the user is told what was being done and
// what went wrong. The transaction of the action has already been rolled back by then, so
// nothing is left half written.
class BrimsettApplication : public QApplication {
public:
    BrimsettApplication(int& argc, char** argv) : QApplication(argc, argv) {}
    bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace brimsett
