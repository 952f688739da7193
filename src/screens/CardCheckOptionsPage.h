#pragma once

#include "hcv/HcvSettings.h"

#include <QWidget>

class QCheckBox;
class QLineEdit;

namespace brimsett {

// The options screen's page for the real-time card check: the installation identifier and
// the three values the request carries, the request and answer folders, and whether answers
// are read at all (from the next start).
class CardCheckOptionsPage : public QWidget {
    Q_OBJECT

public:
    CardCheckOptionsPage(const hcv::HcvSettings& settings, QWidget* parent = nullptr);
    hcv::HcvSettings settings() const;

private:
    QCheckBox* m_polling = nullptr;
    QLineEdit* m_hx = nullptr;
    QLineEdit* m_fx = nullptr;
    QLineEdit* m_px = nullptr;
    QLineEdit* m_mx = nullptr;
    QLineEdit* m_ho = nullptr;
    QLineEdit* m_hi = nullptr;
};

}  // namespace brimsett
