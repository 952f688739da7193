#pragma once

#include <QObject>

class QWidget;

namespace brimsett {

// Enter (or Return) in a watched field moves to the next one, as the office is used to;
// every other key, the F-keys among them, goes on as usual.
class EnterMovesOn : public QObject {
public:
    using QObject::QObject;
    void watch(QWidget* field);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace brimsett
