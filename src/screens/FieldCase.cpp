#include "screens/FieldCase.h"

#include <QLineEdit>

namespace brimsett {

void capitalsAsTyped(QLineEdit* field) {
    QObject::connect(field, &QLineEdit::textEdited, field, [field](const QString& text) {
        const QString upper = text.toUpper();
        if (upper != text) {
            const int cursor = field->cursorPosition();
            field->setText(upper);
            field->setCursorPosition(cursor);
        }
    });
}

}  // namespace brimsett
