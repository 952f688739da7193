#pragma once

#include "claims/ClaimEntryOptions.h"

#include <QWidget>

class QComboBox;
class QSpinBox;

namespace brimsett {

// The options screen's page for claim entry: the program of a claim left without one, the
// suffix of four-character codes, and what happens about receipts and invoices after a save.
class ClaimOptionsPage : public QWidget {
    Q_OBJECT

public:
    ClaimOptionsPage(const ClaimEntryOptions& options, QWidget* parent = nullptr);
    ClaimEntryOptions options() const;

private:
    ClaimEntryOptions m_loaded;
    QComboBox* m_program = nullptr;
    QComboBox* m_suffix = nullptr;
    QComboBox* m_receipts = nullptr;
    QComboBox* m_invoices = nullptr;
    QSpinBox* m_copies = nullptr;
};

}  // namespace brimsett
